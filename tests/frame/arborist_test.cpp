#include "arborist/frame/arborist.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/utilities/zip_util.h"
#include "tests/support/case_name.h"
#include "tests/support/code_runner_stub.h"
#include "tests/support/log_capture.h"
#include "tests/support/recording_observer.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

/// Gives access to private steps that no public call reaches.
struct ArboristPeer {
    static bool InitFaultTree(Arborist& arborist) { return arborist.InitFaultTree(); }
    static const std::string& UnzipDir(const Arborist& arborist) { return arborist.mUnzipDir; }
};

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string TAG = "Laptop";

// "id[description suggestions repairs]"
std::string Text(const FaultTreeResult::RootCauseResult& cause)
{
    std::string text = cause.mNode->mId + "[" + cause.mFaultDescription;
    for (const auto& suggestion : cause.mSuggestions) {
        text += " " + suggestion;
    }
    for (const auto& repair : cause.mRepairInfos) {
        text += " " + repair.mId;
    }
    return text + "]";
}

// Each as "id vversion fault cause cause"
std::vector<std::string> Texts(const std::vector<std::shared_ptr<FaultTreeResult>>& results)
{
    std::vector<std::string> texts;
    for (const auto& result : results) {
        std::string text = result->mTreeId + " v" + result->mVersion + (result->mIsFault ? " fault" : " no fault");
        for (const auto& cause : result->mRootCauseResults) {
            text += " " + Text(*cause);
        }
        texts.push_back(text);
    }
    return texts;
}

// A node rule that compares a formula over its nodes, which are named like their files, with a limit.
Xml FormulaRule(const std::string& name, const std::vector<std::string>& files, const std::string& formula,
                const Xml& test)
{
    std::vector<Xml> parts;
    std::vector<Xml> params{ParamXml("result", "result", "double")};
    for (const auto& file : files) {
        parts.push_back(NodeInfoXml(file, "/sys/" + file));
        params.push_back(ParamXml(file, file, "int"));
    }
    parts.push_back(ParamsXml(params));
    parts.push_back(LogicExpressionXml(formula, "result", "calc"));
    parts.push_back(ConditionXml({MultipleLogicXml({test})}));
    return NodeRuleXml(name, parts);
}

