#include "diagnosis/sqlite/connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace {

using diagnosis::Connection;

class ConnectionTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(mConnection.Open("a.db", Connection::Mode::CREATE));
        ASSERT_TRUE(mConnection.Execute("create table t (a, b)"));
    }

    TempDir mDir;
    Connection mConnection;
};

TEST_F(ConnectionTest, ValuesComeBackAsTheyWereBound)
{
    const std::string text("a\0b", 3);
    auto insert = mConnection.Prepare("insert into t values (?1, ?2)");
    insert->Bind(1, text);
    insert->Bind(2, std::int64_t{1} << 40);
    EXPECT_FALSE(insert->Step());
    insert->Reset();
    insert->BindNull(1);
    insert->BindReal(2, 0.5);
    EXPECT_FALSE(insert->Step());

    auto rows = mConnection.Prepare("select a, b as count from t order by rowid");
    ASSERT_TRUE(rows->Step());
    EXPECT_EQ(rows->Text(0), text);
    EXPECT_TRUE(rows->IsInteger(1));
    EXPECT_EQ(rows->Integer(1), std::int64_t{1} << 40);
    ASSERT_TRUE(rows->Step());
    EXPECT_TRUE(rows->IsNull(0));
    EXPECT_EQ(rows->Text(0), "");
    EXPECT_FALSE(rows->IsInteger(1));
    EXPECT_EQ(rows->Text(1), "0.5");
    EXPECT_FALSE(rows->Step());
    EXPECT_FALSE(mConnection.HasError());
    EXPECT_EQ(rows->ColumnCount(), 2);
    EXPECT_EQ(rows->ColumnName(1), "count");
}

TEST_F(ConnectionTest, StatementsThatChangeADatabaseAreKnown)
{
    EXPECT_TRUE(mConnection.Prepare("select 1")->IsReadOnly());
    EXPECT_FALSE(mConnection.Prepare("delete from t")->IsReadOnly());
}

TEST_F(ConnectionTest, AStatementThatCannotBePreparedIsNothingAndLeavesItsError)
{
    EXPECT_FALSE(mConnection.Prepare("select c from t"));
    EXPECT_TRUE(mConnection.HasError());
    EXPECT_EQ(mConnection.GetError(), "no such column: c");
}

TEST_F(ConnectionTest, AnEndlessStatementIsInterruptedOnceItIsLimited)
{
    mConnection.LimitToFile();
    auto endless = mConnection.Prepare("with recursive n(i) as (select 1 union all select i + 1 from n) select max(i) from n");
    EXPECT_FALSE(endless->Step());
    EXPECT_TRUE(mConnection.IsInterrupted());
    EXPECT_EQ(mConnection.GetError(), "takes more work than a database of its size can need");
}

TEST_F(ConnectionTest, AFileThatHasGrownSinceAllowsItsTexts)
{
    mConnection.LimitToFile();
    Connection other;
    ASSERT_TRUE(other.Open("a.db", Connection::Mode::CREATE) && other.Execute("create table long as select zeroblob(1100000)"));
    const char* const sql = "select length(zeroblob(1000001))";
    EXPECT_FALSE(mConnection.Prepare(sql)->Step());
    mConnection.LimitToFile();
    EXPECT_TRUE(mConnection.Prepare(sql)->Step());
}

TEST_F(ConnectionTest, AStatementWaitsForALockAsLongAsItIsTold)
{
    Connection other;
    ASSERT_TRUE(other.Open("a.db", Connection::Mode::CREATE) && other.Execute("begin immediate"));
    const auto isWritten = [this] { return mConnection.Execute("insert into t values (3, 4)"); };
    mConnection.WhileLocked(nullptr);
    EXPECT_FALSE(isWritten());
    EXPECT_TRUE(mConnection.IsLocked());
    mConnection.WhileLocked([](int tries) { return tries < 2; });
    EXPECT_FALSE(isWritten());
    EXPECT_EQ(mConnection.GetError(), "database is locked");
    mConnection.WhileLocked([&other](int) { return other.Execute("commit"); });
    EXPECT_TRUE(isWritten());
}

TEST_F(ConnectionTest, ATextThatIsLongerThanTheFileFailsOnceItIsLimited)
{
    const char* const sql = "select length(zeroblob(1000001))";
    EXPECT_TRUE(mConnection.Prepare(sql)->Step());
    mConnection.LimitToFile();
    EXPECT_FALSE(mConnection.Prepare(sql)->Step());
    EXPECT_EQ(mConnection.GetError(), "string or blob too big");
}

TEST_F(ConnectionTest, AReadingConnectionCreatesNoFileAndChangesNone)
{
    Connection reading;
    EXPECT_FALSE(reading.Open("none.db", Connection::Mode::READ_ONLY));
    EXPECT_FALSE(mDir.Has("none.db"));
    ASSERT_TRUE(reading.Open("a.db", Connection::Mode::READ_ONLY));
    EXPECT_FALSE(reading.Execute("insert into t values (1, 2)"));
    EXPECT_EQ(reading.GetError(), "attempt to write a readonly database");
}

TEST_F(ConnectionTest, EveryNameIsThatOfAFile)
{
    for (const char* name : {":memory:", "file:b.db?mode=memory"}) {
        Connection other;
        EXPECT_FALSE(other.Open(name, Connection::Mode::READ_ONLY));
        EXPECT_TRUE(other.Open(name, Connection::Mode::CREATE) && other.Execute("create table u (a)"));
        EXPECT_TRUE(mDir.Has(name));
    }
    EXPECT_TRUE(mConnection.WriteCopy("file:c.db"));
    EXPECT_TRUE(mDir.Has("file:c.db"));
}

TEST_F(ConnectionTest, ADatabaseInMemoryIsNoFile)
{
    Connection other;
    EXPECT_TRUE(other.OpenInMemory() && other.Execute("create table u (a)"));
    EXPECT_FALSE(mDir.Has(":memory:"));
}

TEST_F(ConnectionTest, WhatIsNoPlainFileIsRefused)
{
    Connection other;
    EXPECT_FALSE(other.Open("", Connection::Mode::CREATE));
    EXPECT_EQ(other.GetError(), "has no name");
    EXPECT_FALSE(other.Open(".", Connection::Mode::READ_ONLY));
    EXPECT_EQ(other.GetError(), "is a folder");
    EXPECT_FALSE(other.Open("/dev/null", Connection::Mode::READ_ONLY));
    EXPECT_EQ(other.GetError(), "is no plain file");
}

} // namespace
