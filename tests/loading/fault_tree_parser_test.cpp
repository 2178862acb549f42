#include "arborist/loading/fault_tree_parser.h"

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "arborist/frame/log.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using State = Evidence::RuleSetFileState;

class FaultTreeParserTest : public testing::Test {
protected:
    std::string WriteTrees(const std::string& treeId = "T", const std::string& name = "FaultTrees.xml")
    {
        return mDir.Write(name, TreeXml("jank").Version("9").Tree(treeId, Or({Basic("A")})).Text());
    }
    std::string WriteRules(const RuleXml& rules, const std::string& name = "FaultTreeRules.xml")
    {
        return mDir.Write(name, rules.Text());
    }
    std::string WriteSomeRules() { return WriteRules(RuleXml("jank").Rule(CodeRuleXml("C", "850"))); }

    TempDir mDir;
    LogCapture mLog;
    std::shared_ptr<DetectInfo> mDetectInfo = DetectInfoFor(mDir, "jank");
    FaultTreeParser mParser{mDetectInfo};
};

TEST_F(FaultTreeParserTest, ReadsBothFiles)
{
    const std::string treePath = WriteTrees();
    const std::string rulePath = WriteRules(RuleXml("jank").EventRule("A", {Single("C")}).Rule(CodeRuleXml("C", "850"))
        .Rule(NodeRuleXml("N", {})).FaultDescription("A", {"d"}).Solution("A", {"s"}).Repair("A", {{"r", ""}}));
    EXPECT_FALSE(mParser.IsParseDone());
    EXPECT_EQ(mParser.GetTreeFileVersion(), "");
    mParser.StartParse();
    EXPECT_TRUE(mParser.IsParseDone());
    ASSERT_EQ(mParser.GetFaultTrees().size(), 1U);
    EXPECT_EQ(mParser.GetFaultTrees()[0]->GetId(), "T");
    EXPECT_EQ(mParser.GetTreeFileVersion(), "9");
    EXPECT_EQ(mParser.GetRuleMap().size(), 2U);
    EXPECT_EQ(mParser.GetCodeRuleList().size(), 1U);
    EXPECT_EQ(mParser.GetEventRuleMap().size(), 1U);
    EXPECT_EQ(mParser.GetFaultDescList().size(), 1U);
    EXPECT_EQ(mParser.GetSuggestionList().size(), 1U);
    EXPECT_EQ(mParser.GetRepairInfoById("A").at(0).mId, "r");
    EXPECT_EQ(mParser.GetRuleByRuleName("C")->name, "C");
    EXPECT_EQ(mParser.GetEventRuleByEventId("A")->SetEventId(), "A");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_DEBUG), ElementsAre(
        "FUNc:FaultTreeParser::StartFaultTreeParse: fault tree xml path " + treePath,
        "FUNc:FaultTreeParser::StartParse: fault tree rule xml path " + rulePath));
}

TEST_F(FaultTreeParserTest, ReportsBothFilesWhenTheyAreLoaded)
{
    const std::string treePath = WriteTrees();
    const std::string rulePath = WriteSomeRules();
    mParser.StartParse();
    EXPECT_EQ(mParser.GetTreeFileReport().state, State::LOADED);
    EXPECT_EQ(mParser.GetTreeFileReport().path, treePath);
    EXPECT_EQ(mParser.GetTreeFileReport().count, 1U);
    EXPECT_EQ(mParser.GetRuleFileReport().state, State::LOADED);
    EXPECT_EQ(mParser.GetRuleFileReport().path, rulePath);
    EXPECT_EQ(mParser.GetRuleFileReport().count, 1U);
    EXPECT_EQ(mParser.GetRuleFileReport().message, "");
}