class ArboristTest : public testing::Test {
protected:
    ArboristTest()
    {
        mInfo->mCodeRuleRunner = mRunner;
        mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("programdata"));
    }

    void WriteTrees(const TreeXml& trees) { mDir.Write("FaultTrees.xml", trees.Text()); }
    void WriteRules(const RuleXml& rules) { mDir.Write("FaultTreeRules.xml", rules.Text()); }
    void WriteNode(const std::string& file, const std::string& value) { mDir.Write("device/sys/" + file, value); }

    // A rule set for a worn and old battery, with an AND beside an OR.
    void WriteBattery()
    {
        WriteTrees(TreeXml(TAG).Version("7").Tree(
            "battery",
            Or({Intermediate("aged", And({Basic("wear", {"Wear", "", "{}", ""}), Basic("cycles")})), Basic("hot")})));
        WriteRules(RuleXml(TAG)
                       .Rule(FormulaRule("worn", {"full", "design"}, "full / design", TestXml("lt", "result", "0.6")))
                       .Rule(FormulaRule("old", {"count"}, "count", TestXml("ge", "result", "500")))
                       .Rule(FormulaRule("heat", {"temp"}, "temp - 40 - 5", TestXml("gt", "result", "20")))
                       .EventRule("wear", {Single("worn")})
                       .EventRule("cycles", {Single("old")})
                       .EventRule("hot", {Single("heat")})
                       .FaultDescription("wear", {"F1", "F2"})
                       .Solution("wear", {"S1", "S2"})
                       .Repair("wear", {{"R1", ""}, {"R2", ""}}));
        WriteNode("full", "29000\n");
        WriteNode("design", "50000\n");
        WriteNode("count", "612\n");
        WriteNode("temp", "31\n");
    }

    // The lines of the facade, without those of its helpers.
    std::vector<std::string> OwnLines(int level) const
    {
        std::vector<std::string> lines;
        for (const auto& line : mLog.Lines(level)) {
            if (line.rfind("FUNc:Arborist::", 0) == 0) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::shared_ptr<CodeRunnerStub> mRunner = std::make_shared<CodeRunnerStub>();
    std::shared_ptr<DetectInfo> mInfo = DetectInfoFor(mDir, TAG);
};

TEST_F(ArboristTest, FindsRootCausesFromFilesToIds)
{
    WriteBattery();
    const auto results = Arborist(mInfo).StartDetection();
    EXPECT_THAT(Texts(results), ElementsAre("battery v7 fault wear[F1 S1 S2 R1 R2]"));
    ASSERT_THAT(results, SizeIs(1));
    EXPECT_EQ(results[0]->mRootCauseResults[0]->mNode->mName, "Wear");
    EXPECT_EQ(results[0]->mRootCauseResults[0]->mNode->mUserDefined, "{}");
    EXPECT_THAT(OwnLines(FT::LEVEL_DEBUG), ElementsAre("FUNc:Arborist::StartDetection: StartDetection Parse finished",
                                                       "FUNc:Arborist::StartDetection: StartDetection Run finished"));
}

TEST_F(ArboristTest, CauseWithoutDescriptionKeepsItEmptyAndStays)
{
    WriteBattery();
    WriteNode("count", "12");
    WriteNode("temp", "57"); // 57 - (40 - 5) = 22
    EXPECT_THAT(Texts(Arborist(mInfo).StartDetection()), ElementsAre("battery v7 fault hot[]"));
}

TEST_F(ArboristTest, HealthyTreesHaveResultsTooInFileOrder)
{
    WriteTrees(TreeXml(TAG).Tree("second", Or({Basic("B")})).Tree("first", Or({Basic("A")})));
    WriteRules(RuleXml(TAG));
    EXPECT_THAT(Texts(Arborist(mInfo).StartDetection()), ElementsAre("second v-1 no fault", "first v-1 no fault"));
}

TEST_F(ArboristTest, CodeRuleDecidesByTheHostsAnswer)
{
    WriteTrees(TreeXml(TAG).Tree("T", Or({Basic("A"), Basic("B")})));
    WriteRules(RuleXml(TAG).Rule(CodeRuleXml("c", "C", "info")).EventRule("A", {Single("c")}).Solution("A", {"S"}));
    mRunner->answer = true;
    EXPECT_THAT(Texts(Arborist(mInfo).StartDetection()), ElementsAre("T v-1 fault A[ S]"));
    EXPECT_THAT(mRunner->calls, ElementsAre("|S||info"));
}

TEST_F(ArboristTest, MissingRuleFileGivesNoResults)
{
    WriteTrees(TreeXml(TAG).Tree("T", Or({Basic("A")})));
    EXPECT_THAT(Arborist(mInfo).StartDetection(), IsEmpty());
    EXPECT_THAT(OwnLines(FT::LEVEL_WARN), ElementsAre("FUNc:Arborist::StartDetection: startDetection time out"));
    EXPECT_FALSE(mDir.Has("programdata"));
}

TEST_F(ArboristTest, TreeFileWithoutTreesGivesNoResults)
{
    WriteTrees(TreeXml(TAG));
    WriteRules(RuleXml(TAG));
    EXPECT_THAT(Arborist(mInfo).StartDetection(), IsEmpty());
    EXPECT_THAT(OwnLines(FT::LEVEL_WARN),
                ElementsAre("FUNc:Arborist::StartDetection: StartDetection fault tree is invalid"));
    EXPECT_TRUE(mDir.Has("programdata/Comms/Lumbra/zxdetectrepair/databases")); // rules were still prepared
}

TEST_F(ArboristTest, EveryDetectionReadsTheFilesAnewAndEarlierResultsStay)
{
    WriteBattery();
    Arborist arborist(mInfo);
    const auto before = arborist.StartDetection();
    WriteTrees(TreeXml(TAG).Version("8").Tree("other", Or({Basic("hot")})));
    EXPECT_THAT(Texts(arborist.StartDetection()), ElementsAre("other v8 no fault"));
    EXPECT_THAT(Texts(before), ElementsAre("battery v7 fault wear[F1 S1 S2 R1 R2]"));
}

TEST_F(ArboristTest, SecondDetectionSeesAHealedDevice)
{
    WriteBattery();
    Arborist arborist(mInfo);
    EXPECT_TRUE(arborist.StartDetection()[0]->mIsFault);
    WriteNode("count", "3");
    EXPECT_FALSE(arborist.StartDetection()[0]->mIsFault);
}

// Nothing removes the rule set that was read, and what fired once stays true as long as its records exist.
TEST_F(ArboristTest, WhereTheFilesAreGoneASecondDetectionKeepsTheRuleSetAndWhatFired)
{
    WriteBattery();
    Arborist arborist(mInfo);
    EXPECT_THAT(arborist.StartDetection(), SizeIs(1));
    std::filesystem::remove(mDir.Path("FaultTreeRules.xml"));
    mDir.Write("FaultTrees.xml", "<cut off");
    WriteNode("count", "3");
    WriteNode("temp", "57");
    EXPECT_THAT(Texts(arborist.StartDetection()), ElementsAre("battery v7 fault wear[F1 S1 S2 R1 R2] hot[]"));
}

// The checker of command rules is created once, with the shared data of that time.
TEST_F(ArboristTest, CommandRulesKeepTheSharedDataOfTheirFirstDetection)
{
    WriteTrees(TreeXml(TAG).Tree("T", Or({Basic("A")})));
    const Xml countsCopies = CommandRuleXml("c")
                                 .Child(Xml("referenceDefDB").TextChild("defDBName", "d"))
                                 .Child(Xml("AnalysisMethod").Attr("type", "SQL").Child(Xml("SQL_Condition")));
    WriteRules(RuleXml(TAG).Rule(countsCopies).EventRule("A", {Single("c")}));
    Arborist arborist(mInfo);
    EXPECT_FALSE(arborist.StartDetection()[0]->mIsFault);
    WriteRules(RuleXml(TAG)
                   .Rule(countsCopies)
                   .EventRule("A", {Single("c")})
                   .CommonPart({Xml("defDBTable").Attr("name", "d")}));
    EXPECT_FALSE(arborist.StartDetection()[0]->mIsFault);
    EXPECT_TRUE(Arborist(mInfo).StartDetection()[0]->mIsFault); // without a number, zero copies are enough
}

TEST_F(ArboristTest, WithoutDetectInfoEveryCallAnswersEmptyWithItsMessage)
{
    Arborist arborist(nullptr);
    const auto observer = std::make_shared<RecordingObserver>();
    arborist.SetObserver(observer);
    EXPECT_THAT(arborist.StartDetection(), IsEmpty());
    EXPECT_FALSE(arborist.IsRunRule("C"));
    EXPECT_EQ(arborist.GetCodeRuleFaultDescId("C"), "");
    EXPECT_EQ(arborist.GetCodeRuleSuggestionId("C"), "");
    EXPECT_EQ(arborist.GetCodeRuleRepairId("C"), "");
    EXPECT_FALSE(ArboristPeer::InitFaultTree(arborist));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
                ElementsAre("FUNc:Arborist::StartDetection: startDetection time out",
                            "FUNc:Arborist::IsRunRule: mDetectInfo or codeRuleId is null in isRunRule()",
                            "FUNc:Arborist::GetCodeRuleFaultDescId: parse time out in GetCodeRuleFaultDescId",
                            "FUNc:Arborist::GetCodeRuleSuggestionId: parse time out in GetCodeRuleSuggestionId",
                            "FUNc:Arborist::GetCodeRuleRepairId: parse time out in GetCodeRuleRepairId"));
    EXPECT_THAT(observer->Lines(), IsEmpty());
}

