#include "tests/frame/all_families.h"

#include <vector>

#include <gmock/gmock.h>

#include "arborist/frame/arborist.h"

namespace {

using testing::ElementsAre;

std::vector<std::string> RootCauses(Arborist& arborist)
{
    std::vector<std::string> ids;
    for (const auto& result : arborist.StartDetection()) {
        for (const auto& cause : result->mRootCauseResults) {
            ids.push_back(cause->mNode->mId);
        }
    }
    return ids;
}

TEST_F(AllFamilies, EachDecidesItsEvent)
{
    Arborist arborist(mInfo);
    EXPECT_THAT(RootCauses(arborist), ElementsAre("alarm", "derived", "external", "node", "code"));
}

TEST_F(AllFamilies, SecondDetectionBuildsEverythingAnewAndAgrees)
{
    Arborist arborist(mInfo);
    RootCauses(arborist);
    EXPECT_THAT(RootCauses(arborist), ElementsAre("alarm", "derived", "external", "node", "code"));
}

TEST_F(AllFamilies, InputsStayByteForByteAsTheyWere)
{
    const std::string log = mDir.Read("programdata/Comms/Lumbra/workDir/0/log.db");
    const std::string archive = mDir.Read("device/data/battery.zip");
    Arborist arborist(mInfo);
    RootCauses(arborist);
    EXPECT_EQ(mDir.Read("programdata/Comms/Lumbra/workDir/0/log.db"), log);
    EXPECT_EQ(mDir.Read("device/data/battery.zip"), archive);
    EXPECT_FALSE(mDir.Has("programdata/Comms/Lumbra/workDir/0/log.db-wal"));
}

} // namespace
