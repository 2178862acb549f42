#include "arborist/stores/repairs/repair_db_util.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/sql/simple_database_helper.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/longest_lock_wait.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/time_zone.h"

/// Reaches the private steps of the store.
struct RepairDbUtilPeer {
    static void Close(RepairDbUtil& repairs) { repairs.CloseDb(); }
    static bool Open(RepairDbUtil& repairs) { return repairs.OpenDb(); }

    // Closes the connection, as if it was lost, and then runs every step by itself.
    static void RunEachStepClosed(RepairDbUtil& repairs)
    {
        repairs.CloseDb();
        std::int32_t id = 0;
        std::string date;
        repairs.QueryRepairId("R");
        repairs.GetRepairDataRecord("R", id, date);
        repairs.InsertRepairData("R", "today");
        repairs.UpDateRepairData("R", "today");
    }
};

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RepairDbUtilTest : public testing::Test {
protected:
    RepairDbUtilTest() { mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data")); }

    // Local time is one hour ahead of UTC in winter.
    void SetNow(std::int64_t seconds) const { mSettings.Set(Settings::CURRENT_TIME, std::to_string(seconds)); }

    // All rows as "id/repair/date", separated by blanks.
    std::string Rows() const
    {
        FT::sql::SqlDatabase database;
        database.Open(mPath);
        FT::sql::SqlField field("rows", FT::sql::TypeText);
        FT::sql::SqlTable table(database.GetHandle(), "rows", &field, 1);
        table.Query("select group_concat(_id || '/' || repair_id || '/' || repair_date, ' & ') from repair_data");
        return table.GetTopRecord() == nullptr ? "" : table.GetTopRecord()->GetValue("rows")->AsString();
    }

    TimeZone mZone{CENTRAL_EUROPE};
    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::string mPath = mDir.Path("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db");
};

TEST_F(RepairDbUtilTest, FirstSaveInsertsAndTheSecondKeepsTheRow)
{
    SetNow(1700000000);
    UpdateRepairDb("R1");
    UpdateRepairDb("R2");
    SetNow(1700000060);
    UpdateRepairDb("R1");
    EXPECT_EQ(Rows(), "1/R1/2023-11-14 23:14:20 & 2/R2/2023-11-14 23:13:20");
    EXPECT_EQ(RepairDbUtil().QueryRepairDate("R1"), "2023-11-14 23:14:20");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(RepairDbUtilTest, LaterOpensFindTheTable)
{
    RepairDbUtil();
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    RepairDbUtil();
    EXPECT_THAT(mLog.Lines(FT::LEVEL_DEBUG),
        ElementsAre("FUNc:RepairDbUtil::CreateRepairRecordTable: table repair_data already exist."));
}

TEST_F(RepairDbUtilTest, UnknownRepairHasNoDate)
{
    EXPECT_EQ(RepairDbUtil().QueryRepairDate("R1"), "");
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RepairDbUtilTest, IdsDifferInCaseAlone)
{
    SetNow(1700000000);
    UpdateRepairDb("r");
    UpdateRepairDb("R");
    EXPECT_EQ(Rows(), "1/r/2023-11-14 23:13:20 & 2/R/2023-11-14 23:13:20");
}

TEST_F(RepairDbUtilTest, IdWithAQuoteIsSavedButNotFound)
{
    SetNow(1700000000);
    UpdateRepairDb("it's");
    EXPECT_EQ(Rows(), "1/it's/2023-11-14 23:13:20");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
    EXPECT_EQ(RepairDbUtil().QueryRepairDate("it's"), "");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: near \"s\": syntax error"));
}

TEST_F(RepairDbUtilTest, SavingAnIdWithAQuoteAgainKeepsItsDate)
{
    SetNow(1700000000);
    UpdateRepairDb("it's");
    SetNow(1700000060);
    UpdateRepairDb("it's");
    EXPECT_EQ(Rows(), "1/it's/2023-11-14 23:13:20");
}

TEST_F(RepairDbUtilTest, EmptyIdIsAnIdAndIsNotWrittenAsNull)
{
    SetNow(1700000000);
    UpdateRepairDb("");
    UpdateRepairDb("");
    EXPECT_EQ(Rows(), "1//2023-11-14 23:13:20");
}

TEST_F(RepairDbUtilTest, OfTwoRowsTheFirstCounts)
{
    RepairDbUtil();
    EventLogBuilder::Run(mPath, "insert into repair_data values (5, 'R', 'five'), (6, 'R', 'six')");
    EXPECT_EQ(RepairDbUtil().QueryRepairDate("R"), "five");
}

