#include "diagnosis/results/rule_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"

namespace {

using diagnosis::ExplainedMoment;
using diagnosis::ExplainedQuery;
using diagnosis::ExplainedRule;
using diagnosis::ExplainedStart;
using diagnosis::RuleLines;
using testing::ElementsAre;
using Floor = DetectionObserver::StartTimeSeen::Floor;

struct FloorCase { const char* name; Floor floor; const char* text; };
void PrintTo(const FloorCase& floor, std::ostream* out) { *out << floor.name; }
class RuleTextFloor : public testing::TestWithParam<FloorCase> {};

TEST_P(RuleTextFloor, IsNamedWithTheMomentThatItSet)
{
    ExplainedStart start;
    start.start = {1715608800, "2024-05-13 14:00:00"};
    start.floor = GetParam().floor;
    start.periodDays = 7;
    start.repairId = "REPAIR_FAN";
    ExplainedRule rule;
    rule.start = start;
    EXPECT_THAT(RuleLines(rule), ElementsAre("since 2024-05-13 14:00:00 (" + std::string(GetParam().text) + ")"));
}

INSTANTIATE_TEST_SUITE_P(Table, RuleTextFloor, testing::Values(
    FloorCase{"Period", Floor::PERIOD, "period of 7 days"}, FloorCase{"Reset", Floor::RESET, "last reset"},
    FloorCase{"Update", Floor::UPDATE, "last update"}, FloorCase{"Repair", Floor::REPAIR, "repair REPAIR_FAN"}),
    CaseName());

TEST(RuleTextTest, ARuleWithoutASceneSaysSo)
{
    ExplainedRule rule;
    rule.reason = DetectionObserver::Reason::FILTERED_SCENE;
    rule.filter = {"1", ""};
    EXPECT_THAT(RuleLines(rule), ElementsAre("the detection's scene is 1, the rule names none"));
}

TEST(RuleTextTest, AFailedStatementHasItsError)
{
    ExplainedQuery query;
    query.database = "data/JankEventDb.db";
    query.sql = "select\n    x  from t";
    query.opened = true;
    query.error = "no such table: t";
    ExplainedRule rule;
    rule.queries = {query};
    EXPECT_THAT(RuleLines(rule), ElementsAre("JankEventDb.db: failed: no such table: t", "  select x from t"));
}

TEST(RuleTextTest, AFormulaThatCannotBeReadSaysSo)
{
    ExplainedRule rule;
    rule.formula = {"a + + b", "", "", "R"};
    EXPECT_THAT(RuleLines(rule), ElementsAre("R = a + + b = ill-formed"));
}

TEST(RuleTextTest, AnIntervalThatCannotBeUsedSaysSo)
{
    ExplainedQuery query;
    query.interval = {"begin", "end", 5, 0, 0, false};
    ExplainedRule rule;
    rule.queries = {query};
    EXPECT_THAT(RuleLines(rule), ElementsAre("  no interval to scale by: begin 5 to end 0"));
}

TEST(RuleTextTest, MissingHitsAreCounted)
{
    ExplainedRule rule;
    rule.hits = {"PANELS", 3, 1, 2};
    EXPECT_THAT(RuleLines(rule), ElementsAre("hits in 1 of 3 databases (PANELS), 2 needed, 1 missing"));
}

} // namespace
