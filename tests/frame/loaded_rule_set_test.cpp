#include "arborist/frame/loaded_rule_set.h"

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "arborist/evaluation/rule_engine.h"
#include "arborist/frame/arborist.h"
#include "arborist/frame/log.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/loading/fresh_records.h"
#include "tests/frame/all_families.h"
#include "tests/frame/arborist_fixture.h"
#include "tests/support/recording_observer.h"
#include "tests/support/rule_set_dump.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Each;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr char IN_USE[] = "FUNc:Arborist::StartDetection: StartDetection rule set is in use by another detection";

/// Everything that a host gets of a detection.
struct Told {
    std::vector<std::string> results;
    std::vector<std::string> evidence;
    std::vector<std::string> lines;
    std::vector<std::string> warnings;
    std::vector<std::string> errors;

    bool operator==(const Told&) const = default;
};

void PrintTo(const Told& told, std::ostream* out)
{
    for (const auto* list : {&told.results, &told.evidence, &told.lines}) {
        *out << testing::PrintToString(*list) << "\n";
    }
}

class LoadedRuleSetTest : public AllFamilies {
protected:
    // The first detection of a device creates its repair database, with other lines than those after it.
    void SetUp() override { DetectAnew(); }

    Told Detect(Arborist& engine)
    {
        mLog.Clear();
        const auto observer = std::make_shared<RecordingObserver>();
        engine.SetObserver(observer);
        auto results = Texts(engine.StartDetection());
        return {std::move(results), observer->Lines(), mLog.Lines(), mLog.Lines(FT::LEVEL_WARN), mLog.Lines(FT::LEVEL_ERROR)};
    }

    Told DetectAnew()
    {
        Arborist engine(mInfo);
        return Detect(engine);
    }

    Told DetectFrom(const std::shared_ptr<LoadedRuleSet>& ruleSet)
    {
        Arborist engine(mInfo, ruleSet);
        return Detect(engine);
    }

    std::shared_ptr<LoadedRuleSet> Load() const { return std::make_shared<LoadedRuleSet>(*mInfo); }
    void RemoveFiles() const
    {
        std::filesystem::remove("FaultTrees.xml");
        std::filesystem::remove("FaultTreeRules.xml");
    }
};

TEST_F(LoadedRuleSetTest, EachDetectionAnswersAndLogsAsIfItReadTheFilesItself)
{
    const Told plain = DetectAnew();
    const auto ruleSet = Load();
    RemoveFiles();
    for (int detection = 0; detection < 3; ++detection) {
        EXPECT_EQ(DetectFrom(ruleSet), plain);
    }
    EXPECT_THAT(plain.results, Not(IsEmpty()));
    EXPECT_THAT(mLog.Formats(), Each(StartsWith("FUNc:%s: ")));
}

TEST_F(LoadedRuleSetTest, OneEngineStartsFromItAgain)
{
    const Told plain = DetectAnew();
    Arborist engine(mInfo, Load());
    EXPECT_EQ(Detect(engine), plain);
    EXPECT_EQ(Detect(engine), plain);
}