TEST_F(RepairDbUtilTest, FolderThatCannotBeMadeClosesTheStore)
{
    mDir.Write("data", "a file in the way");
    RepairDbUtil repairs;
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), testing::Contains("FUNc:RepairDbUtil::OpenDb: create dir " +
        mDir.Path("data/Comms/Lumbra/zxdetectrepair/databases") + " fail."));
    mLog.Clear();
    repairs.SaveRepairDataToDb("R");
    EXPECT_EQ(repairs.QueryRepairDate("R"), "");
    EXPECT_THAT(mLog.Lines(), ElementsAre(
        "FUNc:RepairDbUtil::SaveRepairDataToDb: RepairDbUtil::SaveRepairDataToDb database not open",
        "FUNc:RepairDbUtil::QueryRepairDate: RepairDbUtil::QueryRepairDate database not open"));
}

TEST_F(RepairDbUtilTest, EveryStepSaysThatTheDatabaseIsNotOpen)
{
    RepairDbUtil repairs;
    RepairDbUtilPeer::RunEachStepClosed(repairs);
    repairs.SaveRepairDataToDb("R");
    repairs.QueryRepairDate("R");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(
        "FUNc:RepairDbUtil::QueryRepairId: RepairDbUtil::QueryRepairId database not open",
        "FUNc:RepairDbUtil::GetRepairDataRecord: RepairDbUtil::GetRepairDataRecord database not open",
        "FUNc:RepairDbUtil::InsertRepairData: RepairDbUtil::InsertRepairData database not open",
        "FUNc:RepairDbUtil::UpDateRepairData: RepairDbUtil::UpDateRepairData database not open",
        "FUNc:RepairDbUtil::SaveRepairDataToDb: RepairDbUtil::SaveRepairDataToDb database not open",
        "FUNc:RepairDbUtil::QueryRepairDate: RepairDbUtil::QueryRepairDate database not open"));
    EXPECT_THAT(mLog.Formats(), ElementsAre(
        "FUNc:%s: RepairDbUtil::QueryRepairId database not open",
        "FUNc:%s: RepairDbUtil::GetRepairDataRecord database not open",
        "FUNc:%s: RepairDbUtil::InsertRepairData database not open",
        "FUNc:%s: RepairDbUtil::UpDateRepairData database not open",
        "FUNc:%s: RepairDbUtil::SaveRepairDataToDb database not open",
        "FUNc:%s: RepairDbUtil::QueryRepairDate database not open"));
}

TEST_F(RepairDbUtilTest, SecondOpenSaysSoAndOpensAnew)
{
    RepairDbUtil repairs;
    mLog.Clear();
    EXPECT_TRUE(RepairDbUtilPeer::Open(repairs));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:RepairDbUtil::OpenDb: RepairDbUtil::OpenDb open database already open"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_DEBUG),
        ElementsAre("FUNc:RepairDbUtil::CreateRepairRecordTable: table repair_data already exist."));
    repairs.SaveRepairDataToDb("R");
    EXPECT_NE(repairs.QueryRepairDate("R"), "");
}

TEST_F(RepairDbUtilTest, DatabaseThatCannotBeOpenedIsNamed)
{
    mDir.MakeDir("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db");
    RepairDbUtil repairs;
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(
        "FUNc:RepairDbUtil::OpenDb: RepairDbUtil::OpenDb open database fail dbname: " + mPath));
}

TEST_F(RepairDbUtilTest, FileThatIsNoDatabaseStaysAsItIs)
{
    mDir.Write("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db", std::string(2000, 'x'));
    UpdateRepairDb("R");
    EXPECT_EQ(RepairDbUtil().QueryRepairDate("R"), "");
    EXPECT_EQ(mDir.Read("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db"), std::string(2000, 'x'));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), testing::Contains(HasSubstr("sql failed: file is not a database")));
}

TEST_F(RepairDbUtilTest, UpdateChangesItsOwnRow)
{
    SetNow(1700000000);
    UpdateRepairDb("R1");
    UpdateRepairDb("R2");
    UpdateRepairDb("R3");
    SetNow(1700000060);
    UpdateRepairDb("R2");
    EXPECT_EQ(Rows(), "1/R1/2023-11-14 23:13:20 & 2/R2/2023-11-14 23:14:20 & 3/R3/2023-11-14 23:13:20");
}