TEST_F(FaultTreeParserTest, MissingRuleFileLeavesTheParseUndoneAndTheLookUpsEmpty)
{
    WriteTrees();
    mParser.StartParse();
    EXPECT_FALSE(mParser.IsParseDone());
    EXPECT_EQ(mParser.GetFaultTrees().size(), 1U);
    EXPECT_EQ(mParser.GetRuleByRuleName("C"), nullptr);
    EXPECT_EQ(mParser.GetEventRuleByEventId("A"), nullptr);
    EXPECT_EQ(mParser.GetCodeRuleNameById("850"), "");
    EXPECT_THAT(mParser.GetFaultDescListById("A"), IsEmpty());
    EXPECT_THAT(mParser.GetSuggestionListById("A"), IsEmpty());
    EXPECT_THAT(mParser.GetRepairListById("A"), IsEmpty());
    EXPECT_EQ(mParser.GetCommonPart(), nullptr);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre("FUNc:FaultTreeParser::StartParse: fault tree rule xml file "
        + mDir.Path("FaultTreeRules.xml") + " not exist."));
    EXPECT_EQ(mParser.GetRuleFileReport().state, State::MISSING);
    EXPECT_EQ(mParser.GetRuleFileReport().path, mDir.Path("FaultTreeRules.xml"));
}

TEST_F(FaultTreeParserTest, MalformedRuleFileEndsTheParseWithoutRules)
{
    WriteTrees();
    const std::string path = mDir.Write("FaultTreeRules.xml", "<r>\n<RuleList>\n</r>");
    mParser.StartParse();
    EXPECT_TRUE(mParser.IsParseDone());
    EXPECT_THAT(mParser.GetRuleMap(), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre("FUNc:FaultTreeParser::InnerXmlHelper::LoadXmlFile: "
        "load tree rules xml failed " + path + ", errno 14"));
    const auto& report = mParser.GetRuleFileReport();
    EXPECT_EQ(report.state, State::MALFORMED);
    EXPECT_THAT(report.message, StartsWith("Error=XML_ERROR_MISMATCHED_ELEMENT"));
    EXPECT_EQ(report.line, 2);
    EXPECT_EQ(report.count, 0U);
}

TEST_F(FaultTreeParserTest, MissingTreeFileDoesNotKeepTheRulesFromBeingRead)
{
    WriteSomeRules();
    mParser.StartParse();
    EXPECT_TRUE(mParser.IsParseDone());
    EXPECT_THAT(mParser.GetFaultTrees(), IsEmpty());
    EXPECT_EQ(mParser.GetRuleMap().size(), 1U);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), Contains("FUNc:FaultTreeParser::StartFaultTreeParse: fault tree xml file "
        + mDir.Path("FaultTrees.xml") + " not exist."));
    EXPECT_EQ(mParser.GetTreeFileReport().state, State::MISSING);
}

TEST_F(FaultTreeParserTest, MalformedTreeFileLogsItsError)
{
    const std::string path = mDir.Write("FaultTrees.xml", "not XML");
    WriteSomeRules();
    mParser.StartParse();
    EXPECT_TRUE(mParser.IsParseDone());
    EXPECT_THAT(mParser.GetFaultTrees(), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(
        StartsWith("FUNc:FaultTreeParser::StartFaultTreeParse: load tree rules xml failed " + path + ", errno ")));
    EXPECT_EQ(mParser.GetTreeFileReport().state, State::MALFORMED);
    EXPECT_EQ(mParser.GetTreeFileReport().line, 1);
}

TEST_F(FaultTreeParserTest, PrefixNamesBothFiles)
{
    mDetectInfo->mRuleFilePrefix = "beta";
    WriteTrees("Plain");
    WriteTrees("Beta", "beta_FaultTrees.xml");
    WriteRules(RuleXml("jank").Rule(CodeRuleXml("Beta", "1")), "beta_FaultTreeRules.xml");
    mParser.StartParse();
    EXPECT_EQ(mParser.GetFaultTrees().at(0)->GetId(), "Beta");
    EXPECT_NE(mParser.GetRuleByRuleName("Beta"), nullptr);
}

TEST_F(FaultTreeParserTest, TagIsTakenWhenTheParserIsMade)
{
    WriteTrees();
    mDetectInfo->mTreeTag = "other";
    mParser.StartParse();
    EXPECT_EQ(mParser.GetFaultTrees().size(), 1U);
}

TEST_F(FaultTreeParserTest, NullDetectInfoParsesNothing)
{
    FaultTreeParser parser(nullptr);
    parser.StartParse();
    EXPECT_FALSE(parser.IsParseDone());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_EQ(parser.GetTreeFileReport().path, "");
}

