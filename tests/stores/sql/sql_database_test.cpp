#include "arborist/stores/sql/sql_database.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include "arborist/frame/log.h"
#include "arborist/stores/sql/sql_operator.h"
#include "arborist/stores/sql/sql_table.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace FT::sql {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SqlDatabaseTest : public testing::Test {
protected:
    TempDir mDir;
    LogCapture mLog;
    SqlDatabase mDatabase;
};

TEST_F(SqlDatabaseTest, IsClosedUntilItIsOpenedAndAfterClose)
{
    EXPECT_FALSE(mDatabase.IsOpen());
    EXPECT_EQ(mDatabase.GetHandle().connection, nullptr);
    EXPECT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    EXPECT_TRUE(mDatabase.IsOpen());
    mDatabase.Close();
    EXPECT_FALSE(mDatabase.IsOpen());
    EXPECT_EQ(mDatabase.GetHandle().connection, nullptr);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(SqlDatabaseTest, FailedOpenSaysWhyAndKeepsItsConnectionUntilClose)
{
    EXPECT_FALSE(mDatabase.Open(mDir.Path("no/such/a.db")));
    EXPECT_FALSE(mDatabase.IsOpen());
    EXPECT_NE(mDatabase.GetHandle().connection, nullptr);
    EXPECT_THAT(mLog.Lines(LEVEL_INFO), ElementsAre("FUNc:FT::sql::SqlDatabase::Open: open db:" +
        mDir.Path("no/such/a.db") + " failed, error msg is :unable to open database file"));
    mDatabase.Close();
    EXPECT_EQ(mDatabase.GetHandle().connection, nullptr);
    EXPECT_TRUE(mDatabase.Open(mDir.Path("a.db")));
}

TEST_F(SqlDatabaseTest, TemporaryTablesMoveIntoMemoryOnlyWhereThereAreNone)
{
    EXPECT_FALSE(mDatabase.KeepTemporaryTablesInMemory()) << "closed";
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    SqlOperator statement(mDatabase.GetHandle());
    ASSERT_TRUE(statement.ExecuteNoCallback("begin; create temp table t (a)"));
    EXPECT_FALSE(mDatabase.KeepTemporaryTablesInMemory()) << "a transaction uses one";
    ASSERT_TRUE(statement.ExecuteNoCallback("commit"));
    EXPECT_TRUE(mDatabase.KeepTemporaryTablesInMemory());
}

TEST_F(SqlDatabaseTest, TakesPagesAsItNeedsThem)
{
    ASSERT_EQ(sqlite3_shutdown(), SQLITE_OK); // so that the next database is the first of the process
    const auto before = sqlite3_memory_used();
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    ASSERT_TRUE(SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback("create table t (a)"));
    const auto taken = sqlite3_memory_used() - before;
    EXPECT_LT(taken, 80 * 1024) << "20 pages alone take more";
}

TEST_F(SqlDatabaseTest, LimitsOfAFileAreNotReplaced)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Restrict(SqlAccess::READ_ONLY);
    mDatabase.Limit({.rows = 0});
    SqlField field("a", TypeInteger);
    SqlTable table(mDatabase.GetHandle(), "t", &field, 1);
    EXPECT_TRUE(table.Query("select 7"));
    EXPECT_EQ(table.GetRecordCount(), 1U);
}

TEST_F(SqlDatabaseTest, FileThatGrowsMayTellMore)
{
    const std::string path = mDir.Path("a.db");
    EventLogBuilder::Run(path, "create table t (a)");
    ASSERT_TRUE(mDatabase.Open(path));
    mDatabase.Restrict(SqlAccess::READ_ONLY);
    FT::sql::SqlBudget& budget = *mDatabase.GetHandle().budget;
    const std::uint64_t bytes = budget.GetLimits()->bytes;
    EXPECT_TRUE(budget.AllowsBytes(bytes));
    EXPECT_FALSE(budget.AllowsBytes(bytes + 1));
    EventLogBuilder::Run(path, "insert into t values (zeroblob(100000))");
    EXPECT_TRUE(budget.AllowsBytes(bytes + 1));
    EventLogBuilder::Run(path, "insert into t values (zeroblob(100000))");
    EXPECT_FALSE(budget.AllowsBytes(10 * bytes));
}

