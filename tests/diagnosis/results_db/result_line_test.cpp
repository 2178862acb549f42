#include "diagnosis/results_db/result_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/results_db/result_lines.h"
#include "tests/support/case_name.h"

namespace {

using diagnosis::results_db::ReadResultLine;
using diagnosis::results_db::ResultLine;
using testing::ElementsAre;
using testing::HasSubstr;

std::string ProblemOf(const std::string& line)
{
    std::string problem;
    return ReadResultLine(line, true, problem) ? "none" : problem;
}

std::string Replaced(std::string text, const std::string& part, const std::string& other)
{
    const auto at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return at == std::string::npos ? text : text.replace(at, part.size(), other);
}

const std::string GOOD = LineOf("b").Fault("T", {"A & B", "C"}).Undecided("U", "D").Warning("code", "text").Text();

TEST(ResultLineTest, HasAllThatTheLineSays)
{
    std::string problem;
    const auto line = ReadResultLine(
        LineOf("dir/b").Fault("T", {"A & B"}).Undecided("U", "D").Warning("code", "text").Device("d").Text(), false, problem);
    ASSERT_TRUE(line) << problem;
    EXPECT_EQ(line->bundle, "dir/b");
    EXPECT_TRUE(line->ok);
    EXPECT_EQ(line->device + " " + line->engine + " " + line->ruleSet + " " + line->now, "d 1.0 sha256:aa 2024-05-20 12:00:00");
    EXPECT_EQ(line->seconds, 0.25);
    ASSERT_EQ(line->warnings.size(), 1U);
    EXPECT_EQ(line->warnings[0]->message, "text");
    ASSERT_EQ(line->trees.size(), 2U);
    const auto& tree = *line->trees[0];
    EXPECT_EQ(tree.id + " " + tree.version + " " + tree.verdict, "T 1 fault");
    EXPECT_TRUE(tree.isFault && tree.isComplete);
    EXPECT_EQ(tree.checks.total, 2);
    ASSERT_EQ(tree.causes.size(), 1U);
    EXPECT_THAT(tree.causes[0].cutSet, ElementsAre("TOP_T/A", "TOP_T/B"));
    EXPECT_EQ(tree.causes[0].repairs.at(0).operation, "replace");
    ASSERT_EQ(line->trees[1]->open.size(), 1U);
    EXPECT_EQ(line->trees[1]->open[0].reason, "no_runner");
}

TEST(ResultLineTest, HasTheErrorOfABundleThatFailed)
{
    std::string problem;
    const auto line = ReadResultLine(LineOf("b").Failed("timeout", true).Text(), false, problem);
    ASSERT_TRUE(line) << problem;
    EXPECT_FALSE(line->ok);
    EXPECT_EQ(line->error.code + ": " + line->error.message, "timeout: b: timeout");
    EXPECT_TRUE(line->error.retry);
}

TEST(ResultLineTest, HasTheRepairsOnRecord)
{
    std::string problem;
    const std::string text = LineOf("b").Repaired("FAN", "2024-05-01 08:00:00").Repaired("", "").Text();
    const auto line = ReadResultLine(text, false, problem);
    ASSERT_TRUE(line) << problem;
    ASSERT_EQ(line->repaired.size(), 2U);
    EXPECT_EQ(line->repaired[0].id + " " + line->repaired[0].date, "FAN 2024-05-01 08:00:00");
    EXPECT_EQ(line->repaired[1].id + line->repaired[1].date, "");
    EXPECT_EQ(ProblemOf(Replaced(text, "\"date\": \"\"", "\"date\": 7")), "repaired[1].date must be a text, not a number");
}

TEST(ResultLineTest, ReadsLinesOfBeforeRepairsWereTold)
{
    EXPECT_EQ(ProblemOf(Replaced(GOOD, ", \"repaired\": []", "")), "none");
}

TEST(ResultLineTest, TakesEvidenceAsItStandsInTheLineIfAsked)
{
    const std::string evidence = R"({"event": "A",  "fired": true, "rules": [1.50]})";
    const std::string text = LineOf("b").NoFault("T").Explained("T", evidence).Text();
    std::string problem;
    const auto line = ReadResultLine(text, true, problem);
    ASSERT_TRUE(line) << problem;
    ASSERT_EQ(line->evidence.size(), 1U);
    EXPECT_EQ(line->evidence[0].treeId + " " + line->evidence[0].event, "T A");
    EXPECT_EQ(line->evidence[0].json, evidence);
    EXPECT_THAT(ReadResultLine(text, false, problem)->evidence, ElementsAre());
}

TEST(ResultLineTest, IgnoresMembersThatLaterVersionsAdd)
{
    EXPECT_EQ(ProblemOf(Replaced(GOOD, "{\"schema\"", "{\"later\": [{\"key\": 1}], \"schema\"")), "none");
}

struct BadLine {
    const char* name;
    std::string part;
    std::string other;
    std::string problem;
};
void PrintTo(const BadLine& line, std::ostream* out) { *out << line.name; }
class RefusedLine : public testing::TestWithParam<BadLine> {};

TEST_P(RefusedLine, IsToldWithItsReason)
{
    EXPECT_THAT(ProblemOf(Replaced(GOOD, GetParam().part, GetParam().other)), HasSubstr(GetParam().problem));
}

INSTANTIATE_TEST_SUITE_P(Table, RefusedLine, testing::Values(
    BadLine{"OtherSchema", "arborist.detect.1", "arborist.explain.1", "schema is not known: \"arborist.explain.1\""},
    BadLine{"NoJson", "{\"schema\"", "{schema", "line 1, column 2"},
    BadLine{"NoObject", GOOD, "[]", "the line must be an object, not a list"},
    BadLine{"NoBundle", "\"bundle\"", "\"bundel\"", "bundle is missing"},
    BadLine{"NumberForText", "\"bundle\": \"b\"", "\"bundle\": 1", "bundle must be a text, not a number"},
    BadLine{"TextForTruth", "\"ok\": true", "\"ok\": \"yes\"", "ok must be true or false, not a text"},
    BadLine{"NoTree", "{\"treeId\"", "7, {\"treeId\"", "results[0] must be an object, not a number"},
    BadLine{"UnknownVerdict", "\"verdict\": \"fault\"", "\"verdict\": \"maybe\"", "results[0].verdict is not known: \"maybe\""},
    BadLine{"NegativeCount", "\"total\": 2", "\"total\": -2", "results[0].checks.total must be a whole number from 0"},
    BadLine{"HugeCount", "\"total\": 2", "\"total\": 1e300", "results[0].checks.total must be a whole number from 0"},
    BadLine{"PathNoText", "\"TOP_T/C\"", "null", "results[0].rootCauses[1].cutSet[0] must be a text, not null"},
    BadLine{"NoSuchDay", "2024-05-20", "2024-02-31", "now must be \"YYYY-MM-DD HH:MM:SS\" or empty"},
    BadLine{"NowInSeconds", "2024-05-20 12:00:00", "1713607200", "now must be \"YYYY-MM-DD HH:MM:SS\" or empty"},
    BadLine{"NoOrigin", ", \"engine\": \"1.0\"", "", "engine is missing"},
    BadLine{"NoError", "\"error\"", "\"eror\"", "error is missing"},
    BadLine{"NoCutSet", "\"cutSet\"", "\"cutsSet\"", "results[0].rootCauses[0].cutSet is missing"},
    BadLine{"WarningWithoutLine", "\"line\"", "\"lime\"", "warnings[0].line is missing"},
    BadLine{"NegativeSeconds", "0.25", "-1", "seconds must be a number from 0 to 1e9, not a number"},
    BadLine{"EndlessSeconds", "0.25", "1e300", "seconds must be a number from 0 to 1e9, not a number"}),
    CaseName());

TEST(ResultLineTest, QuotesOnlyTheStartOfALongText)
{
    EXPECT_LT(ProblemOf(Replaced(GOOD, "arborist.detect.1", std::string(100'000, 'x'))).size(), 200U);
}

TEST(ResultLineTest, RefusesWhatIsNestedTooDeeply)
{
    EXPECT_NE(ProblemOf(std::string(1'000'000, '[')), "none");
}

} // namespace