TEST_F(FaultTreeParserTest, EmptyTagIsReportedByTheParsersThatNeedIt)
{
    WriteTrees();
    WriteSomeRules();
    mDetectInfo->mTreeTag = "";
    FaultTreeParser parser(mDetectInfo);
    parser.StartParse();
    EXPECT_TRUE(parser.IsParseDone());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), Contains("FUNc:RuleParser::Parse: Parse input tag empty"));
    EXPECT_THAT(parser.GetRuleMap(), IsEmpty());
}

TEST_F(FaultTreeParserTest, SecondParseOverwritesTheLists)
{
    WriteTrees();
    WriteRules(RuleXml("jank").EventRule("A", {}).Rule(CodeRuleXml("C", "850")).Solution("A", {"s"}));
    mParser.StartParse();
    EXPECT_EQ(mParser.GetCodeRuleNameById("850"), "C");
    EXPECT_THAT(mParser.GetSuggestionListById("A"), ElementsAre("s"));
    WriteTrees("T2");
    WriteRules(RuleXml("jank").EventRule("B", {}).Rule(CodeRuleXml("D", "860")).Solution("A", {"s2"}));
    mParser.StartParse();
    EXPECT_EQ(mParser.GetFaultTrees().at(0)->GetId(), "T2");
    EXPECT_EQ(mParser.GetCodeRuleNameById("850"), "");
    EXPECT_EQ(mParser.GetCodeRuleNameById("860"), "D");
    EXPECT_EQ(mParser.GetEventRuleByEventId("A"), nullptr);
    EXPECT_THAT(mParser.GetSuggestionListById("A"), ElementsAre("s2"));
}

TEST_F(FaultTreeParserTest, EveryLookUpByIdSeesTheLastParse)
{
    WriteRules(RuleXml("jank").FaultDescription("A", {"d1"}).Solution("A", {"s1"}).Repair("A", {{"r1", ""}}));
    mParser.StartParse();
    EXPECT_THAT(mParser.GetFaultDescListById("A"), ElementsAre("d1"));
    EXPECT_THAT(mParser.GetSuggestionListById("A"), ElementsAre("s1"));
    EXPECT_THAT(mParser.GetRepairListById("A"), ElementsAre("r1"));
    WriteRules(RuleXml("jank").FaultDescription("B", {"d2"}).Solution("B", {"s2"}).Repair("B", {{"r2", ""}}));
    mParser.StartParse();
    EXPECT_THAT(mParser.GetFaultDescListById("A"), IsEmpty());
    EXPECT_THAT(mParser.GetSuggestionListById("A"), IsEmpty());
    EXPECT_THAT(mParser.GetRepairListById("A"), IsEmpty());
    EXPECT_THAT(mParser.GetFaultDescListById("B"), ElementsAre("d2"));
    EXPECT_THAT(mParser.GetSuggestionListById("B"), ElementsAre("s2"));
    EXPECT_THAT(mParser.GetRepairListById("B"), ElementsAre("r2"));
}

TEST_F(FaultTreeParserTest, BadFilesKeepWhatWasReadBefore)
{
    WriteTrees();
    WriteSomeRules();
    mParser.StartParse();
    mDir.Write("FaultTrees.xml", "<r>");
    mDir.Write("FaultTreeRules.xml", "<r>");
    mParser.StartParse();
    EXPECT_TRUE(mParser.IsParseDone());
    EXPECT_EQ(mParser.GetFaultTrees().size(), 1U);
    EXPECT_EQ(mParser.GetTreeFileVersion(), "9");
    EXPECT_EQ(mParser.GetCodeRuleNameById("850"), "C");
    EXPECT_EQ(mParser.GetTreeFileReport().count, 0U);
    EXPECT_EQ(mParser.GetRuleFileReport().state, State::MALFORMED);
}

