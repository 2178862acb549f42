#include "arborist/evaluation/rule_engine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/rule.h"
#include "tests/evaluation/rule_set.h"
#include "tests/support/code_runner_stub.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/recording_observer.h"
#include "tests/support/settings_guard.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// A node rule that fires if the file of this name holds "1".
Xml FileRule(const std::string& name, const std::string& file, const std::string& scenes = "1")
{
    return NodeRuleXml(name,
                       {NodeInfoXml("v", file), ParamsXml({ParamXml("p", "v", "int")}),
                        ConditionXml({SingleLogicXml(TestXml("eq", "p", "1"))})},
                       scenes);
}

class RuleEngineTest : public testing::Test {
protected:
    RuleEngineTest()
    {
        mInfo->mCodeRuleRunner = mRunner;
        mDir.Write("yes", "1");
        mDir.Write("no", "0");
    }

    // The rules "yes", which fires, and "no", which doesn't.
    static RuleXml Rules() { return RuleXml(TAG).Rule(FileRule("yes", "yes")).Rule(FileRule("no", "no")); }

    void LoadSet(const TreeXml& trees, const RuleXml& rules)
    {
        mParser = Load(mDir, trees, rules, mInfo);
        mEngine = std::make_unique<RuleEngine>(mInfo, mParser);
        mEngine->SetObserver(mIsObserved ? &mObserver : nullptr);
        mLog.Clear();
    }

    // Runs every tree and returns its events with their statuses, "A TRUE".
    std::vector<std::string> Run()
    {
        std::vector<std::string> statuses;
        for (const auto& tree : mParser->GetFaultTrees()) {
            mEngine->StartRunRules(tree);
            for (const auto& event : mEngine->GetAllEventList()) {
                statuses.push_back(event->GetId() + " " + GetElemTypeName(event->GetResult()));
            }
        }
        return statuses;
    }

    std::vector<std::string> RunWith(const TreeXml& trees, const RuleXml& rules)
    {
        LoadSet(trees, rules);
        return Run();
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    RecordingObserver mObserver;
    bool mIsObserved = true;
    std::shared_ptr<CodeRunnerStub> mRunner = std::make_shared<CodeRunnerStub>();
    std::shared_ptr<DetectInfo> mInfo = DetectInfoFor(mDir, TAG);
    std::shared_ptr<FaultTreeParser> mParser;
    std::unique_ptr<RuleEngine> mEngine;
};

TEST_F(RuleEngineTest, EventsWhoseRulesFireBecomeTrueAndAreLogged)
{
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Basic("A", {"name of A", "", "", ""}), Basic("B")})),
                                  Rules().EventRule("A", {Single("yes")}).EventRule("B", {Single("no")}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A TRUE", "B FALSE"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
                ElementsAre("FUNc:RuleEngine::RunRules: check error true A:name of A"));
}

TEST_F(RuleEngineTest, ObserverIsToldEveryStep)
{
    RunWith(TreeXml(TAG).Tree("T", Or({Basic("A", {"name of A", "", "", ""}), Basic("B")})),
            Rules().EventRule("A", {Single("yes"), Single("ghost")}));
    EXPECT_THAT(mObserver.Lines(),
                ElementsAre("event A (name of A)", "ask A yes node #0", "node v yes = '1'",
                            "compare p v int '1' eq '1' holds", "rule A yes node TRUE [condition_met]",
                            "ask A ghost  #1", "rule A ghost  SKIP [no_such_rule]", "decided A TRUE"));
}

TEST_F(RuleEngineTest, EventLeftToTheHostNeverBecomesTrue)
{
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Basic("A", {"", "", "", "2"})})),
                                  Rules().EventRule("A", {Single("yes")}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A FALSE"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_INFO),
                ElementsAre("FUNc:RuleEngine::IsFaultHappenedForEvent: event is code rule, skipped"));
    EXPECT_THAT(mObserver.Lines(), ElementsAre("event A ()", "decided A FALSE [interaction_event]"));
}

TEST_F(RuleEngineTest, GroupEndsAtItsFirstFalse)
{
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Basic("A")})),
                                  Rules().EventRule("A", {Multiple({"no", "yes", "ghost"})}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A FALSE"));
    EXPECT_THAT(mObserver.Lines(),
                ElementsAre("event A ()", "ask A no node #0.0", "node v no = '0'",
                            "compare p v int '0' eq '1' fails", "rule A no node FALSE [condition_not_met]",
                            "rule A yes node SKIP [group_ended]", "rule A ghost  SKIP [group_ended]",
                            "decided A FALSE"));
}

