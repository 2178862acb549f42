#include "arborist/stores/sql/sql_scan.h"

#include <new>

#include <gmock/gmock.h>

#include "arborist/stores/sql/sql_operator.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace FT::sql {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SqlScanTest : public testing::Test {
protected:
    SqlScanTest() { mDatabase.Open(mDir.Path("a.db")); }

    // The first columns of the rows.
    std::vector<std::string> Scan(const std::string& columns, const std::string& from)
    {
        std::vector<std::string> texts;
        mIsRead = ScanRows(mDatabase.GetHandle(), columns, from,
            [&texts](const ScannedRow& row) { texts.emplace_back(row.GetText(0)); }, mError);
        return texts;
    }

    TempDir mDir;
    LogCapture mLog;
    SqlDatabase mDatabase;
    bool mIsRead = false;
    std::string mError;
};

TEST_F(SqlScanTest, RowsComeInTheOrderOfTheSelect)
{
    EXPECT_THAT(Scan("a", "from (select 3 as a union all select 1 union all select 2)"), ElementsAre("3", "1", "2"));
    EXPECT_TRUE(mIsRead);
    EXPECT_EQ(mError, "");
}

TEST_F(SqlScanTest, NoRowsAreNoFailure)
{
    EXPECT_THAT(Scan("1", "where 0"), IsEmpty());
    EXPECT_TRUE(mIsRead);
}

TEST_F(SqlScanTest, ColumnsHaveTheirTypes)
{
    int rows = 0;
    EXPECT_TRUE(ScanRows(mDatabase.GetHandle(), "5000000000, null, 'x' || char(0) || 'y', 1.5", "",
        [&rows](const ScannedRow& row) {
            ++rows;
            EXPECT_TRUE(row.IsInteger(0));
            EXPECT_EQ(row.GetInteger(0), 5000000000);
            EXPECT_TRUE(row.IsNull(1));
            EXPECT_FALSE(row.IsInteger(1));
            EXPECT_EQ(row.GetText(1), "");
            EXPECT_FALSE(row.IsInteger(2));
            EXPECT_EQ(row.GetText(2), "x");
            EXPECT_FALSE(row.IsInteger(3));
            EXPECT_EQ(row.GetInteger(3), 1);
        }, mError));
    EXPECT_EQ(rows, 1);
}

TEST_F(SqlScanTest, FailuresAreToldInSilence)
{
    EXPECT_THAT(Scan("a", "from nowhere"), IsEmpty());
    EXPECT_FALSE(mIsRead);
    EXPECT_EQ(mError, "no such table: nowhere");
    EXPECT_THAT(Scan("abs(a)", "from (select 1 as a union all select -9223372036854775807 - 1)"), ElementsAre("1"));
    EXPECT_FALSE(mIsRead);
    EXPECT_EQ(mError, "integer overflow");
    mDatabase.Close();
    EXPECT_THAT(Scan("1", ""), IsEmpty());
    EXPECT_FALSE(mIsRead);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(SqlScanTest, VisitorOutOfMemoryFailsTheScan)
{
    EXPECT_FALSE(ScanRows(
        mDatabase.GetHandle(), "1", "", [](const ScannedRow&) { throw std::bad_alloc(); }, mError));
    EXPECT_EQ(mError, "out of memory");
}

TEST_F(SqlScanTest, NothingOfAScanStaysWithTheConnection)
{
    Scan("1", "");
    SqlOperator statement(mDatabase.GetHandle());
    EXPECT_FALSE(statement.Execute("select arborist_visit_row(1)"));
    EXPECT_TRUE(statement.ExecuteNoCallback("create table t (a)"));
}

} // namespace
} // namespace FT::sql
