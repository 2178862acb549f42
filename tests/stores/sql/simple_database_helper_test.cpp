#include "arborist/stores/sql/simple_database_helper.h"

#include <array>

#include <gtest/gtest.h>

#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace FT::sql {
namespace {

class SimpleDatabaseHelperTest : public testing::Test {
protected:
    SimpleDatabaseHelperTest() { mDatabase.Open(mDir.Path("a.db")); }

    SqlRecord Record(const std::string& name) const
    {
        SqlRecord record(mTable.GetFields());
        record.SetString("name", name);
        return record;
    }

    TempDir mDir;
    LogCapture mLog;
    SqlDatabase mDatabase;
    std::array<SqlField, 2> mFields{
        SqlField("_id", TypeInteger, FlagPrimaryKey, FlagNotNull), SqlField("name", TypeText)};
    SqlTable mTable{mDatabase.GetHandle(), "things", mFields.data(), mFields.size()};
    SimpleDatabaseHelper mHelper;
};

TEST_F(SimpleDatabaseHelperTest, CarriesATableThroughItsLife)
{
    ASSERT_TRUE(mHelper.CreateTable(mTable));
    ASSERT_TRUE(mHelper.AddRecord(mTable, Record("a")));
    ASSERT_TRUE(mHelper.AddRecord(mTable, Record("b")));
    EXPECT_EQ(mHelper.GetRecordCount(mTable, ""), 2U);
    EXPECT_EQ(mHelper.GetRecordCount(mTable, "name = 'b'"), 1U);
    SqlRecord changed(*mHelper.GetRecordByKeyId(mTable, 2));
    changed.SetString("name", "c");
    ASSERT_TRUE(mHelper.UpdateRecord(mTable, changed));
    EXPECT_EQ(mHelper.GetFieldValueByRecord(*mHelper.GetRecordByKeyId(mTable, 2), "name")->AsString(), "c");
    ASSERT_TRUE(mHelper.DeleteRecord(mTable, "_id = 1"));
    EXPECT_EQ(mHelper.GetRecordCount(mTable, ""), 1U);
    ASSERT_TRUE(mHelper.TruncateTable(mTable));
    EXPECT_EQ(mHelper.GetRecordCount(mTable, ""), 0U);
    ASSERT_TRUE(mHelper.RemoveTable(mTable));
    EXPECT_FALSE(mTable.Exists());
}

TEST_F(SimpleDatabaseHelperTest, KeysKeepTheirSign)
{
    ASSERT_TRUE(mHelper.CreateTable(mTable));
    ASSERT_TRUE(mHelper.CreateInfoOnTable(mTable, "insert into things values (-3, 'x')"));
    ASSERT_NE(mHelper.GetRecordByKeyId(mTable, -3), nullptr);
}

TEST_F(SimpleDatabaseHelperTest, EmptyStatementCountsAsAllOnes)
{
    EXPECT_EQ(mHelper.GetRecordCountByFullSql(mTable, ""), UINT64_MAX);
}

TEST_F(SimpleDatabaseHelperTest, FailedStatementCountsTheRowsBeforeTheFailure)
{
    EXPECT_EQ(mHelper.GetRecordCountByFullSql(mTable, "select 1 union select 2"), 2U);
    EXPECT_EQ(mHelper.GetRecordCountByFullSql(mTable, "select 1; select"), 1U);
    EXPECT_EQ(mHelper.GetRecordCountByFullSql(mTable, "select * from nowhere"), 0U);
    EXPECT_EQ(mHelper.GetRecordCount(mTable, "name = 'a'"), 1U) << "the row of Exists";
}

TEST_F(SimpleDatabaseHelperTest, ValuesAreFoundWithinCountAndRows)
{
    ASSERT_EQ(mHelper.GetRecordCountByFullSql(mTable, "select 1, 'a' union select 2, 'b'"), 2U);
    EXPECT_EQ(mHelper.GetFieldValueByIndex(mTable, 1, 2, "name")->AsString(), "b");
    EXPECT_EQ(mHelper.GetFieldValueByIndex(mTable, 1, 1, "name"), nullptr);
    EXPECT_EQ(mHelper.GetFieldValueByIndex(mTable, 2, 3, "name"), nullptr);
    EXPECT_EQ(mHelper.GetFieldValueByIndex(mTable, 0, 2, "stray"), nullptr);
}

} // namespace
} // namespace FT::sql