TEST_F(RepairDbUtilTest, KnownIdIsFoundAmongMillions)
{
    RepairDbUtil();
    EventLogBuilder::Run(mPath, "pragma journal_mode = off; pragma synchronous = off; "
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < 3500000) "
        "insert into repair_data select i, i, '' from n");
    SetNow(1700000000);
    UpdateRepairDb("3500000");
    EXPECT_EQ(RepairDbUtil().QueryRepairDate("3500000"), "2023-11-14 23:13:20");
    EXPECT_THAT(DatabaseRows(mPath, "select count(*), max(_id) from repair_data"), ElementsAre("3500000|3500000"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(RepairDbUtilTest, RepairWithCountlessRowsHasTheDateOfTheFirst)
{
    RepairDbUtil();
    EventLogBuilder::Run(mPath, "with recursive n(i) as (select 1 union all select i + 1 from n where i < 250001) "
        "insert into repair_data select i, 'R', i from n");
    EXPECT_EQ(RepairDbUtil().QueryRepairDate("R"), "1");
    SetNow(1700000000);
    UpdateRepairDb("R");
    EXPECT_EQ(RepairDbUtil().QueryRepairDate("R"), "2023-11-14 23:13:20");
}

TEST_F(RepairDbUtilTest, RowWithoutAnIdIsThatOfTheEmptyOne)
{
    RepairDbUtil();
    EventLogBuilder::Run(mPath, "insert into repair_data values (1, null, 'former')");
    SetNow(1700000000);
    UpdateRepairDb("");
    // The id exists but can't be found by its text, so nothing is written.
    EXPECT_THAT(DatabaseRows(mPath, "select * from repair_data"), ElementsAre("1|null|former"));
}

TEST_F(RepairDbUtilTest, TableThatNeverEndsIsGivenUp)
{
    std::filesystem::create_directories(std::filesystem::path(mPath).parent_path());
    EventLogBuilder::Run(mPath, "create view repair_data as with recursive n(i) as (select 1 union all select i + 1 "
        "from n) select i as _id, 'S' || i as repair_id, '' as repair_date from n");
    EXPECT_EQ(RepairDbUtil().QueryRepairDate("R"), "");
    EXPECT_EQ(mLog.Lines().back(), "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: interrupted");
    UpdateRepairDb("R");
    EXPECT_THAT(mLog.Lines().back(), HasSubstr("cannot modify repair_data because it is a view"));
}

TEST_F(RepairDbUtilTest, LockOfAnotherProcessThatStaysLeavesTheRecords)
{
    const LongestLockWait brief(5);
    SetNow(1700000000);
    UpdateRepairDb("R");
    FT::sql::SqlDatabase other;
    ASSERT_TRUE(other.Open(mPath));
    FT::sql::SqlOperator lock(other.GetHandle());
    ASSERT_TRUE(lock.ExecuteNoCallback("BEGIN IMMEDIATE"));
    SetNow(1700000060);
    UpdateRepairDb("R");
    UpdateRepairDb("S");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(
        "FUNc:FT::sql::SqlOperator::ExecuteNoCallback: ExecuteNoCallback sql failed: database is locked",
        "FUNc:FT::sql::SqlOperator::ExecuteNoCallback: ExecuteNoCallback sql failed: database is locked"));
    ASSERT_TRUE(lock.ExecuteNoCallback("COMMIT"));
    EXPECT_EQ(Rows(), "1/R/2023-11-14 23:13:20");
}

TEST_F(RepairDbUtilTest, TableWithoutItsColumnsIsLeftAsItIs)
{
    SetNow(1700000000);
    UpdateRepairDb("R");
    EventLogBuilder::Run(mPath, "alter table repair_data rename column repair_date to other");
    UpdateRepairDb("S");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre("FUNc:FT::sql::SqlOperator::ExecuteNoCallback: "
        "ExecuteNoCallback sql failed: table repair_data has no column named repair_date"));
    EventLogBuilder::Run(mPath, "alter table repair_data rename column other to repair_date");
    EXPECT_EQ(Rows(), "1/R/2023-11-14 23:13:20");
}

TEST_F(RepairDbUtilTest, FullDatabaseKeepsWhatItHas)
{
    SetNow(1700000000);
    UpdateRepairDb("R");
    // A full disk ends the transaction by itself; a trigger can do the same.
    EventLogBuilder::Run(mPath, "create trigger full before insert on repair_data begin "
        "select raise(rollback, 'database or disk is full'); end");
    UpdateRepairDb("S");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(
        HasSubstr("ExecuteNoCallback sql failed: database or disk is full"),
        HasSubstr("cannot commit - no transaction is active")));
    EXPECT_EQ(Rows(), "1/R/2023-11-14 23:13:20");
}

// The id is part of the statement as it stands.
TEST_F(RepairDbUtilTest, IdThatEndsTheStatementAndBeginsAnotherHasNoDate)
{
    RepairDbUtil repairs;
    EXPECT_EQ(repairs.QueryRepairDate("R'; select 7; --"), "");
    EXPECT_TRUE(repairs.HasFailed());
}

TEST_F(RepairDbUtilTest, ClosedDatabaseIsNotAskedAgain)
{
    UpdateRepairDb("R");
    RepairDbUtil repairs;
    std::string date;
    EXPECT_TRUE(repairs.QueryAgain("R", date));
    RepairDbUtilPeer::Close(repairs);
    date = "kept";
    EXPECT_FALSE(repairs.QueryAgain("R", date));
    EXPECT_EQ(date, "kept");
}

} // namespace