TEST_F(RuleEngineTest, GroupWhoseRulesAllFireHolds)
{
    const auto statuses = RunWith(
        TreeXml(TAG).Tree("T", Or({Basic("A"), Basic("B")})),
        Rules().EventRule("A", {Multiple({"yes", "yes"})}).EventRule("B", {Single("no"), Multiple({"yes"})}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A TRUE", "B TRUE"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(RuleEngineTest, OneAlternativeIsEnough)
{
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Basic("A")})),
                                  Rules().EventRule("A", {Single("no"), Multiple({"no", "no"}), Single("yes")}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A TRUE"));
    const auto& alternatives = mParser->GetEventRuleByEventId("A")->GetRuleList();
    EXPECT_FALSE(alternatives[0]->result);
    EXPECT_FALSE(alternatives[1]->result);
    EXPECT_TRUE(alternatives[2]->result);
}

// The parts of a rule name with a comma run separately, and the whole name means the entry.
TEST_F(RuleEngineTest, SingleRuleNameWithCommaIsAskedInParts)
{
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Basic("A"), Basic("B")})),
                                  Rules().EventRule("A", {Single("yes,yes")}).EventRule("B", {Single("yes,no")}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A TRUE", "B FALSE"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(RuleEngineTest, GroupWithACommaInANameIsNotFoundAgainAndLogsForEachPartThatRan)
{
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Basic("A")})),
                                  Rules().EventRule("A", {Multiple({"yes,no", "yes"})}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A FALSE"));
    const std::string line = "FUNc:RuleHelper::GetRuleByName: Get rule instance by rule name fail.";
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(line, line));
}

// The first entry that matches a name gets the result, even if it is another alternative.
TEST_F(RuleEngineTest, ResultGoesToTheFirstEntryThatFitsTheName)
{
    RunWith(TreeXml(TAG).Tree("T", Or({Basic("A")})),
            Rules().EventRule("A", {Multiple({"no", "yes"}), Single("yes")}));
    const auto& alternatives = mParser->GetEventRuleByEventId("A")->GetRuleList();
    EXPECT_TRUE(alternatives[0]->result); // lists "yes", and precedes the single rule
    EXPECT_FALSE(alternatives[1]->result);
}

TEST_F(RuleEngineTest, AlternativeWithoutANameChangesNothing)
{
    const auto statuses = RunWith(
        TreeXml(TAG).Tree("T", Or({Basic("A")})),
        Rules().EventRule("A", {Xml("or").Attr("type", "foo"), Multiple({}), Single("yes")}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A TRUE"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(RuleEngineTest, NameOfCommasAloneAsksNothing)
{
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Basic("A")})), Rules().EventRule("A", {Single(",")}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A FALSE"));
    EXPECT_THAT(mObserver.Lines(), ElementsAre("event A ()", "decided A FALSE"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(RuleEngineTest, EventWithoutAlternativesIsFalse)
{
    RunWith(TreeXml(TAG).Tree("T", Or({Basic("A")})), Rules().EventRule("A", {}));
    EXPECT_THAT(mObserver.Lines(), ElementsAre("event A ()", "decided A FALSE [no_rule_names]"));
}

TEST_F(RuleEngineTest, RuleThatFailsAFilterReachesNoChecker)
{
    LoadSet(TreeXml(TAG).Tree("T", Or({Basic("A")})),
            RuleXml(TAG)
                .Rule(FileRule("yes", "yes").Attr("production", "X"))
                .EventRule("A", {Single("yes")}));
    mInfo->mDeviceDetails->SetProduct("AB");
    mParser->GetEventRuleByEventId("A")->GetRuleList().front()->result = true;
    EXPECT_THAT(Run(), ElementsAre("T FALSE", "A FALSE"));
    EXPECT_FALSE(mParser->GetEventRuleByEventId("A")->GetRuleList().front()->result);
    EXPECT_THAT(mObserver.Lines(),
                ElementsAre("event A ()", "ask A yes node #0", "filter yes 'AB' in 'X' [filtered_product]",
                            "rule A yes node SKIP [filtered_product]", "decided A FALSE"));
}

TEST_F(RuleEngineTest, WithoutEventRulesLeavesAreFalseAndNoIntermediateEventIsObservable)
{
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Basic("A"), Intermediate("G", And({Basic("B")}))})),
                                  Rules());
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A FALSE", "G FALSE", "B FALSE"));
    for (const auto& event : mEngine->GetAllEventList()) {
        EXPECT_EQ(event->IsObservable(), event->AsIntermediate() == nullptr) << event->GetId();
    }
}

TEST_F(RuleEngineTest, IntermediateEventWithRulesIsObservable)
{
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Intermediate("G", And({Basic("B")}))})),
                                  Rules().EventRule("G", {Single("yes")}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "G TRUE", "B FALSE"));
    EXPECT_TRUE(mEngine->GetEventMap().at("G")->IsObservable());
    EXPECT_FALSE(mEngine->GetEventMap().at("T")->IsObservable());
}