// ---- Queries. ----

struct QueryCase {
    const char* name;
    std::string (Arborist::*call)(const std::string&);
    const char* id;
    const char* emptyCode;
    const char* notParsed;
    const char* found;
    const char* notFound;
};
void PrintTo(const QueryCase& query, std::ostream* out) { *out << query.name; }
class CodeRuleQueries : public ArboristTest, public testing::WithParamInterface<QueryCase> {
protected:
    void WriteCodeRule()
    {
        WriteTrees(TreeXml(TAG).Tree("T1", Or({Basic("A")})).Tree("T2", Or({Basic("B")})));
        WriteRules(RuleXml(TAG)
                       .Rule(CodeRuleXml("c", "C"))
                       .EventRule("A", {Multiple({"x", "c"})})
                       .FaultDescription("A", {"F1", "F2"})
                       .Solution("A", {"S1", "S2"})
                       .Repair("A", {{"R1", ""}, {"R2", ""}}));
    }

    static std::string Ask(Arborist& arborist, const std::string& code) { return (arborist.*GetParam().call)(code); }
};

TEST_P(CodeRuleQueries, GiveTheFirstIdOfTheEventThatUsesTheRule)
{
    WriteCodeRule();
    Arborist arborist(mInfo);
    EXPECT_EQ(Ask(arborist, "C"), GetParam().id);
    EXPECT_THAT(OwnLines(FT::LEVEL_INFO), ElementsAre(GetParam().found));
}