TEST_F(SqlDatabaseTest, FileThatIsNoDatabaseOpensWithTwoComplaints)
{
    const std::string path = mDir.Write("text.db", std::string(1000, 'x'));
    EXPECT_TRUE(mDatabase.Open(path));
    EXPECT_THAT(mLog.Lines(LEVEL_ERROR), ElementsAre(
        "FUNc:FT::sql::SqlDatabase::Open: Failed(26) to set cache size by " + path,
        "FUNc:FT::sql::SqlDatabase::Open: Failed(26) to set synchronous by " + path));
}

TEST_F(SqlDatabaseTest, OpeningAgainLeavesTheFirstFile)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    const Sqlite3Db* const handle = &mDatabase.GetHandle();
    SqlOperator statement(*handle);
    ASSERT_TRUE(statement.ExecuteNoCallback("create table t (a)"));
    ASSERT_TRUE(mDatabase.Open(mDir.Path("b.db")));
    EXPECT_EQ(&mDatabase.GetHandle(), handle);
    EXPECT_FALSE(statement.ExecuteNoCallback("insert into t values (1)"));
}

TEST_F(SqlDatabaseTest, CommittedTransactionLastsAndAnOpenOneIsLost)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    SqlOperator statement(mDatabase.GetHandle());
    ASSERT_TRUE(mDatabase.BeginTransaction());
    ASSERT_TRUE(statement.ExecuteNoCallback("create table kept (a)"));
    ASSERT_TRUE(mDatabase.CommitTransaction());
    ASSERT_TRUE(mDatabase.BeginTransaction());
    ASSERT_TRUE(statement.ExecuteNoCallback("create table lost (a)"));
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    EXPECT_TRUE(statement.ExecuteNoCallback("select * from kept"));
    EXPECT_FALSE(statement.ExecuteNoCallback("select * from lost"));
}

TEST_F(SqlDatabaseTest, ClosingGivesItsLocksBack)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    ASSERT_TRUE(SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback("BEGIN EXCLUSIVE"));
    SqlDatabase other;
    ASSERT_TRUE(other.Open(mDir.Path("a.db")));
    SqlOperator writer(other.GetHandle());
    EXPECT_FALSE(writer.ExecuteNoCallback("create table t (a)"));
    mDatabase.Close();
    EXPECT_TRUE(writer.ExecuteNoCallback("create table t (a)"));
}

TEST_F(SqlDatabaseTest, TransactionsFailInTheLog)
{
    EXPECT_FALSE(mDatabase.BeginTransaction());
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    EXPECT_FALSE(mDatabase.CommitTransaction());
    EXPECT_THAT(mLog.Lines(LEVEL_ERROR), ElementsAre(
        "FUNc:FT::sql::SqlOperator::ExecuteNoCallback: ExecuteNoCallback db is null",
        "FUNc:FT::sql::SqlOperator::ExecuteNoCallback: ExecuteNoCallback sql failed: "
        "cannot commit - no transaction is active"));
}

TEST_F(SqlDatabaseTest, ConnectionHasTheCacheOfASmallDevice)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    SqlField field("value", TypeInteger);
    field.SetIndex(0);
    const FieldList list{&field};
    const FieldMap map{{"value", &field}};
    SqlOperator statement(mDatabase.GetHandle(), &list, &map);
    ASSERT_TRUE(statement.Execute("PRAGMA cache_size"));
    EXPECT_EQ(statement.GetTopRecordFirstValue()->AsInteger(), 10);
    ASSERT_TRUE(statement.Execute("PRAGMA synchronous"));
    EXPECT_EQ(statement.GetTopRecordFirstValue()->AsInteger(), 1);
    ASSERT_TRUE(statement.Execute("PRAGMA soft_heap_limit"));
    EXPECT_EQ(statement.GetTopRecordFirstValue()->AsInteger(), 102400);
}

