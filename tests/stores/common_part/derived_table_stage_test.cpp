#include "arborist/stores/common_part/derived_table_stage.h"

#include <vector>

#include <gmock/gmock.h>

#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_operator.h"
#include "tests/support/database_rows.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char CREATE[] = "CREATE TABLE T (_ID integer primary key, n int);";

class DerivedTableStageTest : public testing::Test {
protected:
    DerivedTableStageTest()
    {
        mDatabase.Open(mPath);
        Run(CREATE);
    }

    void Run(const std::string& sql) { FT::sql::SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback(sql); }

    // Publishes and returns the statements for single rows.
    std::vector<std::string> Publish()
    {
        std::vector<std::string> statements;
        mStage.Publish([&](const std::string& statement) { statements.push_back(statement); });
        return statements;
    }

    std::vector<std::string> RowsInTheFile() const { return DatabaseRows(mPath, "select n from T"); }

    TempDir mDir;
    LogCapture mLog;
    std::string mPath = mDir.Path("a.db");
    FT::sql::SqlDatabase mDatabase;
    DerivedTableStage mStage{mDatabase, "T"};
};

TEST_F(DerivedTableStageTest, RowsReachTheFileWhenTheyArePublished)
{
    ASSERT_TRUE(mStage.Open(CREATE));
    Run("insert into T (n) values (7), (8)");
    EXPECT_THAT(RowsInTheFile(), IsEmpty());
    EXPECT_THAT(Publish(), IsEmpty());
    EXPECT_THAT(RowsInTheFile(), ElementsAre("7", "8"));
    Run("insert into T (n) values (9)"); // into the file: the table in memory is gone
    EXPECT_THAT(RowsInTheFile(), ElementsAre("7", "8", "9"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(DerivedTableStageTest, RowsThatDontGoAllAtOnceAreHandedOutOneByOne)
{
    ASSERT_TRUE(mStage.Open(CREATE));
    Run("insert into T (n) values (7), (8)");
    Run("insert into main.T (_ID, n) values (2, 5)");
    EXPECT_THAT(Publish(), ElementsAre("insert into main.T select * from temp.T where _ID = 1",
                                       "insert into main.T select * from temp.T where _ID = 2"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(DerivedTableStageTest, StatementThatMakesNoTableOpensNoStageAndSaysNothing)
{
    EXPECT_FALSE(mStage.Open("create view T as select 1"));
    EXPECT_FALSE(mStage.Open("CREATE TABLE T ("));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(DerivedTableStageTest, ClosedDatabaseHasNoStage)
{
    mDatabase.Close();
    EXPECT_FALSE(mStage.Open("CREATE TABLE T (_ID integer primary key autoincrement, n int);"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(DerivedTableStageTest, LogWrittenAheadIsGoneAtItsEnd)
{
    {
        const DerivedTableStage::WriteAhead writeAhead(mDatabase);
        Run("insert into T (n) values (7)");
        EXPECT_THAT(RowsInTheFile(), ElementsAre("error: database is locked"));
    }
    mDatabase.Close();
    EXPECT_FALSE(mDir.Has("a.db-wal"));
    EXPECT_THAT(RowsInTheFile(), ElementsAre("7"));
}

TEST_F(DerivedTableStageTest, LogWrittenAheadEndsWithATransactionThatIsStillOpen)
{
    {
        const DerivedTableStage::WriteAhead writeAhead(mDatabase);
        Run("begin; insert into T (n) values (7)");
    }
    mDatabase.Close(); // releases the lock
    constexpr std::size_t JOURNAL_BYTE = 18; // 2 while there is a write-ahead log
    EXPECT_EQ(mDir.Read("a.db").at(JOURNAL_BYTE), '\1');
    EXPECT_THAT(RowsInTheFile(), IsEmpty());
}

} // namespace
