#include "arborist/stores/common_part/selected_rows.h"

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/stores/sql/sql_database.h"
#include "tests/stores/common_part/row_texts.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class SelectedRowsTest : public testing::Test {
protected:
    std::vector<std::string> Query(const std::string& sql, std::int64_t minTime)
    {
        FT::sql::SqlDatabase database;
        database.Open(mPath);
        std::vector<Json::Value> rows;
        mIsWhole = SelectedRows::QueryDataSet(database, sql, rows, minTime);
        return TextsOf(rows);
    }

    TempDir mDir;
    LogCapture mLog;
    std::string mPath = mDir.Path("log.db");
    bool mIsWhole = false; // what the last query said
};

TEST_F(SelectedRowsTest, EventAtTheMinimumTimeIsDropped)
{
    EventLogBuilder().Rows({{100, 1, "", ""}, {101, 1, "", ""}}).WriteTo(mPath);
    const std::string all = "select extra, occurrence_time from event_info join event_info_flow on "
                            "event_pid = event_info._ID";
    EXPECT_THAT(Query(all, 100), ElementsAre("occurrence_time=101"));
}

TEST_F(SelectedRowsTest, TimeIsTheNumberAtTheFrontOfWhateverStandsThere)
{
    EventLogBuilder().WriteTo(mPath);
    const std::string values = "select '', '105 s' union all select '', 106.7 union all select '', 'x' union all "
                               "select '', null union all select '', 107";
    EXPECT_THAT(Query(values, 0),
        ElementsAre("occurrence_time=105", "occurrence_time=106", "occurrence_time=107"));
}

TEST_F(SelectedRowsTest, RowsBeforeAFailureStay)
{
    EventLogBuilder().WriteTo(mPath);
    EXPECT_THAT(Query(
                    "select '', 105 union all select '', abs(-9223372036854775808)", 0),
        ElementsAre("occurrence_time=105"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: integer overflow"));
}

TEST_F(SelectedRowsTest, StatementThatBreaksOffSaysSoBeforeItsRowsAreRead)
{
    EXPECT_THAT(Query(
        "select '', 7 union all select '{\"a\":1}', 8 union all select abs(-9223372036854775808), 9", 0),
        ElementsAre("occurrence_time=7", "a=1 occurrence_time=8"));
    EXPECT_THAT(mLog.Lines(), ElementsAre(
        "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: integer overflow",
        "FUNc:CommonPartDbHelper::ExtraStrToJson: extra is empty."));
}

TEST_F(SelectedRowsTest, LinesOfRowsWithoutJsonComeInTheirOrder)
{
    Query("select 'broken', 7 union all select '', 8 union all select 'x', 9 union all select 'y', 0", 0);
    EXPECT_THAT(mLog.Lines(), ElementsAre(HasSubstr("jsonStr[broken] err."), HasSubstr("extra is empty."),
        HasSubstr("jsonStr[x] err.")));
}

TEST_F(SelectedRowsTest, SelectionIsWholeIfAllItsTextsAreObjectsOrEmpty)
{
    for (const char* sql : {"select '{\"a\":1}', 7", "select '', 7", "select '{}', 7 union all select '', 8"}) {
        Query(sql, 0);
        EXPECT_TRUE(mIsWhole) << sql;
    }
    for (const char* sql : {"select 'x', 7", "select 'x', 7 union all select '', 8", "select '[1]', 7",
             "select '', 7 union all select abs(-9223372036854775808), 9"}) {
        Query(sql, 0);
        EXPECT_FALSE(mIsWhole) << sql;
    }
}

TEST_F(SelectedRowsTest, EmptyExtraIsTold)
{
    EXPECT_THAT(Query("select '', 7", 0), ElementsAre("occurrence_time=7"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_DEBUG), ElementsAre("FUNc:CommonPartDbHelper::ExtraStrToJson: extra is empty."));
}

TEST_F(SelectedRowsTest, BrokenExtraIsToldWithItsText)
{
    EXPECT_THAT(Query("select '{\"a\":', 7", 0), ElementsAre("occurrence_time=7"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(testing::AllOf(
        testing::StartsWith("FUNc:CommonPartDbHelper::ExtraStrToJson: jsonStr[{\"a\":] err. * Line 1, Column 6"),
        testing::EndsWith(" "))));
    EXPECT_THAT(Query("select '" + std::string(100000, '[') + "', 7", 0), ElementsAre("occurrence_time=7"));
}

} // namespace
