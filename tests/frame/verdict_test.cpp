#include "arborist/frame/arborist.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/settings.h"
#include "tests/support/case_name.h"
#include "tests/support/code_runner_stub.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string TAG = "test";
constexpr std::int64_t NOW = 1700000000;

// Keeps what a detection ends with.
class VerdictObserver : public DetectionObserver {
public:
    void OnTreeFolded(std::vector<Evidence::FoldedEvent> events) override { folded = std::move(events); }
    void OnTreeFinished(Evidence::TreeResult result) override { trees.push_back(std::move(result)); }

    std::vector<Evidence::FoldedEvent> folded;
    std::vector<Evidence::TreeResult> trees;
};

std::string TextOf(const Evidence::OpenCheck& open)
{
    return open.eventId + " " + open.ruleName + (open.ruleName.empty() ? "" : " ") + Evidence::CheckText(open.check)
        + " " + Evidence::ReasonText(open.reason) + (open.restsOnDefault ? " by default" : "");
}

std::string TextOf(const Evidence::TreeResult& tree)
{
    return std::string(Evidence::TreeVerdictText(tree.verdict.word)) + (tree.verdict.isComplete ? "" : ", incomplete")
        + (tree.verdict.isTrueWithoutCause ? ", true_without_cause" : "");
}

class VerdictTest : public testing::Test {
protected:
    VerdictTest()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("programdata"));
        mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        mDir.Write("device/yes", "1");
        mDir.Write("device/no", "0");
        mDir.Write("device/word", "none");
        mInfo->mDeviceDetails = std::make_shared<DeviceDetails>("", "P1", "", "", "", "", "");
    }

    // Fires if the file of this name holds "1".
    static Xml FileRule(const std::string& name, const std::string& file, const std::string& scenes = "1")
    {
        return NodeRuleXml(name, {NodeInfoXml("v", "/" + file), ParamsXml({ParamXml("p", "v", "int")}),
                                  ConditionXml({SingleLogicXml(TestXml("eq", "p", "1"))})}, scenes);
    }

    static RuleXml Rules()
    {
        return RuleXml(TAG).Rule(FileRule("yes", "yes")).Rule(FileRule("no", "no")).Rule(FileRule("gone", "gone"))
            .Rule(FileRule("other", "yes", "2")).Rule(FileRule("word", "word"));
    }

    void Detect(const TreeXml& trees, const RuleXml& rules)
    {
        mDir.Write("FaultTrees.xml", trees.Text());
        mDir.Write("FaultTreeRules.xml", rules.Text());
        Arborist arborist(mInfo);
        arborist.SetObserver(mObserver);
        arborist.StartDetection();
    }

    const Evidence::TreeResult& First() const { return mObserver->trees.front(); }

    std::vector<std::string> Open(std::size_t tree = 0) const
    {
        std::vector<std::string> lines;
        for (const auto& open : mObserver->trees.at(tree).verdict.open) {
            lines.push_back(TextOf(open));
        }
        return lines;
    }

    // The verdict of a tree that is one event with these alternatives, and what is open.
    std::string DetectOne(const std::vector<Xml>& alternatives, RuleXml rules = Rules())
    {
        Detect(TreeXml(TAG).Tree("T", Or({Basic("A")})), rules.EventRule("A", alternatives));
        return TextOf(First());
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::shared_ptr<VerdictObserver> mObserver = std::make_shared<VerdictObserver>();
    std::shared_ptr<DetectInfo> mInfo = DetectInfoFor(mDir, TAG);
};

TEST_F(VerdictTest, AnswersMakeNoFaultAndFault)
{
    EXPECT_EQ(DetectOne({Single("no")}), "no_fault");
    EXPECT_THAT(Open(), IsEmpty());
    mObserver->trees.clear();
    EXPECT_EQ(DetectOne({Single("no"), Single("yes")}), "fault");
    EXPECT_THAT(Open(), IsEmpty());
}