TEST_F(RuleEngineTest, TwoEventsWithOneIdAreBothAskedTheSameRule)
{
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Basic("A"), Intermediate("G", And({Basic("A")}))})),
                                  Rules().EventRule("A", {Single("yes")}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A TRUE", "G FALSE", "A TRUE"));
    EXPECT_THAT(mObserver.Lines("ask"), SizeIs(2));
}

TEST_F(RuleEngineTest, StoreHoldsTheEventsOfTheLastTree)
{
    RunWith(TreeXml(TAG).Tree("T1", Or({Basic("A")})).Tree("T2", Or({Basic("B")})), Rules());
    EXPECT_THAT(mEngine->GetAllEventList(), SizeIs(2));
    EXPECT_THAT(mEngine->GetEventMap(), SizeIs(2));
    EXPECT_EQ(mEngine->GetEventMap().count("B"), 1U);
}

// The result is kept in the event rule, so that in a later tree the event is still true.
TEST_F(RuleEngineTest, OutcomeOnceTrueStaysTrueForLaterTreesOfTheSet)
{
    mRunner->answer = true;
    mRunner->onCall = [this] { mRunner->answer = mRunner->calls.size() < 2; };
    const auto statuses = RunWith(
        TreeXml(TAG).Tree("T1", Or({Basic("A")})).Tree("T2", Or({Basic("A")})),
        RuleXml(TAG).Rule(CodeRuleXml("c", "C")).EventRule("A", {Single("c")}));
    EXPECT_THAT(statuses, ElementsAre("T1 FALSE", "A TRUE", "T2 FALSE", "A TRUE"));
    EXPECT_THAT(mObserver.Lines("rule"), ElementsAre("rule A c code TRUE [runner_answered]",
                                                     "rule A c code FALSE [runner_answered]"));
}

TEST_F(RuleEngineTest, TroubleIsToldWithItsEventAndRule)
{
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
    mSettings.Set(Settings::CURRENT_TIME, "1700000000");
    EventLogBuilder().Row({1700000000 - 60, 7, "", "{\"N\": }"})
        .WriteTo(mDir.Path("data/Comms/Lumbra/workDir/0/log.db"));
    const Xml item = AlarmIdXml("7", "7", {TimeXml("latest", "1", "1"), ParamsXml({ParamXml("p", "N", "int")}),
        ConditionXml({SingleLogicXml(TestXml("ge", "p", "5"))})}).Attr("type", "param_eventid").Attr("BeginFlag", "4");
    RunWith(TreeXml(TAG).Tree("T", Or({Basic("A")})),
        RuleXml(TAG).Rule(AlarmRuleXml("r", {item}, "1")).EventRule("A", {Single("r")}));
    ASSERT_THAT(mObserver.Lines("trouble"), SizeIs(1));
    EXPECT_THAT(mObserver.Lines("trouble")[0], testing::StartsWith(
        "trouble extra A r " + mDir.Path("data/Comms/Lumbra/workDir/0/log.db") + ": "));
}

TEST_F(RuleEngineTest, AnObserverThatIsTakenAwayWithinARuleHearsNoMore)
{
    mRunner->onCall = [this] { mEngine->SetObserver(nullptr); };
    RunWith(TreeXml(TAG).Tree("T", Or({Basic("A"), Basic("B")})),
        RuleXml(TAG).Rule(CodeRuleXml("c", "C")).EventRule("A", {Single("c")}).EventRule("B", {Single("c")}));
    EXPECT_THAT(mObserver.Lines(), IsEmpty());
    EXPECT_THAT(mRunner->calls, SizeIs(2));
}

TEST_F(RuleEngineTest, StatusesOfAnEarlierRunOfTheTreeAreTakenBackFirst)
{
    LoadSet(TreeXml(TAG).Tree("T", Or({Basic("A"), Intermediate("G", And({Basic("B")}))})), Rules());
    Run();
    for (const auto& event : mEngine->GetAllEventList()) {
        event->SetResult(EventStatus::TRUE);
    }
    EXPECT_THAT(Run(), ElementsAre("T FALSE", "A FALSE", "G FALSE", "B FALSE"));
}

TEST_F(RuleEngineTest, CurrentEventIsTheOneThatIsAsked)
{
    std::string seen;
    mRunner->onCall = [this, &seen] { seen = mEngine->GetRuleHelper()->GetCurrentEvent()->GetId(); };
    RunWith(TreeXml(TAG).Tree("T", Or({Basic("A"), Basic("B")})),
            RuleXml(TAG).Rule(CodeRuleXml("c", "C")).EventRule("A", {Single("c")}));
    EXPECT_EQ(seen, "A");
    EXPECT_EQ(mEngine->GetRuleHelper()->GetCurrentEvent()->GetId(), "A"); // B has no rules
}

