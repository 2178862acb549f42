#include "arborist/stores/sql/sql_cursor.h"

#include <gmock/gmock.h>

#include "arborist/frame/stopping.h"
#include "arborist/stores/sql/sql_operator.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace FT::sql {
namespace {

class SqlCursorTest : public testing::Test {
protected:
    SqlCursorTest() { mDatabase.Open(mDir.Path("a.db")); }

    TempDir mDir;
    LogCapture mLog;
    SqlDatabase mDatabase;
};

TEST_F(SqlCursorTest, StepsThroughRowsWithTheirTypes)
{
    SqlCursor cursor(mDatabase.GetHandle(), "select 5000000000, 1.5, 'a' || char(0) || 'b', x'00', null");
    ASSERT_TRUE(cursor.IsReady());
    ASSERT_TRUE(cursor.Step());
    EXPECT_EQ(cursor.GetType(0), SqlCursor::ColumnType::INTEGER);
    EXPECT_EQ(cursor.GetInteger(0), 5000000000);
    EXPECT_EQ(cursor.GetType(1), SqlCursor::ColumnType::REAL);
    EXPECT_EQ(cursor.GetType(2), SqlCursor::ColumnType::TEXT);
    EXPECT_EQ(cursor.GetText(2), "a");
    EXPECT_EQ(cursor.GetType(3), SqlCursor::ColumnType::BLOB);
    EXPECT_EQ(cursor.GetType(4), SqlCursor::ColumnType::NONE);
    EXPECT_EQ(cursor.GetText(4), "");
    EXPECT_FALSE(cursor.Step());
    EXPECT_TRUE(cursor.IsOk());
}

TEST_F(SqlCursorTest, RestartsWithAnotherParameter)
{
    SqlCursor cursor(mDatabase.GetHandle(), "select ?1 + 1");
    cursor.Restart(1);
    ASSERT_TRUE(cursor.Step());
    EXPECT_EQ(cursor.GetInteger(0), 2);
    cursor.Restart(5);
    ASSERT_TRUE(cursor.Step());
    EXPECT_EQ(cursor.GetInteger(0), 6);
}

TEST_F(SqlCursorTest, FailureIsToldInSilence)
{
    SqlCursor missing(mDatabase.GetHandle(), "select * from nowhere");
    EXPECT_FALSE(missing.IsReady());
    EXPECT_FALSE(missing.Step());
    EXPECT_FALSE(missing.IsOk());
    EXPECT_EQ(missing.GetError(), "no such table: nowhere");
    SqlCursor overflow(mDatabase.GetHandle(), "select abs(-9223372036854775807 - 1)");
    EXPECT_TRUE(overflow.IsReady());
    EXPECT_FALSE(overflow.Step());
    EXPECT_EQ(overflow.GetError(), "integer overflow");
    EXPECT_THAT(mLog.Lines(), testing::IsEmpty());
}

TEST_F(SqlCursorTest, ClosedDatabaseIsAFailure)
{
    mDatabase.Close();
    SqlCursor cursor(mDatabase.GetHandle(), "select 1");
    EXPECT_FALSE(cursor.IsReady());
    EXPECT_FALSE(cursor.Step());
    EXPECT_FALSE(cursor.IsOk());
}

TEST_F(SqlCursorTest, ResetGivesTheReadLockBack)
{
    SqlOperator statement(mDatabase.GetHandle());
    ASSERT_TRUE(statement.ExecuteNoCallback("create table t (a); insert into t values (1), (2)"));
    SqlDatabase other;
    ASSERT_TRUE(other.Open(mDir.Path("a.db")));
    SqlOperator writer(other.GetHandle());
    SqlCursor cursor(mDatabase.GetHandle(), "select a from t");
    ASSERT_TRUE(cursor.Step());
    EXPECT_FALSE(writer.ExecuteNoCallback("insert into t values (3)"));
    cursor.Reset();
    EXPECT_TRUE(writer.ExecuteNoCallback("insert into t values (3)"));
}

TEST_F(SqlCursorTest, StatementThatCouldNotBePreparedKeepsItsErrorWhenItStartsAnew)
{
    SqlCursor cursor(mDatabase.GetHandle(), "select a from missing");
    EXPECT_FALSE(cursor.IsReady());
    cursor.Restart();
    EXPECT_FALSE(cursor.Step());
    EXPECT_EQ(cursor.GetError(), "no such table: missing");
}

TEST_F(SqlCursorTest, EndsWithTheDetectionThatItBelongsTo)
{
    mDatabase.Restrict(SqlAccess::OWN_FILE);
    StopRequest request;
    const StopScope scope(&request);
    request.Start(std::nullopt);
    SqlCursor endless(mDatabase.GetHandle(),
        "with recursive c(n) as (select 1 union all select n + 1 from c) select count(*) from c");
    request.StopAtQuestion(5); // within the first step
    EXPECT_THROW(endless.Step(), DetectionStopped);
    SqlCursor next(mDatabase.GetHandle(), "select 1"); // what tidies up after the stop runs
    EXPECT_TRUE(next.Step());
}

TEST_F(SqlCursorTest, IsNotEvenPreparedWhenTheDetectionIsToEnd)
{
    StopRequest request;
    const StopScope scope(&request);
    request.Start(std::nullopt);
    request.Request();
    EXPECT_THROW(SqlCursor(mDatabase.GetHandle(), "select 1"), DetectionStopped);
}

} // namespace
} // namespace FT::sql