TEST_F(VerdictTest, AnEventWithoutAnEntryIsOpen)
{
    Detect(TreeXml(TAG).Tree("T", Or({Basic("A"), Basic("B"), Xml("Foo").TextChild("ID", "U")})),
           Rules().EventRule("A", {Single("no")}));
    EXPECT_EQ(TextOf(First()), "undecided, incomplete");
    EXPECT_THAT(Open(), ElementsAre("B not_checked no_event_rule", "U not_checked no_event_rule"));
    EXPECT_EQ(First().verdict.checks.Total(), 3U);
    EXPECT_THAT(First().verdict.possibleCauses, testing::SizeIs(2));
}

TEST_F(VerdictTest, ARuleFileWithoutEventRulesIsNoAnswer)
{
    Detect(TreeXml(TAG).Tree("T", Or({Basic("A")})), Rules());
    EXPECT_EQ(TextOf(First()), "undecided, incomplete");
}

TEST_F(VerdictTest, AnInteractionEventIsNotSelectedWithAndWithoutAnEntry)
{
    Detect(TreeXml(TAG).Tree("T", Or({Basic("A", {"", "", "", "2"}), Basic("B", {"", "", "", "2"})})),
           Rules().EventRule("A", {Single("yes")}));
    EXPECT_EQ(TextOf(First()), "undecided");
    EXPECT_THAT(Open(), ElementsAre("A not_selected interaction_event", "B not_selected interaction_event"));
}

TEST_F(VerdictTest, ASceneThatNothingNamesIsUndecided)
{
    EXPECT_EQ(DetectOne({Single("other")}), "undecided");
    EXPECT_THAT(Open(), ElementsAre("A other not_selected filtered_scene"));
}

TEST_F(VerdictTest, AnIntermediateEventHasACheckWhereItHasAnEntry)
{
    Detect(TreeXml(TAG).Tree("T", Or({Intermediate("G", Or({Basic("A")})), Intermediate("H", Or({Basic("B")}))})),
           Rules().EventRule("A", {Single("yes")}).EventRule("B", {Single("no")}).EventRule("G", {Single("gone")}));
    EXPECT_EQ(TextOf(First()), "undecided, incomplete");
    EXPECT_THAT(Open(), ElementsAre("G gone no_data node_unreadable"));
    EXPECT_EQ(First().verdict.checks.Total(), 3U);
}

TEST_F(VerdictTest, AnEventWithoutAGateIsNoAnswer)
{
    Detect(TreeXml(TAG).Tree("T", Or({Basic("A"), Intermediate("G", Xml("xorGate").Child(Basic("B")))})),
           Rules().EventRule("A", {Single("no")}));
    EXPECT_EQ(TextOf(First()), "undecided, incomplete");
    EXPECT_THAT(Open(), ElementsAre("G error no_gate"));
}

TEST_F(VerdictTest, ATreeWithoutChecksNamesItsTop)
{
    Detect(TreeXml(TAG).Tree("T", Or({})), Rules());
    EXPECT_EQ(TextOf(First()), "undecided");
    EXPECT_THAT(Open(), ElementsAre("T not_checked no_event_rule"));
}

TEST_F(VerdictTest, ATopThatIsTrueWithoutCauseIsUndecided)
{
    Detect(TreeXml(TAG).Tree("T", Or({Basic("A"), Intermediate("G", And({}))})), Rules().EventRule("A", {Single("no")}));
    EXPECT_EQ(TextOf(First()), "undecided, true_without_cause");
}

TEST_F(VerdictTest, AnEventThatIsTrueByDefaultIsAFaultAndSaysSo)
{
    // No condition says so, and a text that is no number counts as 0.
    const Xml isZero = NodeRuleXml("zero", {NodeInfoXml("v", "/word"), ParamsXml({ParamXml("p", "v", "int")}),
                                            ConditionXml({SingleLogicXml(TestXml("eq", "p", "0"))})});
    EXPECT_EQ(DetectOne({Single("zero")}, Rules().Rule(isZero)), "fault");
    EXPECT_THAT(Open(), ElementsAre("A zero error bad_number by default"));
    EXPECT_TRUE(mObserver->folded.back().RestsOnDefault());
}