TEST_P(CodeRuleQueries, ShowALoggerTheirFormatsWhole)
{
    Arborist arborist(mInfo);
    Ask(arborist, "");
    Ask(arborist, "C");
    WriteCodeRule();
    Ask(arborist, "C");
    for (const std::string text : {GetParam().emptyCode, GetParam().notParsed}) {
        EXPECT_THAT(mLog.Formats(), testing::Contains("FUNc:%s" + text.substr(text.find(": "))));
    }
    const std::string found = GetParam().found;
    const auto colon = found.find(": ");
    EXPECT_THAT(mLog.Formats(),
                testing::Contains("FUNc:%s" + found.substr(colon, found.rfind(": ") + 2 - colon) + "%s "));
}

TEST_P(CodeRuleQueries, GiveNothingForACodeThatNoRuleHolds)
{
    WriteCodeRule();
    Arborist arborist(mInfo);
    EXPECT_EQ(Ask(arborist, "X"), "");
    EXPECT_THAT(OwnLines(FT::LEVEL_WARN), ElementsAre(GetParam().notFound));
}

TEST_P(CodeRuleQueries, GiveNothingForTheEmptyCodeAndReadNoFile)
{
    Arborist arborist(mInfo);
    EXPECT_EQ(Ask(arborist, ""), "");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(GetParam().emptyCode));
}

TEST_P(CodeRuleQueries, GiveNothingWithoutARuleFile)
{
    Arborist arborist(mInfo);
    EXPECT_EQ(Ask(arborist, "C"), "");
    EXPECT_THAT(OwnLines(FT::LEVEL_WARN), ElementsAre(GetParam().notParsed));
}

TEST_P(CodeRuleQueries, SearchTheLastTreeAloneAfterADetection)
{
    WriteCodeRule();
    Arborist arborist(mInfo);
    EXPECT_THAT(arborist.StartDetection(), SizeIs(2));
    EXPECT_EQ(Ask(arborist, "C"), ""); // A is in the first tree
}

TEST_P(CodeRuleQueries, ReadTheRuleSetOnce)
{
    WriteCodeRule();
    Arborist arborist(mInfo);
    EXPECT_EQ(Ask(arborist, "C"), GetParam().id);
    mLog.Clear();
    WriteRules(RuleXml(TAG));
    EXPECT_EQ(Ask(arborist, "C"), GetParam().id);
    EXPECT_THAT(mLog.Lines(), ElementsAre(GetParam().found));
}

INSTANTIATE_TEST_SUITE_P(Table, CodeRuleQueries, testing::Values(
    QueryCase{"FaultDescription", &Arborist::GetCodeRuleFaultDescId, "F1",
        "FUNc:Arborist::GetCodeRuleFaultDescId: detectCode is empty in getCodeRuleFaultDescId",
        "FUNc:Arborist::GetCodeRuleFaultDescId: parse time out in GetCodeRuleFaultDescId",
        "FUNc:Arborist::GetCodeRuleFaultDescId: get the fault Description id by fault tree : F1 ",
        "FUNc:Arborist::GetCodeRuleFaultDescId: resolutionSuggestions is null or empty"},
    QueryCase{"Suggestion", &Arborist::GetCodeRuleSuggestionId, "S1",
        "FUNc:Arborist::GetCodeRuleSuggestionId: detectCode is empty in GetCodeRuleSuggestionId",
        "FUNc:Arborist::GetCodeRuleSuggestionId: parse time out in GetCodeRuleSuggestionId",
        "FUNc:Arborist::GetCodeRuleSuggestionId: get the Suggestions id by fault tree : S1 ",
        "FUNc:Arborist::GetCodeRuleSuggestionId: resolutionSuggestions is null or empty"},
    QueryCase{"Repair", &Arborist::GetCodeRuleRepairId, "R1",
        "FUNc:Arborist::GetCodeRuleRepairId: detectCode is empty in GetCodeRuleRepairId",
        "FUNc:Arborist::GetCodeRuleRepairId: parse time out in GetCodeRuleRepairId",
        "FUNc:Arborist::GetCodeRuleRepairId: get the Repair id by fault tree : R1 ",
        "FUNc:Arborist::GetCodeRuleRepairId: resolutionSuggestions is null or empty"}),
    CaseName());