TEST_F(SqlDatabaseTest, OwnFileIsTheOnlyOneThatItsStatementsReach)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Restrict(SqlAccess::OWN_FILE);
    SqlOperator statement(mDatabase.GetHandle());
    EXPECT_TRUE(statement.ExecuteNoCallback("create table t(a); insert into t values (1); vacuum"));
    EXPECT_FALSE(statement.ExecuteNoCallback("attach '" + mDir.Path("b.db") + "' as b"));
    EXPECT_FALSE(statement.ExecuteNoCallback("attach 'b' || '.db' as b"));
    EXPECT_FALSE(statement.ExecuteNoCallback("vacuum into '" + mDir.Path("b.db") + "'"));
    EXPECT_FALSE(mDir.Has("b.db"));
    mDatabase.Open(mDir.Path("a.db"));
    EXPECT_TRUE(SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback("attach ':memory:' as b"));
}

TEST_F(SqlDatabaseTest, ReadOnlyTakesSelectsAlone)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    SqlOperator statement(mDatabase.GetHandle());
    ASSERT_TRUE(statement.ExecuteNoCallback("create table t(a)"));
    mDatabase.Restrict(SqlAccess::READ_ONLY);
    EXPECT_TRUE(statement.ExecuteNoCallback("select count(*), upper('x') from t where a in (select 1)"));
    for (const char* sql : {"insert into t values (1)", "delete from t", "drop table t", "create temp table u(a)",
             "pragma user_version = 1", "pragma query_only", "pragma page_size = 512", "pragma wal_checkpoint",
             "attach ':memory:' as m", "vacuum"}) {
        EXPECT_FALSE(statement.ExecuteNoCallback(sql)) << sql;
    }
    for (const char* sql : {"begin", "pragma data_version", "pragma PAGE_COUNT", "commit"}) {
        EXPECT_TRUE(statement.ExecuteNoCallback(sql)) << sql;
    }
}

TEST_F(SqlDatabaseTest, ForeignTextSetsNothingForTheWholeProcess)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Restrict(SqlAccess::OWN_FILE);
    SqlOperator statement(mDatabase.GetHandle());
    for (const char* sql : {"pragma hard_heap_limit = 1", "pragma SOFT_HEAP_LIMIT(1)",
             "pragma temp_store_directory = '/'",
             "pragma main.data_store_directory = '/'"}) {
        EXPECT_FALSE(statement.ExecuteNoCallback(sql)) << sql;
    }
    EXPECT_TRUE(statement.ExecuteNoCallback("pragma hard_heap_limit"));
    EXPECT_TRUE(statement.ExecuteNoCallback("pragma user_version = 7"));
}

TEST_F(SqlDatabaseTest, TableMayHaveTheNameOfASettingThatIsForbidden)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Restrict(SqlAccess::OWN_FILE);
    EXPECT_TRUE(SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback(
        "create table temp_store(a); insert into temp_store values (1); select a from temp_store"));
}

TEST_F(SqlDatabaseTest, ClosingMovesWaitingChangesIntoTheFileUnlessItIsOnlyRead)
{
    for (const SqlAccess access : {SqlAccess::READ_ONLY, SqlAccess::OWN_FILE}) {
        EventLogBuilder::RunIntoWal(mDir.Path("a.db"), "create table if not exists t(a); insert into t values (1)");
        ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
        mDatabase.Restrict(access);
        ASSERT_TRUE(SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback("select a from t"));
        mDatabase.Close();
        EXPECT_EQ(mDir.Has("a.db-wal"), access == SqlAccess::READ_ONLY);
    }
}

TEST_F(SqlDatabaseTest, ForeignTextLeavesAFileThatCanBeRead)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    SqlOperator statement(mDatabase.GetHandle());
    ASSERT_TRUE(statement.ExecuteNoCallback("create table t(a)"));
    mDatabase.Restrict(SqlAccess::OWN_FILE);
    statement.ExecuteNoCallback("pragma writable_schema = on");
    EXPECT_FALSE(statement.ExecuteNoCallback("update sqlite_master set rootpage = 7, sql = 'x'"));
    EXPECT_TRUE(statement.ExecuteNoCallback("pragma journal_mode = off; begin; insert into t values (1); rollback"));
    SqlField field("count", TypeInteger);
    SqlTable table(mDatabase.GetHandle(), "t", &field, 1);
    EXPECT_TRUE(table.Open());
    EXPECT_EQ(table.GetRecordCount(), 0U) << "there is a journal to roll back from";
}