TEST_F(VerdictTest, APeriodOrAThresholdThatIsNoNumberIsAnErrorWhetherOrNotTheRuleFires)
{
    EventLogBuilder().Row({NOW - 5, 7, "", ""}).WriteTo(mDir.Path("programdata/Comms/Lumbra/workDir/0/log.db"));
    const auto timed = [](const std::string& name, const std::string& period, const std::string& threshold) {
        return AlarmRuleXml(name, {AlarmIdXml("7", "7", {TimeXml("duration", period, threshold)})});
    };
    const RuleXml rules = Rules().Rule(timed("month", "month", "5")).Rule(timed("three", "30", "three"))
        .Rule(timed("sound", "30", "5"));
    EXPECT_EQ(DetectOne({Single("month")}, rules), "undecided, incomplete");
    EXPECT_THAT(Open(), ElementsAre("A month error bad_number"));
    mObserver->trees.clear();
    EXPECT_EQ(DetectOne({Single("three")}, rules), "fault");
    EXPECT_THAT(Open(), ElementsAre("A three error bad_number by default"));
    mObserver->trees.clear();
    EXPECT_EQ(DetectOne({Single("sound")}, rules), "no_fault");
}

TEST_F(VerdictTest, APeriodThatIsNoNumberIsAnErrorOfACommandRuleWithATimeLimit)
{
    const auto rules = [](const std::string& period) {
        return Rules().CommonPart({Xml("thresholdsOrLumbraData").Attr("name", "C").Child(Xml("retrieveLumbraData")
            .Child(AlarmIdXml("7", "7", {ParamsXml({ParamXml("1", "N", "int")})})))})
            .Rule(CommandRuleXml("r").Child(Xml("referenceCommonPart").TextChild("commonPartName", "C"))
                .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int")})))
                .Child(AnalysisMethodXml("", {Xml("sql").Text("select count(*) from C"),
                    TimeXml("duration", period, "0"), ConditionXml({SingleLogicXml(Xml("gt").Attr("type", "static")
                        .TextChild("id", "n").TextChild("value", "5"))})})));
    };
    EventLogBuilder().Row({NOW - 5, 7, "", "{\"N\": 1}"}).WriteTo(mDir.Path("programdata/Comms/Lumbra/workDir/0/log.db"));
    EXPECT_EQ(DetectOne({Single("r")}, rules("month")), "undecided, incomplete");
    EXPECT_THAT(Open(), ElementsAre("A r error bad_number"));
    mObserver->trees.clear();
    EXPECT_EQ(DetectOne({Single("r")}, rules("30")), "no_fault");
}

TEST_F(VerdictTest, ANameWithoutARuleAndAnEntryWithoutNamesAreNotChecked)
{
    EXPECT_EQ(DetectOne({Single("nothing")}), "undecided, incomplete");
    EXPECT_THAT(Open(), ElementsAre("A nothing not_checked no_such_rule"));
    mObserver->trees.clear();
    EXPECT_EQ(DetectOne({}), "undecided, incomplete");
    EXPECT_THAT(Open(), ElementsAre("A not_checked no_rule_names"));
}

TEST_F(VerdictTest, AGroupRestsOnTheRuleThatEndedIt)
{
    EXPECT_EQ(DetectOne({Multiple({"no", "gone"})}), "no_fault");
    mObserver->trees.clear();
    EXPECT_EQ(DetectOne({Multiple({"gone", "no"})}), "undecided, incomplete");
    mObserver->trees.clear();
    EXPECT_EQ(DetectOne({Multiple({"word", "no"})}), "undecided, incomplete");
}

