#include "arborist/stores/sql/sql_operator.h"

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace FT::sql {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SqlOperatorTest : public testing::Test {
protected:
    SqlOperatorTest()
    {
        mDatabase.Open(mDir.Path("a.db"));
        mA.SetIndex(0);
        mB.SetIndex(1);
    }

    TempDir mDir;
    LogCapture mLog;
    SqlDatabase mDatabase;
    SqlField mA{"a", TypeInteger};
    SqlField mB{"b", TypeText};
    FieldList mList{&mA, &mB};
    FieldMap mMap{{"a", &mA}, {"b", &mB}};
    SqlOperator mOperator{mDatabase.GetHandle(), &mList, &mMap};
};

TEST_F(SqlOperatorTest, IsNotOkBeforeTheFirstStatement)
{
    EXPECT_FALSE(mOperator.IsOk());
    EXPECT_EQ(mOperator.GetTopRecord(), nullptr);
    EXPECT_EQ(mOperator.GetTopRecordFirstValue(), nullptr);
}

TEST_F(SqlOperatorTest, RowsComeAsTextByPosition)
{
    ASSERT_TRUE(mOperator.Execute("select 7 as b, 'x' as a union all select 8.5, null"));
    ASSERT_EQ(mOperator.GetCount(), 2U);
    EXPECT_EQ(mOperator.GetTopRecord()->GetValue("a")->AsString(), "7");
    EXPECT_EQ(mOperator.GetRecord(0)->GetValue("b")->AsString(), "x");
    EXPECT_EQ(mOperator.GetRecord(1)->GetValue("a")->AsString(), "8.5");
    EXPECT_TRUE(mOperator.GetRecord(1)->GetValue("b")->IsNull());
    EXPECT_EQ(mOperator.GetRecord(2), nullptr);
    EXPECT_EQ(mOperator.GetTopRecordFirstValue()->AsInteger(), 7);
}

// With this setting SQLite tells of a row where there is none.
TEST_F(SqlOperatorTest, ResultWithoutRowsKeepsNone)
{
    ASSERT_TRUE(mOperator.Execute("pragma empty_result_callbacks = 1; select 7, 'x' where 0"));
    EXPECT_EQ(mOperator.GetCount(), 0U);
}

TEST_F(SqlOperatorTest, WithoutFieldsByNameNoRowIsKept)
{
    SqlOperator statement(mDatabase.GetHandle(), &mList, nullptr);
    ASSERT_TRUE(statement.Execute("select 7, 'x'"));
    EXPECT_EQ(statement.GetCount(), 0U);
}

TEST_F(SqlOperatorTest, FailureWithoutWordsIsNotLogged)
{
    ASSERT_TRUE(mOperator.ExecuteNoCallback(
        "create table t (a); create trigger f before insert on t begin select raise(abort, ''); end"));
    EXPECT_FALSE(mOperator.ExecuteNoCallback("insert into t values (1)"));
    EXPECT_EQ(mOperator.GetErrorMessage(), "");
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(SqlOperatorTest, NullAndEmptyTextAreTheSame)
{
    ASSERT_TRUE(mOperator.Execute("select null, ''"));
    EXPECT_TRUE(mOperator.GetTopRecord()->GetValue("a")->IsNull());
    EXPECT_TRUE(mOperator.GetTopRecord()->GetValue("b")->IsNull());
}

TEST_F(SqlOperatorTest, SurplusColumnsStayNullAndMissingOnesAreNotThere)
{
    ASSERT_TRUE(mOperator.Execute("select 1, 2, 3"));
    EXPECT_EQ(mOperator.GetTopRecord()->GetColumnCount(), 3U);
    EXPECT_TRUE(mOperator.GetTopRecord()->GetValue(std::size_t{2})->IsNull());
    ASSERT_TRUE(mOperator.Execute("select 1"));
    EXPECT_EQ(mOperator.GetTopRecord()->GetColumnCount(), 1U);
    EXPECT_EQ(mOperator.GetTopRecord()->GetValue("b"), nullptr);
}

TEST_F(SqlOperatorTest, NullFieldInTheListKeepsItsColumnNull)
{
    const FieldList list{nullptr, &mB};
    SqlOperator statement(mDatabase.GetHandle(), &list, &mMap);
    ASSERT_TRUE(statement.Execute("select 1, 2"));
    EXPECT_TRUE(statement.GetTopRecord()->GetValue("a")->IsNull());
    EXPECT_EQ(statement.GetTopRecord()->GetValue("b")->AsString(), "2");
}

TEST_F(SqlOperatorTest, OperatorWithoutFieldsRunsAndKeepsNoRows)
{
    SqlOperator bare(mDatabase.GetHandle());
    EXPECT_TRUE(bare.Execute("select 1"));
    EXPECT_TRUE(bare.IsOk());
    EXPECT_EQ(bare.GetCount(), 0U);
    EXPECT_EQ(bare.GetTopRecord(), nullptr);
    EXPECT_EQ(bare.GetTopRecordFirstValue(), nullptr);
}

TEST_F(SqlOperatorTest, StatementWithoutCallbackKeepsNoRows)
{
    ASSERT_TRUE(mOperator.Execute("select 1"));
    ASSERT_TRUE(mOperator.ExecuteNoCallback("select 1"));
    EXPECT_EQ(mOperator.GetCount(), 0U);
}

TEST_F(SqlOperatorTest, FailureAfterRowsHidesThemFromTheTopAlone)
{
    EXPECT_FALSE(mOperator.Execute("select 1, 'x'; select * from nowhere"));
    EXPECT_FALSE(mOperator.IsOk());
    EXPECT_EQ(mOperator.GetCount(), 1U);
    EXPECT_EQ(mOperator.GetTopRecord(), nullptr);
    EXPECT_EQ(mOperator.GetTopRecordFirstValue(), nullptr);
    ASSERT_NE(mOperator.GetRecord(0), nullptr);
    EXPECT_EQ(mOperator.GetRecord(0)->GetValue("b")->AsString(), "x");
}

TEST_F(SqlOperatorTest, FailuresNameTheOperationAndTheReason)
{
    EXPECT_FALSE(mOperator.Execute("select * from nowhere"));
    EXPECT_FALSE(mOperator.ExecuteNoCallback("select from"));
    mDatabase.Close();
    EXPECT_FALSE(mOperator.Execute("select 1"));
    EXPECT_FALSE(mOperator.ExecuteNoCallback("select 1"));
    EXPECT_THAT(mLog.Lines(LEVEL_ERROR), ElementsAre(
        "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: no such table: nowhere",
        "FUNc:FT::sql::SqlOperator::ExecuteNoCallback: ExecuteNoCallback sql failed: near \"from\": syntax error",
        "FUNc:FT::sql::SqlOperator::Execute: Execute db is null",
        "FUNc:FT::sql::SqlOperator::ExecuteNoCallback: ExecuteNoCallback db is null"));
    EXPECT_THAT(mLog.Formats(), ElementsAre("FUNc:%s: Execute sql failed: %s",
        "FUNc:%s: ExecuteNoCallback sql failed: %s", "FUNc:%s: Execute db is null",
        "FUNc:%s: ExecuteNoCallback db is null"));
}

// After a failed open there is no usable connection, and SQLite has no message for that.
TEST_F(SqlOperatorTest, FailureWithoutWordsSaysSo)
{
    ASSERT_TRUE(mOperator.Execute("select 1"));
    ASSERT_FALSE(mDatabase.Open(mDir.Path("no/such/a.db")));
    mLog.Clear();
    EXPECT_FALSE(mOperator.Execute("select 1"));
    EXPECT_FALSE(mOperator.IsOk());
    EXPECT_EQ(mOperator.GetCount(), 0U);
    EXPECT_FALSE(mOperator.ExecuteNoCallback("select 1"));
    EXPECT_THAT(mLog.Lines(LEVEL_ERROR),
        ElementsAre("FUNc:FT::sql::SqlOperator::Execute: Execute error returns null",
            "FUNc:FT::sql::SqlOperator::ExecuteNoCallback: ExecuteNoCallback error returns null"));
    EXPECT_THAT(mLog.Formats(), ElementsAre(
        "FUNc:%s: Execute error returns null", "FUNc:%s: ExecuteNoCallback error returns null"));
}

TEST_F(SqlOperatorTest, EveryStatementDropsTheRowsBefore)
{
    ASSERT_TRUE(mOperator.Execute("select 1"));
    EXPECT_FALSE(mOperator.Execute("select"));
    EXPECT_EQ(mOperator.GetCount(), 0U);
    ASSERT_TRUE(mOperator.Execute("select 1"));
    mOperator.Clear();
    EXPECT_EQ(mOperator.GetCount(), 0U);
    EXPECT_FALSE(mOperator.IsOk());
}

TEST_F(SqlOperatorTest, AnotherWritersLockFailsTheStatementAtOnce)
{
    SqlDatabase other;
    ASSERT_TRUE(other.Open(mDir.Path("a.db")));
    SqlOperator writer(other.GetHandle());
    ASSERT_TRUE(writer.ExecuteNoCallback("create table t (a)"));
    ASSERT_TRUE(mOperator.Execute("select * from t"));
    ASSERT_TRUE(writer.ExecuteNoCallback("BEGIN EXCLUSIVE"));
    EXPECT_FALSE(mOperator.Execute("select * from t"));
    EXPECT_THAT(mLog.Lines(LEVEL_ERROR),
        ElementsAre("FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: database is locked"));
    ASSERT_TRUE(writer.ExecuteNoCallback("COMMIT"));
    EXPECT_TRUE(mOperator.Execute("select * from t"));
}

TEST_F(SqlOperatorTest, SuccessIsSilent)
{
    EXPECT_TRUE(mOperator.Execute(""));
    EXPECT_TRUE(mOperator.Execute("create table t (a)"));
    EXPECT_TRUE(mOperator.ExecuteNoCallback("drop table t"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

} // namespace
} // namespace FT::sql
