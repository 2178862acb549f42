#include "arborist/frame/rule_set_summary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Xml WindowOf(const std::string& period)
{
    return AlarmRuleXml("w" + period, {AlarmIdXml("1", "1", {TimeXml("latest", period, "1")})});
}

Xml NodeRuleOn(const std::string& path)
{
    return NodeRuleXml("r" + path, {NodeInfoXml("T", path)});
}

Xml FolderXml(const std::string& folder)
{
    return Xml("defDBTable").Child(Xml("dbPaths").Child(Xml("dbPath").Attr("value", folder)));
}

class RuleSetSummaryTest : public testing::Test {
protected:
    RuleSetSummary Summary(const std::string& tag = "Tag") const { return SummariseRuleSet("rules", "", tag); }
    RuleSetSummary SummaryOf(const RuleXml& rules) const
    {
        mDir.Write("rules/FaultTreeRules.xml", rules.Text());
        return Summary();
    }
    RuleSetSummary SummaryOf(const TreeXml& trees) const
    {
        mDir.Write("rules/FaultTrees.xml", trees.Text());
        return Summary();
    }

    TempDir mDir;
};

TEST_F(RuleSetSummaryTest, FilesAndFoldersAreThoseOfTheTagEachOnceInFileOrder)
{
    const auto summary = SummaryOf(RuleXml("Tag")
        .Rule(NodeRuleOn("/sys/b")).Rule(NodeRuleOn("a")).Rule(NodeRuleOn("/sys/b"))
        .CommonPart({FolderXml("/var/z"), FolderXml("c"), FolderXml("/var/z")}));
    EXPECT_THAT(summary.nodeFiles, ElementsAre("/sys/b", "a"));
    EXPECT_THAT(summary.searchedFolders, ElementsAre("/var/z", "c"));
    EXPECT_THAT(Summary("Other").nodeFiles, IsEmpty());
}

TEST_F(RuleSetSummaryTest, WhatHasNoPathOrAnEmptyOneNamesNothing)
{
    const auto summary = SummaryOf(RuleXml("Tag")
        .Rule(NodeRuleXml("r", {Xml("nodeInfo").Attr("param", "T"), NodeInfoXml("T", "")}))
        .CommonPart({Xml("defDBTable").Child(Xml("dbPaths").Child(Xml("dbPath"))), FolderXml("")}));
    EXPECT_THAT(summary.nodeFiles, IsEmpty());
    EXPECT_THAT(summary.searchedFolders, IsEmpty());
}

TEST_F(RuleSetSummaryTest, CodesAreThoseOfReplacedRulesToo)
{
    const auto summary = SummaryOf(RuleXml("Tag").Rule(CodeRuleXml("r", "850")).Rule(CodeRuleXml("r", "12"))
        .Rule(CodeRuleXml("s", "850")));
    EXPECT_THAT(summary.detectCodes, ElementsAre("850", "12"));
}

TEST_F(RuleSetSummaryTest, TheLongestWindowIsThirtyDaysWhereItTellsNone)
{
    EXPECT_EQ(SummaryOf(RuleXml("Tag").Rule(CodeRuleXml("r", "850"))).longestWindow, 0);
    EXPECT_EQ(SummaryOf(RuleXml("Tag").Rule(WindowOf("7"))).longestWindow, 7);
    EXPECT_EQ(SummaryOf(RuleXml("Tag").Rule(WindowOf("7")).Rule(WindowOf("0"))).longestWindow, 30);
    EXPECT_EQ(SummaryOf(RuleXml("Tag").CommonPart({})).longestWindow, 30);
    EXPECT_EQ(SummaryOf(RuleXml("Tag").Rule(WindowOf("90")).Rule(WindowOf("0"))).longestWindow, 90);
}

TEST_F(RuleSetSummaryTest, AWindowThatWrapsAroundHasNoBound)
{
    EXPECT_EQ(SummaryOf(RuleXml("Tag").Rule(WindowOf("24855"))).longestWindow, 24855);
    EXPECT_EQ(SummaryOf(RuleXml("Tag").Rule(WindowOf("24856")).Rule(WindowOf("1"))).longestWindow, std::nullopt);
    EXPECT_EQ(SummaryOf(RuleXml("Tag").Rule(WindowOf("-24856"))).longestWindow, std::nullopt);
}

TEST_F(RuleSetSummaryTest, RepairsHaveTheirOperationsAndEventsNameSomeOfTheirOwn)
{
    const auto event = [](const char* id, const char* userDefined) { return Basic(id, {"", "", userDefined, ""}); };
    SummaryOf(RuleXml("Tag").Repair("A", {{"R2", ""}, {"R1", R"({"R1": "{\"\u006fperation\": \"clean\"}"})"}}));
    const auto summary = SummaryOf(TreeXml("Tag").Tree("T",
        Or({event("A", R"({"Repairid": "R0"})"), event("B", "no JSON"), event("C", "{}")})));
    EXPECT_THAT(summary.repairIds, ElementsAre("R0", "R1_clean", "R2"));
    EXPECT_THAT(Summary("Other").repairIds, IsEmpty());
}

TEST_F(RuleSetSummaryTest, TagsAreAllOfTheTreeFileWithTheirFirstLines)
{
    mDir.Write("rules/FaultTrees.xml", "<FaultTrees>\n<Tag/>\n\n<Other/><Tag/>\n</FaultTrees>");
    std::vector<std::string> tags;
    for (const auto& tag : Summary().tags) {
        tags.push_back(tag.name + ":" + std::to_string(tag.line));
    }
    EXPECT_THAT(tags, ElementsAre("Tag:2", "Other:4"));
}

TEST_F(RuleSetSummaryTest, FilesThatCannotBeReadNameNothingAndLogNothing)
{
    const LogCapture log;
    EXPECT_FALSE(Summary().isTreeFileRead);
    mDir.Write("rules/FaultTrees.xml", "<FaultTrees><Tag/>");
    ASSERT_EQ(mkfifo("rules/FaultTreeRules.xml", 0600), 0);
    const auto summary = Summary();
    EXPECT_FALSE(summary.isTreeFileRead);
    EXPECT_FALSE(summary.isRuleFileRead);
    EXPECT_THAT(summary.tags, IsEmpty());
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(RuleSetSummaryTest, APrefixStandsBeforeTheNamesOfBothFiles)
{
    EXPECT_EQ(TreeFilePath("rules", "P"), "rules/P_FaultTrees.xml");
    EXPECT_EQ(RuleFilePath("/a", ""), "/a/FaultTreeRules.xml");
    mDir.Write("rules/P_FaultTrees.xml", TreeXml("Tag").Text());
    mDir.Write("rules/P_FaultTreeRules.xml", RuleXml("Tag").Rule(NodeRuleOn("a")).Text());
    const auto summary = SummariseRuleSet("rules", "P", "Tag");
    EXPECT_TRUE(summary.isTreeFileRead);
    EXPECT_TRUE(summary.isRuleFileRead);
    EXPECT_THAT(summary.nodeFiles, ElementsAre("a"));
}

TEST_F(RuleSetSummaryTest, PathOfARuleStandsBelowTheRootOfTheDevice)
{
    mDir.Write("device/sys/value", "1");
    EXPECT_EQ(PathOnDevice(mDir.Path("device"), "/sys/value"), mDir.Path("device/sys/value"));
    EXPECT_EQ(PathOnDevice("", "/sys/value"), "/sys/value");
}

} // namespace