TEST_F(VerdictTest, AlternativesThatContainEachOtherCountAsTheirResultsLand)
{
    // The second one's result is written to the first, which lists both of its names: the first one's own is lost.
    EXPECT_EQ(DetectOne({Multiple({"gone", "yes", "no"}), Multiple({"yes", "no"})}), "no_fault");
    mObserver->trees.clear();
    EXPECT_EQ(DetectOne({Multiple({"yes", "no"}), Multiple({"yes", "no", "gone"})}), "no_fault");
    mObserver->trees.clear();
    EXPECT_EQ(DetectOne({Multiple({"yes", "gone", "no"}), Multiple({"yes", "gone"})}), "undecided, incomplete");
}

TEST_F(VerdictTest, AnEntryThatWasTrueInOneTreeStaysTrueInTheNext)
{
    // The host's answers: true the first time, and broken off the second.
    const auto runner = std::make_shared<CodeRunnerStub>();
    runner->answer = true;
    mInfo->mCodeRuleRunner = runner;
    Detect(TreeXml(TAG).Tree("T", Or({Basic("A")})).Tree("U", Or({Basic("A")})),
           Rules().Rule(CodeRuleXml("ask", "C")).EventRule("A", {Single("ask")}));
    EXPECT_EQ(TextOf(mObserver->trees.at(0)), "fault");
    EXPECT_EQ(TextOf(mObserver->trees.at(1)), "fault");
    EXPECT_THAT(Open(1), IsEmpty());
}

TEST_F(VerdictTest, AHostThatHasNoAnswerLeavesTheCheckOpen)
{
    class BrokenRunner : public CodeRuleRunner {
    public:
        bool RunCodeRule(std::vector<std::string>, std::vector<std::string>, std::vector<std::string>,
                         const std::string&) override
        {
            return false;
        }
        Outcome GetOutcome() const override { return Outcome::BROKEN_OFF; }
    };
    const RuleXml rules = Rules().Rule(CodeRuleXml("ask", "C"));
    EXPECT_EQ(DetectOne({Single("ask")}, rules), "undecided, incomplete");
    EXPECT_THAT(Open(), ElementsAre("A ask not_checked no_runner"));
    mObserver->trees.clear();
    mInfo->mCodeRuleRunner = std::make_shared<BrokenRunner>();
    EXPECT_EQ(DetectOne({Single("ask")}, rules), "undecided, incomplete");
    EXPECT_THAT(Open(), ElementsAre("A ask no_data runner_failed"));
}

TEST_F(VerdictTest, AFilterIsNoAnswerWhereTheDeviceIsNotKnown)
{
    const Xml barred = FileRule("barred", "yes").Attr("blackProducts", "P1,P2");
    EXPECT_EQ(DetectOne({Single("barred")}, Rules().Rule(barred)), "not_applicable");
    EXPECT_THAT(Open(), IsEmpty());
    mObserver->trees.clear();
    mInfo->mDeviceDetails = std::make_shared<DeviceDetails>();
    EXPECT_EQ(DetectOne({Single("barred")}, Rules().Rule(barred)), "undecided, incomplete");
    EXPECT_THAT(Open(), ElementsAre("A barred no_data filtered_black_product"));
}

TEST_F(VerdictTest, ARuleThatNamesNoSceneIsAnError)
{
    EXPECT_EQ(DetectOne({Single("off")}, Rules().Rule(FileRule("off", "yes", ""))), "undecided, incomplete");
    EXPECT_THAT(Open(), ElementsAre("A off error filtered_scene"));
}

TEST_F(VerdictTest, LogLinesAreTheSameWithAndWithoutAnObserver)
{
    mDir.Write("FaultTrees.xml", TreeXml(TAG).Tree("T", Or({Basic("A")})).Text());
    mDir.Write("FaultTreeRules.xml", Rules().EventRule("A", {Single("gone")}).Text());
    Arborist arborist(mInfo);
    EXPECT_FALSE(arborist.StartDetection().front()->mIsFault);
    const auto silent = mLog.Lines();
    mLog.Clear();
    Arborist observed(mInfo);
    observed.SetObserver(mObserver);
    EXPECT_FALSE(observed.StartDetection().front()->mIsFault);
    EXPECT_EQ(mLog.Lines(), silent);
}

} // namespace
