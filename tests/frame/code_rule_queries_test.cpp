#include "arborist/frame/arborist.h"

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/frame/arborist_fixture.h"
#include "tests/support/case_name.h"

namespace {

using testing::ElementsAre;
using testing::SizeIs;

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

} // namespace
