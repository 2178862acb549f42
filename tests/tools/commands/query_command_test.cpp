#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class QueryCommandTest : public testing::Test {
protected:
    TempDir mDir;
};

TEST_F(QueryCommandTest, TellsWhetherTheRuleRunsAndItsIds)
{
    WriteCodeBundle(mDir, "b", {"one", "two"});
    const auto result = RunArborist({"query", "b", "CODE_C2"});
    EXPECT_EQ(result.out, "b: CODE_C2\n"
                          "  would run    yes\n"
                          "  description  D_C2\n"
                          "  suggestion   S_C2\n"
                          "  repair       R_C2\n");
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(result.status, 0);
}

TEST_F(QueryCommandTest, JsonHasExactlyTheKeysInTheirOrder)
{
    WriteCodeBundle(mDir, "b", {"one"});
    EXPECT_EQ(RunArborist({"query", "--json", "b", "CODE_C1"}).out,
        R"({"schema": "arborist.query.1", "bundle": "b", "ok": true, "warnings": [], "code": "CODE_C1", )"
        R"("wouldRun": true, "faultDescription": "D_C1", "suggestion": "S_C1", "repair": "R_C1"})" "\n");
}

TEST_F(QueryCommandTest, AnUnknownCodeHasNoIdsAndRunsNothing)
{
    WriteCodeBundle(mDir, "b", {"one"});
    const auto result = RunArborist({"query", "b", "OTHER"});
    EXPECT_EQ(result.out, "b: OTHER\n  would run    no\n  description  none\n  suggestion   none\n  repair       none\n");
    EXPECT_EQ(result.err, "arborist: b: warning: no code rule has the code \"OTHER\"\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(RunArborist({"query", "b", "CODEC1"}).err,
        "arborist: b: warning: no code rule has the code \"CODEC1\"; did you mean \"CODE_C1\"?\n");
}

TEST_F(QueryCommandTest, AnotherSceneDoesNotRunTheRuleButKnowsItsIds)
{
    WriteCodeBundle(mDir, "b", {"one"}, R"({"detectScene": 2, "treeTag": "Tag"})");
    EXPECT_THAT(RunArborist({"query", "b", "CODE_C1"}).out, HasSubstr("would run    no\n  description  D_C1\n"));
}

TEST_F(QueryCommandTest, ARuleSetThatCannotBeUsedIsNoAnswer)
{
    WriteCodeBundle(mDir, "b", {"one"});
    std::filesystem::remove("b/rules/FaultTreeRules.xml");
    const auto text = RunArborist({"query", "b", "CODE_C1"});
    EXPECT_EQ(text.out, "b: CODE_C1\n  NOT ANSWERED\n");
    EXPECT_EQ(text.err, "arborist: b: rules/FaultTreeRules.xml: no such file [rule_file_missing]\n");
    EXPECT_EQ(text.status, 3);
    EXPECT_THAT(RunArborist({"query", "--json", "b", "CODE_C1"}).out, HasSubstr(R"("ok": false)"));
}

TEST_F(QueryCommandTest, AnEmptyCodeIsWrongUse)
{
    WriteCodeBundle(mDir, "b", {"one"});
    EXPECT_EQ(RunArborist({"query", "b", ""}).status, 2);
}

} // namespace