TEST_F(SqlDatabaseTest, ForeignTextThatNeverEndsIsBrokenOff)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    SqlLimits limits;
    limits.steps = 100000;
    mDatabase.Restrict(SqlAccess::OWN_FILE, limits);
    SqlOperator statement(mDatabase.GetHandle());
    EXPECT_FALSE(statement.ExecuteNoCallback(
        "with recursive n(i) as (select 1 union all select i + 1 from n) select max(i) from n"));
    // The limit applies to each SQL text anew.
    for (int text = 0; text < 5; ++text) {
        EXPECT_TRUE(statement.ExecuteNoCallback(
            "with recursive n(i) as (select 1 union all select i + 1 from n where i < 4000) select max(i) from n"));
    }
    EXPECT_THAT(mLog.Lines(), ElementsAre(
        "FUNc:FT::sql::SqlOperator::ExecuteNoCallback: ExecuteNoCallback sql failed: interrupted"));
}

TEST_F(SqlDatabaseTest, ForeignTextWithTooManyRowsIsBrokenOff)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    SqlLimits limits;
    limits.rows = 2;
    mDatabase.Restrict(SqlAccess::OWN_FILE, limits);
    SqlField field("value", TypeInteger);
    const FieldList list{&field};
    const FieldMap map{{"value", &field}};
    SqlOperator statement(mDatabase.GetHandle(), &list, &map);
    EXPECT_TRUE(statement.Execute("values (1), (2)"));
    EXPECT_FALSE(statement.Execute("values (1), (2), (3)"));
    EXPECT_EQ(statement.GetCount(), 2U);
    EXPECT_THAT(mLog.Lines(),
        ElementsAre("FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: query aborted"));
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    EXPECT_TRUE(statement.Execute("values (1), (2), (3)")) << "no longer restricted";
}

TEST_F(SqlDatabaseTest, ForeignTextWithTooLongTextsIsBrokenOff)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    SqlLimits limits;
    limits.bytes = 5;
    mDatabase.Restrict(SqlAccess::OWN_FILE, limits);
    SqlField field("value", TypeText);
    const FieldList list{&field};
    const FieldMap map{{"value", &field}};
    SqlOperator statement(mDatabase.GetHandle(), &list, &map);
    for (int text = 0; text < 2; ++text) {
        EXPECT_TRUE(statement.Execute("values ('abc'), (null), ('de')"));
        EXPECT_FALSE(statement.Execute("values ('abc'), ('de'), ('f')"));
        EXPECT_EQ(statement.GetCount(), 2U);
    }
    EXPECT_TRUE(statement.ExecuteNoCallback("select length(hex(zeroblob(8388607)))"));
    EXPECT_FALSE(statement.Execute("select hex(zeroblob(8388609))"));
    EXPECT_EQ(mLog.Lines().back(), "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: string or blob too big");
}

TEST_F(SqlDatabaseTest, ForeignTextMakesTextsOf16MebibytesAndNotOfAByteMore)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Restrict(SqlAccess::OWN_FILE);
    SqlOperator statement(mDatabase.GetHandle());
    EXPECT_TRUE(statement.ExecuteNoCallback("select length(zeroblob(16777216))"));
    EXPECT_FALSE(statement.ExecuteNoCallback("select length(zeroblob(16777217))"));
}

TEST_F(SqlDatabaseTest, ForeignTextThatComparesLongPatternsIsBrokenOff)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Restrict(SqlAccess::OWN_FILE);
    SqlOperator statement(mDatabase.GetHandle());
    const auto select = [&statement](const std::string& word, int length) {
        return statement.ExecuteNoCallback("select 'a' " + word + " printf('%." + std::to_string(length) + "c', '*')");
    };
    EXPECT_TRUE(select("like", 300));
    EXPECT_TRUE(select("glob", 300));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_FALSE(select("like", 301));
    EXPECT_FALSE(select("glob", 301));
    EXPECT_THAT(mLog.Lines(), testing::Each(testing::HasSubstr("failed: LIKE or GLOB pattern too complex")));
}