TEST_F(ArboristTest, CodeRuleRunsWhereItsFiltersLetIt)
{
    WriteTrees(TreeXml(TAG));
    WriteRules(RuleXml(TAG)
                   .Rule(CodeRuleXml("here", "HERE"))
                   .Rule(CodeRuleXml("elsewhere", "ELSE", "", "2")));
    Arborist arborist(mInfo);
    EXPECT_TRUE(arborist.IsRunRule("ER"));
    EXPECT_FALSE(arborist.IsRunRule("ELSE"));
    EXPECT_FALSE(arborist.IsRunRule("X"));
    EXPECT_FALSE(arborist.IsRunRule(""));
    EXPECT_THAT(OwnLines(FT::LEVEL_WARN),
                ElementsAre("FUNc:Arborist::IsRunRule: mDetectInfo or codeRuleId is null in isRunRule()"));
}

TEST_F(ArboristTest, WithoutARuleFileNoCodeRuleRuns)
{
    EXPECT_FALSE(Arborist(mInfo).IsRunRule("C"));
    EXPECT_THAT(OwnLines(FT::LEVEL_WARN), ElementsAre("FUNc:Arborist::IsRunRule: parse time out in isRunRule"));
}

// ---- Observer. ----

TEST_F(ArboristTest, ObserverIsToldOneDetectionFromFilesToCauses)
{
    WriteBattery();
    Arborist arborist(mInfo);
    const auto observer = std::make_shared<RecordingObserver>();
    arborist.SetObserver(observer);
    arborist.StartDetection();
    EXPECT_THAT(observer->Lines(),
                ElementsAre(
                    "file trees loaded " + mDir.Path("FaultTrees.xml") + " count 1 line 0",
                    "file rules loaded " + mDir.Path("FaultTreeRules.xml") + " count 3 line 0",
                    "tree battery version 1 type test",
                    "event wear (Wear)", "ask wear worn node #0", "node full /sys/full = '29000\n'",
                    "node design /sys/design = '50000\n'",
                    "formula result = full / design as full / design -> 0.580000",
                    "compare result result double '0.580000' lt '0.6' holds",
                    "rule wear worn node TRUE [condition_met]", "decided wear TRUE",
                    "event cycles ()", "ask cycles old node #0", "node count /sys/count = '612\n'",
                    "formula result = count as count -> 612.000000",
                    "compare result result double '612.000000' ge '500' holds",
                    "rule cycles old node TRUE [condition_met]", "decided cycles TRUE",
                    "event hot ()", "ask hot heat node #0", "node temp /sys/temp = '31\n'",
                    "formula result = temp - 40 - 5 as temp - (40 - 5) -> -4.000000",
                    "compare result result double '-4.000000' gt '20' fails",
                    "rule hot heat node FALSE [condition_not_met]", "decided hot FALSE",
                    "folded 0 intermediate or battery () TRUE", "folded 1 intermediate and aged () TRUE",
                    "folded 2 basic wear (Wear) TRUE {}", "folded 2 basic cycles () TRUE",
                    "folded 1 basic hot () FALSE",
                    "cause wear: battery/aged/wear & battery/aged/cycles up wear,aged,battery,cycles",
                    "finished battery fault"));
}