TEST_F(FaultTreeParserTest, FilesWithoutTheTagGiveEmptyLists)
{
    mDir.Write("FaultTrees.xml", TreeXml("slow").Version("2").Tree("T", Or({})).Text());
    WriteRules(RuleXml("slow").Rule(CodeRuleXml("C", "850")));
    mParser.StartParse();
    EXPECT_TRUE(mParser.IsParseDone());
    EXPECT_THAT(mParser.GetFaultTrees(), IsEmpty());
    EXPECT_EQ(mParser.GetTreeFileVersion(), "2");
    EXPECT_THAT(mParser.GetRuleMap(), IsEmpty());
    EXPECT_EQ(mParser.GetTreeFileReport().state, State::LOADED);
    EXPECT_EQ(mParser.GetTreeFileReport().count, 0U);
}

TEST_F(FaultTreeParserTest, CodeRuleNameIsTheFirstThatStillStandsForItsCode)
{
    WriteRules(RuleXml("jank").Rule(CodeRuleXml("Replaced", "1")).Rule(CodeRuleXml("Recoded", "1"))
        .Rule(CodeRuleXml("First", "1")).Rule(CodeRuleXml("Second", "1")).Rule(CodeRuleXml("Empty", ""))
        .Rule(NodeRuleXml("Replaced", {})).Rule(CodeRuleXml("Recoded", "2")));
    mParser.StartParse();
    EXPECT_EQ(mParser.GetCodeRuleNameById("1"), "First");
    EXPECT_EQ(mParser.GetCodeRuleNameById("2"), "Recoded");
    EXPECT_EQ(mParser.GetCodeRuleNameById("3"), "");
    EXPECT_EQ(mParser.GetCodeRuleNameById(""), "Empty");
}

TEST_F(FaultTreeParserTest, LastItemOfAnIdWinsEvenWhenItIsEmpty)
{
    WriteRules(RuleXml("jank").Solution("A", {"1", "2"}).Solution("B", {"3"}).Solution("A", {"4"})
        .FaultDescription("A", {"d"}).FaultDescription("A", {})
        .Repair("A", {{"r", ""}}).Repair("A", {{"q", ""}, {"p", ""}}));
    mParser.StartParse();
    EXPECT_THAT(mParser.GetSuggestionListById("A"), ElementsAre("4"));
    EXPECT_THAT(mParser.GetSuggestionListById("B"), ElementsAre("3"));
    EXPECT_THAT(mParser.GetSuggestionListById("a"), IsEmpty());
    EXPECT_THAT(mParser.GetFaultDescListById("A"), IsEmpty());
    EXPECT_THAT(mParser.GetRepairListById("A"), ElementsAre("q", "p"));
}

TEST_F(FaultTreeParserTest, EmptyIdFindsNothingEvenWhereAnItemHasIt)
{
    WriteRules(RuleXml("jank").In("EventSolutions", Xml("Event").Raw("<ID><![CDATA[]]></ID>")
        .Child(Xml("Solutions").Child(Xml("solution").Attr("id", "s")))));
    mParser.StartParse();
    EXPECT_EQ(mParser.GetSuggestionList().size(), 1U);
    EXPECT_THAT(mParser.GetSuggestionListById(""), IsEmpty());
}

// The look-ups by linear search over the lists.
std::string CodeRuleNameByWalk(const FaultTreeParser& parser, const std::string& detectCode)
{
    for (const auto& listed : parser.GetCodeRuleList()) {
        const auto entry = parser.GetRuleMap().find(listed->name);
        const auto current = std::dynamic_pointer_cast<CodeRule>(entry->second);
        if (current != nullptr && current->codeItem.id == detectCode) {
            return listed->name;
        }
    }
    return "";
}

std::vector<std::string> SuggestionsByWalk(const FaultTreeParser& parser, const std::string& eventId)
{
    std::vector<std::string> suggestions;
    for (const auto& item : parser.GetSuggestionList()) {
        if (item->GetFaultItemId() == eventId) {
            suggestions = item->GetResolutionSuggestions();
        }
    }
    return suggestions;
}

