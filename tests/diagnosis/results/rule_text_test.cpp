#include "diagnosis/results/rule_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"

namespace {

using diagnosis::RuleLines;
using Evidence::Floor;
using testing::ElementsAre;

struct FloorCase { const char* name; Floor floor; const char* text; };
void PrintTo(const FloorCase& floor, std::ostream* out) { *out << floor.name; }
class RuleTextFloor : public testing::TestWithParam<FloorCase> {};

TEST_P(RuleTextFloor, IsNamedWithTheMomentThatItSet)
{
    Evidence::Start start;
    start.start = {1715608800, "2024-05-13 14:00:00"};
    start.floor = GetParam().floor;
    start.periodDays = 7;
    start.repairId = "REPAIR_FAN";
    Evidence::Rule rule;
    rule.part = Evidence::Command{start, {}, {}};
    EXPECT_THAT(RuleLines(rule), ElementsAre("since 2024-05-13 14:00:00 (" + std::string(GetParam().text) + ")"));
}

INSTANTIATE_TEST_SUITE_P(Table, RuleTextFloor, testing::Values(
    FloorCase{"Period", Floor::PERIOD, "period of 7 days"}, FloorCase{"Reset", Floor::RESET, "last reset"},
    FloorCase{"Update", Floor::UPDATE, "last update"}, FloorCase{"Repair", Floor::REPAIR, "repair REPAIR_FAN"}),
    CaseName());

TEST(RuleTextTest, ARuleWithoutASceneSaysSo)
{
    Evidence::Rule rule;
    rule.reason = Evidence::Reason::FILTERED_SCENE;
    rule.filter = {"1", ""};
    EXPECT_THAT(RuleLines(rule), ElementsAre("the detection's scene is 1, the rule names none"));
}

TEST(RuleTextTest, AFailedStatementHasItsError)
{
    Evidence::Statement statement;
    statement.database = "data/JankEventDb.db";
    statement.sql = "select\n    x  from t";
    statement.opened = true;
    statement.error = "no such table: t";
    Evidence::Rule rule;
    rule.part = Evidence::Command{{}, {statement}, {}};
    EXPECT_THAT(RuleLines(rule), ElementsAre("JankEventDb.db: failed: no such table: t", "  select x from t"));
}

TEST(RuleTextTest, AFormulaThatCannotBeReadSaysSo)
{
    Evidence::Rule rule;
    rule.part = Evidence::Node{{}, Evidence::Formula{"a + + b", "", "", "R"}, {}};
    EXPECT_THAT(RuleLines(rule), ElementsAre("R = a + + b = ill-formed"));
}

TEST(RuleTextTest, AnIntervalThatCannotBeUsedSaysSo)
{
    Evidence::Statement statement;
    statement.interval = {"begin", "end", 5, 0, 0, false};
    Evidence::Rule rule;
    rule.part = Evidence::Command{{}, {statement}, {}};
    EXPECT_THAT(RuleLines(rule), ElementsAre("  no interval to scale by: begin 5 to end 0"));
}

struct MissingCase { const char* name; Evidence::MissingCopies missing; const char* text; };
void PrintTo(const MissingCase& missing, std::ostream* out) { *out << missing.name; }
class RuleTextMissing : public testing::TestWithParam<MissingCase> {};

TEST_P(RuleTextMissing, SaysWhyThereIsNoDatabase)
{
    Evidence::Rule rule;
    rule.part = Evidence::Command{{}, {}, Evidence::Hits{"PANELS", 0, 0, 1, GetParam().missing}};
    EXPECT_THAT(RuleLines(rule),
        ElementsAre("hits in 0 of 0 databases (PANELS), 1 needed, 1 missing; " + std::string(GetParam().text)));
}

using Evidence::NoCopy;
INSTANTIATE_TEST_SUITE_P(Table, RuleTextMissing, testing::Values(
    MissingCase{"NoFolderNamed", {NoCopy::FOLDER_MISSING, {}, "x"}, "the rule set names no folder to search"},
    MissingCase{"FolderMissing", {NoCopy::FOLDER_MISSING, {"/a", "/b"}, "x"}, "no folder to search is there (/a, /b)"},
    MissingCase{"FolderEmpty", {NoCopy::FOLDER_EMPTY, {"/a"}, "x"}, "no file lies below /a"},
    MissingCase{"NoMatch", {NoCopy::NO_MATCH, {"/a"}, ""}, "no file below /a matches the pattern \"\""},
    MissingCase{"SettingEmpty", {NoCopy::SETTING_EMPTY, {"/a"}, "x"}, "the setting AppDatabaseDir is empty"},
    MissingCase{"NotCopied", {NoCopy::NOT_COPIED, {"/a"}, "x"}, "nothing could be copied of what matches below /a"},
    MissingCase{"NotInArchive", {NoCopy::NOT_IN_ARCHIVE, {"/a"}, "x"},
        "no file in the archives below /a matches the pattern \"x\""}),
    CaseName());

TEST(RuleTextTest, MissingHitsAreCounted)
{
    Evidence::Rule rule;
    rule.part = Evidence::Command{{}, {}, Evidence::Hits{"PANELS", 3, 1, 2}};
    EXPECT_THAT(RuleLines(rule), ElementsAre("hits in 1 of 3 databases (PANELS), 2 needed, 1 missing"));
}

} // namespace
