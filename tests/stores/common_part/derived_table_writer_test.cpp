#include "arborist/stores/common_part/derived_table_writer.h"

#include <gmock/gmock.h>
#include <json/value.h>

#include "arborist/frame/log.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_operator.h"
#include "tests/support/common_part_builder.h"
#include "tests/support/database_rows.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char CREATE[] = "CREATE TABLE T (_ID integer primary key autoincrement, n int);";

class DerivedTableWriterTest : public testing::Test {
protected:
    DerivedTableWriterTest()
    {
        mDatabase.Open(mPath);
        FT::sql::SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback(CREATE);
    }

    void Write(int count)
    {
        std::vector<Json::Value> rows(static_cast<std::size_t>(count));
        for (int number = 0; number < count; ++number) {
            rows[static_cast<std::size_t>(number)]["n"] = number;
        }
        DerivedTableWriter(mDatabase, "T", {ParamOf("n", "int"), nullptr, ParamOf("", "int")}, CREATE).Write(rows);
    }

    std::vector<std::string> Rows() const { return DatabaseRows(mPath, "select _ID, n from T"); }

    TempDir mDir;
    LogCapture mLog;
    std::string mPath = mDir.Path("a.db");
    FT::sql::SqlDatabase mDatabase;
};

TEST_F(DerivedTableWriterTest, FewAndManyRowsAreNumberedAlike)
{
    Write(2);
    EXPECT_THAT(Rows(), ElementsAre("1|0", "2|1"));
    FT::sql::SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback("drop table T;" + std::string(CREATE));
    Write(5);
    EXPECT_THAT(Rows(), ElementsAre("1|0", "2|1", "3|2", "4|3", "5|4"));
    EXPECT_THAT(DatabaseRows(mPath, "select name, seq from sqlite_sequence"), ElementsAre("T|5"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(DerivedTableWriterTest, RowsThatCanNotBeStagedAreWrittenOneByOne)
{
    std::vector<Json::Value> rows(5);
    for (Json::Value& row : rows) {
        row["n"] = 7;
    }
    DerivedTableWriter(mDatabase, "T", {ParamOf("n", "int")}, "another statement").Write(rows);
    mDatabase.Close();
    EXPECT_THAT(Rows(), ElementsAre("1|7", "2|7", "3|7", "4|7", "5|7"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(DerivedTableWriterTest, RowWithoutAnyMemberThatIsAColumnRunsNoStatement)
{
    for (const std::size_t strangers : {1U, 5U}) { // a few rows are inserted into the file, more through a stage
        std::vector<Json::Value> rows(strangers + 1);
        for (std::size_t number = 1; number < rows.size(); ++number) {
            rows[number]["other"] = 7;
            rows[number]["_ID"] = 7;
        }
        DerivedTableWriter(mDatabase, "T", {ParamOf("n", "int")}, CREATE).Write(rows);
    }
    EXPECT_THAT(Rows(), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(DerivedTableWriterTest, NothingOfTheStageIsLeftOnTheConnection)
{
    Write(5);
    FT::sql::SqlOperator statement(mDatabase.GetHandle());
    EXPECT_FALSE(statement.ExecuteNoCallback("select * from temp.T"));
    EXPECT_TRUE(statement.ExecuteNoCallback("insert into T (n) values (7)"));
    EXPECT_THAT(Rows(), Contains("6|7"));
}

// The lines are those of rows that go into the file one by one, whatever came before.
TEST_F(DerivedTableWriterTest, FileThatSomebodyReadsMeanwhileKeepsWhatItHas)
{
    FT::sql::SqlDatabase reader;
    reader.Open(mPath);
    FT::sql::SqlOperator(reader.GetHandle()).ExecuteNoCallback("begin; select * from T");
    Write(4);
    const auto locked = HasSubstr("sql failed: database is locked");
    const auto open = HasSubstr("sql failed: cannot start a transaction within a transaction");
    EXPECT_THAT(mLog.Lines(), ElementsAre(locked, open, locked, open, locked, open, locked));
    reader.Close();
    mDatabase.Close();
    EXPECT_THAT(Rows(), IsEmpty());
}

TEST_F(DerivedTableWriterTest, FileThatSomebodyWritesMeanwhileCostsEachRowItsLines)
{
    FT::sql::SqlDatabase writer;
    writer.Open(mPath);
    FT::sql::SqlOperator(writer.GetHandle()).ExecuteNoCallback("begin immediate");
    Write(4);
    const auto locked = HasSubstr("sql failed: database is locked");
    const std::string fail = "FUNc:CommonPartDbHelper::IsSetedDataToTable: execute sql fail.";
    EXPECT_THAT(mLog.Lines(), ElementsAre(locked, fail, locked, fail, locked, fail, locked, fail));
    writer.Close();
    EXPECT_THAT(Rows(), IsEmpty());
}

TEST_F(DerivedTableWriterTest, RowsThatMayHoldSqlCostTheirOwnLinesAlone)
{
    FT::sql::SqlDatabase writer;
    writer.Open(mPath);
    FT::sql::SqlOperator(writer.GetHandle()).ExecuteNoCallback("begin immediate");
    std::vector<Json::Value> rows(4);
    for (Json::Value& row : rows) {
        row["n"] = "it's (";
    }
    DerivedTableWriter(mDatabase, "T", {ParamOf("n", "int")}, CREATE).Write(rows);
    const auto broken = HasSubstr("sql failed: near \"s\": syntax error");
    const std::string fail = "FUNc:CommonPartDbHelper::IsSetedDataToTable: execute sql fail.";
    EXPECT_THAT(mLog.Lines(), ElementsAre(broken, fail, broken, fail, broken, fail, broken, fail));
}

// Each text alone is harmless; together they query how many rows the table in the file has by then.
TEST_F(DerivedTableWriterTest, SelectMadeFromSeveralMembersSeesTheRowsBeforeItsOwn)
{
    FT::sql::SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback(
        "drop table T; create table T (_ID integer primary key autoincrement, a, b, c)");
    std::vector<Json::Value> rows(5);
    for (Json::Value& row : rows) { // values ('', ', ' || (select count(*) from main.T) || ', ', '')
        row["a"] = "', ";
        row["b"] = " || (select count(*) from main.T) || ";
        row["c"] = ", '";
    }
    DerivedTableWriter(mDatabase, "T", {ParamOf("a", "text"), ParamOf("b", "text"), ParamOf("c", "text")},
        "CREATE TABLE T (_ID integer primary key autoincrement, a text, b text, c text);").Write(rows);
    mDatabase.Close();
    EXPECT_THAT(DatabaseRows(mPath, "select b from T"), ElementsAre(", 0, ", ", 1, ", ", 2, ", ", 3, ", ", 4, "));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(DerivedTableWriterTest, RowsThatTheFileRefusesAreLostOneByOne)
{
    // The table in the file rejects 2; the stage, created by another statement, accepts it.
    FT::sql::SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback(
        "drop table T; create table T (_ID integer primary key autoincrement, n int check (n <> 2))");
    Write(5);
    EXPECT_THAT(DatabaseRows(mPath, "select n from T"), ElementsAre("0", "1", "3", "4"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("CHECK constraint failed"),
        "FUNc:CommonPartDbHelper::IsSetedDataToTable: execute sql fail."));
}

TEST_F(DerivedTableWriterTest, TableWhoseNameNeedsQuotesIsFilledRowByRow)
{
    FT::sql::SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback("create table [a b] (_ID integer primary key, n int)");
    std::vector<Json::Value> rows(5);
    rows[4]["n"] = 7;
    DerivedTableWriter(mDatabase, "[a b]", {ParamOf("n", "int")}, "create table [a b] (_ID integer primary key, n int)")
        .Write(rows);
    mDatabase.Close(); // which kept the file to itself
    EXPECT_THAT(DatabaseRows(mPath, "select n from [a b]"), ElementsAre("7"));
}

} // namespace