TEST_F(RuleEngineTest, HostThatParsesAnewFromWithinARuleHarmsNothing)
{
    mRunner->answer = true;
    mRunner->onCall = [this] {
        mParser->StartParse();
        mEngine->StartRunRules(nullptr);
    };
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Basic("A"), Basic("B")})),
                                  RuleXml(TAG)
                                      .Rule(CodeRuleXml("c", "C"))
                                      .EventRule("A", {Single("c"), Single("c")})
                                      .EventRule("B", {Multiple({"c", "c"})}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A TRUE", "B TRUE"));
}

TEST_F(RuleEngineTest, RuleNameWithoutARuleIsFalseAndSilent)
{
    const auto statuses = RunWith(TreeXml(TAG).Tree("T", Or({Basic("A")})),
                                  Rules().EventRule("A", {Single("ghost"), Multiple({"yes", "ghost"})}));
    EXPECT_THAT(statuses, ElementsAre("T FALSE", "A FALSE"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleEngineTest, WithoutDetectInfoNothingRunsAndNothingCrashes)
{
    RuleEngine engine(nullptr, std::make_shared<FaultTreeParser>(nullptr));
    engine.SetObserver(&mObserver);
    engine.StartRunRules(std::make_shared<FaultTree>("T", "1", "t"));
    engine.FetchEvent(std::make_shared<BasicEvent>());
    EXPECT_EQ(engine.GetRuleHelper(), nullptr);
    EXPECT_THAT(engine.GetAllEventList(), IsEmpty());
    EXPECT_THAT(engine.GetEventMap(), IsEmpty());
    EXPECT_THAT(engine.GetCodeRuleInfoByType(RuleHelper::FAULT, "C"), IsEmpty());
    EXPECT_THAT(mObserver.Lines(), IsEmpty());
}

TEST_F(RuleEngineTest, WithoutParserEventsAreFetchedAndKeepTheirStatuses)
{
    LoadSet(TreeXml(TAG).Tree("T", Or({Basic("A")})), Rules().EventRule("A", {Single("yes")}));
    RuleEngine engine(mInfo, nullptr);
    engine.StartRunRules(mParser->GetFaultTrees().front());
    EXPECT_THAT(engine.GetAllEventList(), SizeIs(2));
    EXPECT_EQ(engine.GetEventMap().at("A")->GetResult(), EventStatus::FALSE);
}

TEST_F(RuleEngineTest, TreeWithoutTopEventIsRunQuietlyButForAWarning)
{
    LoadSet(TreeXml(TAG), Rules());
    mEngine->StartRunRules(std::make_shared<FaultTree>("T", "1", "t"));
    EXPECT_THAT(mEngine->GetAllEventList(), IsEmpty());
    EXPECT_THAT(mLog.Lines(), ElementsAre("FUNc:RuleEngineHelper::FetchEvent: input null event."));
}

TEST_F(RuleEngineTest, StatusesAndLogAreTheSameWithAndWithoutObserver)
{
    const TreeXml trees = TreeXml(TAG).Tree("T", Or({Basic("A"), Basic("B"), Basic("C", {"", "", "", "2"})}));
    const RuleXml rules = Rules()
                              .EventRule("A", {Single("ghost"), Multiple({"yes", "no", "yes"}), Single("yes")})
                              .EventRule("B", {Multiple({"a,b", "c"})})
                              .EventRule("C", {Single("yes")});
    const auto observed = RunWith(trees, rules);
    const auto observedLog = mLog.Lines();
    mIsObserved = false;
    EXPECT_EQ(RunWith(trees, rules), observed);
    EXPECT_EQ(mLog.Lines(), observedLog);
    EXPECT_FALSE(observedLog.empty());
}

// Such a rule can't come from a rule file.
TEST_F(RuleEngineTest, ARuleOfNoFamilyIsPassedOverAndTold)
{
    LoadSet(TreeXml(TAG).Tree("T", Or({Basic("A")})), Rules().EventRule("A", {Single("odd")}));
    const auto rule = std::make_shared<Rule>();
    rule->detectScene = "1";
    const_cast<FaultTreeParser::RuleMap&>(mParser->GetRuleMap())["odd"] = rule;
    EXPECT_THAT(Run(), ElementsAre("T FALSE", "A FALSE"));
    EXPECT_THAT(mObserver.Lines("rule"), ElementsAre("rule A odd  SKIP [no_checker]"));
}

} // namespace