TEST_F(LoadedRuleSetTest, ReadingLogsNothing)
{
    RemoveFiles();
    mLog.Clear();
    Load();
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(LoadedRuleSetTest, DeviceAfterAFaultyOneIsHealthy)
{
    const auto ruleSet = Load();
    DetectFrom(ruleSet);
    mRunner->answer = false;
    mDir.Write("device/sys/temp", "15\n");
    std::filesystem::remove(mDir.Path("programdata/Comms/Lumbra/workDir/0/log.db"));
    std::filesystem::remove(mDir.Path("device/data/battery.zip"));
    const Told plain = DetectAnew();
    EXPECT_EQ(DetectFrom(ruleSet), plain);
    EXPECT_THAT(plain.results, ElementsAre("T v-1 no fault", "U v-1 no fault"));
}

TEST_F(LoadedRuleSetTest, ThresholdsOfOneDeviceDoNotReachTheNext)
{
    const auto ruleSet = Load();
    DetectFrom(ruleSet);
    mInfo->mDeviceDetails = std::make_shared<DeviceDetails>();
    EXPECT_EQ(DetectFrom(ruleSet), DetectAnew());
}

TEST_F(LoadedRuleSetTest, TakesThePlaceOfTheInputsOwn)
{
    const auto ruleSet = Load();
    const Told plain = DetectAnew();
    mInfo->mTreeTag = "Other";
    mInfo->mRuleFileDir = "/nowhere";
    mInfo->mRuleFilePrefix = "x";
    EXPECT_EQ(DetectFrom(ruleSet), plain);
}

TEST_F(LoadedRuleSetTest, ReadsTheFilesOfThePrefix)
{
    std::filesystem::rename("FaultTrees.xml", "x_FaultTrees.xml");
    std::filesystem::rename("FaultTreeRules.xml", "x_FaultTreeRules.xml");
    mInfo->mRuleFilePrefix = "x";
    EXPECT_EQ(DetectFrom(Load()), DetectAnew());
}

TEST_F(LoadedRuleSetTest, FileThatIsMissingOrMalformedIsToldByEachDetection)
{
    mDir.Write("FaultTreeRules.xml", "<broken");
    const Told malformed = DetectAnew();
    const auto broken = Load();
    EXPECT_EQ(DetectFrom(broken), malformed);
    EXPECT_EQ(DetectFrom(broken), malformed);
    EXPECT_THAT(malformed.errors, Not(IsEmpty()));
    RemoveFiles();
    const Told missing = DetectAnew();
    EXPECT_EQ(DetectFrom(Load()), missing);
    EXPECT_THAT(missing.results, IsEmpty());
    EXPECT_THAT(missing.warnings, Not(IsEmpty()));
}

TEST_F(LoadedRuleSetTest, DetectionFromWithinAnotherIsRefused)
{
    const auto ruleSet = Load();
    const Told plain = DetectAnew();
    std::size_t inner = 1;
    mRunner->onCall = [&] {
        Arborist second(mInfo, ruleSet);
        inner = second.StartDetection().size();
    };
    const Told outer = DetectFrom(ruleSet);
    EXPECT_EQ(inner, 0U);
    EXPECT_EQ(outer.results, plain.results);
    EXPECT_EQ(outer.evidence, plain.evidence);
    EXPECT_THAT(outer.warnings, Contains(IN_USE));
    mRunner->onCall = nullptr;
    EXPECT_EQ(DetectFrom(ruleSet), plain);
}

TEST_F(LoadedRuleSetTest, IsFreeAgainAfterAnExceptionOfTheHost)
{
    const auto ruleSet = Load();
    mRunner->onCall = [] { throw std::runtime_error("host"); };
    EXPECT_THROW(DetectFrom(ruleSet), std::runtime_error);
    mRunner->onCall = nullptr;
    EXPECT_EQ(DetectFrom(ruleSet), DetectAnew());
}

TEST_F(LoadedRuleSetTest, QueriesAnswerAndLogAsIfTheyReadTheFiles)
{
    Arborist plain(mInfo);
    Arborist loaded(mInfo, Load());
    const auto ask = [this](Arborist& engine) {
        mLog.Clear();
        const auto observer = std::make_shared<RecordingObserver>();
        engine.SetObserver(observer);
        const bool isRun = engine.IsRunRule("C1");
        auto answers = mLog.Lines();
        answers.push_back(isRun ? "run" : "not run");
        answers.push_back(engine.GetCodeRuleRepairId("C1"));
        answers.insert(answers.end(), observer->Lines().begin(), observer->Lines().end());
        return answers;
    };
    const auto first = ask(plain);
    EXPECT_EQ(ask(loaded), first);
    EXPECT_EQ(ask(loaded), ask(plain)); // the second query reads nothing
    EXPECT_THAT(first, Contains("run"));
}

TEST_F(LoadedRuleSetTest, NullOneReadsAnew)
{
    EXPECT_EQ(DetectFrom(nullptr), DetectAnew());
}

TEST_F(LoadedRuleSetTest, WithoutAnInputEveryCallIsEmpty)
{
    Arborist plain(nullptr);
    const Told empty = Detect(plain);
    Arborist engine(nullptr, Load());
    EXPECT_EQ(Detect(engine), empty);
    EXPECT_THAT(empty.results, IsEmpty());
}

TEST_F(LoadedRuleSetTest, NoFieldThatADetectionWritesIsLeftBehind)
{
    const auto parser = std::make_shared<FaultTreeParser>(mInfo);
    parser->StartParse();
    const auto fresh = DumpOf(*parser);
    RuleEngine engine(mInfo, parser);
    engine.Init();
    for (const auto& tree : parser->GetFaultTrees()) {
        engine.StartRunRules(tree);
        tree->Check();
    }
    EXPECT_NE(DumpOf(*parser), fresh);
    MakeRecordsFresh(*parser);
    EXPECT_EQ(DumpOf(*parser), fresh);
}

} // namespace