TEST_F(FaultTreeParserTest, LookUpsOfRandomRuleSetsAnswerAsWalksWould)
{
    const unsigned int seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto oneOf = [&random](const char* stem, unsigned int count) {
        return stem + std::to_string(random() % count);
    };
    for (int round = 0; round < 20; ++round) {
        RuleXml rules("jank");
        for (int number = 0; number < 30; ++number) {
            rules.Rule(random() % 3 == 0 ? NodeRuleXml(oneOf("R", 12), {}) : CodeRuleXml(oneOf("R", 12), oneOf("c", 8)));
            rules.Solution(oneOf("e", 8), {oneOf("s", 99)});
        }
        std::filesystem::remove(mDir.Path("FaultTreeRules.xml"));
        WriteRules(rules);
        mParser.StartParse();
        for (int number = 0; number < 9; ++number) {
            const std::string code = "c" + std::to_string(number);
            EXPECT_EQ(mParser.GetCodeRuleNameById(code), CodeRuleNameByWalk(mParser, code));
            const std::string id = "e" + std::to_string(number);
            EXPECT_EQ(mParser.GetSuggestionListById(id), SuggestionsByWalk(mParser, id));
        }
    }
}

TEST_F(FaultTreeParserTest, RepairWithAnOperationIsIdAndOperation)
{
    // The text must not contain the plain key of the operation; a JSON escape hides it.
    WriteRules(RuleXml("jank").Repair("A",
        {{"r1", R"({"r1": "{\"\u006fperation\": \"reset\"}"})"}, {"r2", ""}}));
    mParser.StartParse();
    EXPECT_THAT(mParser.GetRepairListById("A"), ElementsAre("r1_reset", "r2"));
}

TEST_F(FaultTreeParserTest, CommonPartIsKeptWhenTheRuleSetHasOne)
{
    WriteRules(RuleXml("jank").CommonPart({Xml("defDBTable").Attr("name", "d")}));
    mParser.StartParse();
    ASSERT_NE(mParser.GetCommonPart(), nullptr);
    EXPECT_EQ(mParser.GetCommonPart()->GetDefDbTableCommonList().size(), 1U);
    WriteSomeRules();
    mParser.StartParse();
    EXPECT_EQ(mParser.GetCommonPart(), nullptr);
}

TEST_F(FaultTreeParserTest, RuleFileWithoutARootKeepsTheCommonPartAloneOfWhatWasRead)
{
    WriteRules(RuleXml("jank").EventRule("A", {Single("C")}).Rule(CodeRuleXml("C", "850"))
        .CommonPart({Xml("defDBTable").Attr("name", "d")}));
    mParser.StartParse();
    const auto before = mParser.GetCommonPart();
    mDir.Write("FaultTreeRules.xml", "<?xml version=\"1.0\"?>");
    mParser.StartParse();
    ASSERT_NE(mParser.GetCommonPart(), nullptr);
    EXPECT_EQ(mParser.GetCommonPart(), before);
    EXPECT_THAT(mParser.GetRuleMap(), IsEmpty());
    EXPECT_THAT(mParser.GetEventRuleMap(), IsEmpty());
    EXPECT_EQ(mParser.GetCodeRuleNameById("850"), "");
}

TEST_F(FaultTreeParserTest, SectionsAreReadInTheirOrderWithTheRulesLast)
{
    WriteRules(RuleXml("jank").CommonPart({Xml("foo")}).Rule(Xml("foo")));
    mParser.StartParse();
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("ParseCommonPartElement can not parse this element"),
        HasSubstr("HandleParseRuleElement can not parse this element")));
}

TEST_F(FaultTreeParserTest, WhatIsNoFileCountsAsUnreadable)
{
    mDir.MakeDir("FaultTrees.xml");
    ASSERT_EQ(mkfifo(mDir.Path("FaultTreeRules.xml").c_str(), 0600), 0) << "reading it would wait for ever";
    mParser.StartParse();
    EXPECT_TRUE(mParser.IsParseDone());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(
        "FUNc:FaultTreeParser::StartFaultTreeParse: load tree rules xml failed " + mDir.Path("FaultTrees.xml")
            + ", errno 5",
        "FUNc:FaultTreeParser::InnerXmlHelper::LoadXmlFile: load tree rules xml failed "
            + mDir.Path("FaultTreeRules.xml") + ", errno 5"));
    EXPECT_EQ(mParser.GetTreeFileReport().message, "not a file");
    EXPECT_EQ(mParser.GetTreeFileReport().line, 0);
}

} // namespace