TEST_F(ArboristTest, ObserverIsToldEventsOfEveryKindAndStatus)
{
    WriteTrees(TreeXml(TAG).Tree("T", Or({Xml("House").TextChild("ID", "U"), Basic("A"),
        Intermediate("G", And({Basic("B")})), Xml("Intermediate-Event").TextChild("ID", "N")})));
    WriteRules(RuleXml(TAG).EventRule("G", {Single("c")}).Rule(CodeRuleXml("c", "C", "", "2")));
    Arborist arborist(mInfo);
    const auto observer = std::make_shared<RecordingObserver>();
    arborist.SetObserver(observer);
    arborist.StartDetection();
    EXPECT_THAT(observer->Lines("folded"), ElementsAre("folded 0 intermediate or T () UNKNOWN",
        "folded 1 undeveloped U () UNKNOWN", "folded 1 basic A () FALSE",
        "folded 1 intermediate and G () FALSE observable", "folded 2 basic B () FALSE",
        "folded 1 intermediate N () FALSE"));
    EXPECT_THAT(observer->Lines("ask"), ElementsAre("ask G c code #0"));
}

TEST_F(ArboristTest, ObserverIsToldOfFilesThatCantBeRead)
{
    mDir.Write("FaultTrees.xml", "<FaultTrees>\n<a>");
    Arborist arborist(mInfo);
    const auto observer = std::make_shared<RecordingObserver>();
    arborist.SetObserver(observer);
    arborist.IsRunRule("C");
    ASSERT_THAT(observer->Lines(), SizeIs(2));
    EXPECT_THAT(observer->Lines()[0], testing::StartsWith("file trees malformed " + mDir.Path("FaultTrees.xml")));
    EXPECT_EQ(observer->Lines()[1], "file rules missing " + mDir.Path("FaultTreeRules.xml") + " count 0 line 0");
}

TEST_F(ArboristTest, ObserverChangesNeitherResultsNorLog)
{
    WriteBattery();
    Arborist plain(mInfo);
    const auto results = Texts(plain.StartDetection());
    const auto log = mLog.Lines();
    mLog.Clear();
    Arborist observed(mInfo);
    observed.SetObserver(std::make_shared<RecordingObserver>());
    EXPECT_EQ(Texts(observed.StartDetection()), results);
    EXPECT_EQ(mLog.Lines(), log);
}

TEST_F(ArboristTest, ObserverCanBeChangedAndTakenAway)
{
    WriteBattery();
    Arborist arborist(mInfo);
    auto first = std::make_shared<RecordingObserver>();
    const auto second = std::make_shared<RecordingObserver>();
    arborist.SetObserver(first);
    arborist.StartDetection();
    EXPECT_THAT(first->Lines("finished"), SizeIs(1));
    arborist.SetObserver(second);
    first.reset();
    arborist.StartDetection();
    EXPECT_THAT(second->Lines("formula"), SizeIs(3)); // checkers that were created before use it, too
    second->Clear();
    arborist.SetObserver(nullptr);
    arborist.StartDetection();
    EXPECT_THAT(second->Lines(), IsEmpty());
}

// ---- The rule archive. ----

TEST_F(ArboristTest, RuleArchiveIsUnpackedBesideItself)
{
    mDir.Write("source.txt", "content");
    const auto archive = ZipUtil::CreateZipFile(mDir.Path("FaultTree.zip"));
    ASSERT_TRUE(ZipUtil::AddFileInZip(archive, mDir.Path("source.txt"), 0, "inside.txt"));
    ZipUtil::CloseZipFile(archive);
    Arborist arborist(mInfo);
    mDir.MakeDir("temp_Laptop");
    EXPECT_TRUE(ArboristPeer::InitFaultTree(arborist));
    EXPECT_EQ(ArboristPeer::UnzipDir(arborist), mDir.Path() + "/temp_Laptop/");
    EXPECT_EQ(mDir.Read("temp_Laptop/inside.txt"), "content");
}

TEST_F(ArboristTest, WithoutRuleArchiveNothingIsUnpacked)
{
    Arborist arborist(mInfo);
    EXPECT_FALSE(ArboristPeer::InitFaultTree(arborist));
    EXPECT_EQ(ArboristPeer::UnzipDir(arborist), "");
}

TEST_F(ArboristTest, BrokenRuleArchiveIsRefused)
{
    mDir.Write("FaultTree.zip", "no archive");
    Arborist arborist(mInfo);
    EXPECT_FALSE(ArboristPeer::InitFaultTree(arborist));
}

} // namespace