// Each of them would run for hours on the longest texts, within one step of SQLite.
TEST_F(SqlDatabaseTest, ForeignFileCannotCallFunctionsThatNothingInterrupts)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    SqlOperator statement(mDatabase.GetHandle());
    const std::vector<std::string> calls = {"instr(a, 'b')", "replace(a, 'b', 'c')", "trim(a, 'b')", "ltrim(a, 'b')",
        "rtrim(a, 'b')", "a like 'b'", "a like 'b' escape 'c'", "a glob 'b'", "json_patch(a, '{}')"};
    ASSERT_TRUE(statement.ExecuteNoCallback("create table t(a); insert into t values ('{}')"));
    std::vector<std::string> names;
    for (const std::string& call : calls) {
        const std::string number = std::to_string(names.size() / 2);
        ASSERT_TRUE(statement.ExecuteNoCallback("create view v" + number + " as select " + call + " from t; create table c" +
            number + "(a, b as (" + call + ")); insert into c" + number + " values ('{}')")) << call;
        names.insert(names.end(), {"v" + number, "c" + number});
    }
    ASSERT_TRUE(statement.ExecuteNoCallback("create view other as select upper(a), hex(a), substr(a, 1) from t"));
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Restrict(SqlAccess::OWN_FILE);
    for (const std::string& name : names) {
        EXPECT_TRUE(statement.ExecuteNoCallback("select * from " + name)) << name;
    }
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Restrict(SqlAccess::READ_ONLY);
    EXPECT_TRUE(statement.ExecuteNoCallback("select * from other; select a from c0; select * from t"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    for (const std::string& name : names) {
        EXPECT_FALSE(statement.ExecuteNoCallback("select * from " + name)) << name;
    }
    EXPECT_THAT(mLog.Lines(), testing::AllOf(
        testing::SizeIs(names.size()), testing::Each(testing::HasSubstr("failed: authorization denied"))));
}

constexpr char NEVER_ENDING[] = "with recursive n(i) as (select 1 union all select i + 1 from n) select max(i) from n";

TEST_F(SqlDatabaseTest, ReadingThatNeverEndsIsBrokenOffForGood)
{
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Restrict(SqlAccess::READ_ONLY);
    SqlOperator statement(mDatabase.GetHandle());
    EXPECT_FALSE(statement.ExecuteNoCallback(NEVER_ENDING));
    EXPECT_TRUE(statement.ExecuteNoCallback("select 1"));
    EXPECT_FALSE(statement.ExecuteNoCallback(
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < 4000) select max(i) from n"));
    EXPECT_THAT(mLog.Lines(), testing::AllOf(testing::SizeIs(2), testing::Each(testing::HasSubstr("interrupted"))));
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Restrict(SqlAccess::READ_ONLY);
    EXPECT_TRUE(statement.ExecuteNoCallback(
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < 4000) select max(i) from n"));
}

TEST_F(SqlDatabaseTest, FileThatGrowsMayTakeMoreToRead)
{
    constexpr char LONG[] =
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < 2000000) select max(i) from n";
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Restrict(SqlAccess::READ_ONLY);
    SqlDatabase writer;
    ASSERT_TRUE(writer.Open(mDir.Path("a.db")));
    ASSERT_TRUE(SqlOperator(writer.GetHandle()).ExecuteNoCallback(
        "create table t(a); insert into t values (zeroblob(200000))"));
    SqlOperator statement(mDatabase.GetHandle());
    EXPECT_TRUE(statement.ExecuteNoCallback(LONG));
    EXPECT_TRUE(statement.ExecuteNoCallback(LONG));
    EXPECT_FALSE(statement.ExecuteNoCallback(NEVER_ENDING));
    SqlDatabase small;
    ASSERT_TRUE(small.Open(mDir.Path("b.db")));
    small.Restrict(SqlAccess::READ_ONLY);
    EXPECT_FALSE(SqlOperator(small.GetHandle()).ExecuteNoCallback(LONG)) << "the text has no need of the steps";
}

TEST_F(SqlDatabaseTest, RestrictingAClosedDatabaseDoesNothing)
{
    mDatabase.Restrict(SqlAccess::READ_ONLY);
    EXPECT_FALSE(mDatabase.IsOpen());
}

TEST_F(SqlDatabaseTest, HowAClosedDatabaseIsWrittenIsSetNowhere)
{
    mDatabase.WriteSafely();
    mDatabase.WriteWithoutWaiting();
    mDatabase.Limit({});
    EXPECT_FALSE(mDatabase.IsOpen());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

} // namespace
} // namespace FT::sql
