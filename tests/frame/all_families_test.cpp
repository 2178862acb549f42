#include "tests/frame/all_families.h"

#include <vector>

#include <gmock/gmock.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/log.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/xml_builder.h"
#include "tests/support/zip_file.h"

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

// Windows removes no file that is open, not even for the process that has it open: making room for the new copy failed
// there.
TEST_F(AllFamilies, DatabaseThatARuleAskedLastIsCopiedAnewForTheNextDetection)
{
    mDir.Write("FaultTrees.xml", TreeXml("All").Tree("T", Or({Basic("derived"), Basic("external")})).Text());
    Arborist arborist(mInfo);
    Arborist other(mInfo);
    EXPECT_THAT(RootCauses(arborist), ElementsAre("derived", "external"));
    EventLogBuilder::Run(mDir.Path("battery.db"), "update charge set level = 50");
    WriteZip(mDir.Path("device/data/battery.zip"), {{"battery.db", mDir.Read("battery.db")}});
    EXPECT_THAT(RootCauses(other), ElementsAre("derived"));
    EXPECT_THAT(RootCauses(arborist), ElementsAre("derived"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), testing::IsEmpty());
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
