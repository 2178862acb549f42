#include "arborist/stores/sql/sql_table.h"

#include <array>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace FT::sql {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SqlTableTest : public testing::Test {
protected:
    SqlTableTest() { mDatabase.Open(mDir.Path("a.db")); }

    SqlRecord Record(const std::string& name, double weight) const
    {
        SqlRecord record(mTable.GetFields());
        record.SetString("name", name);
        record.SetDouble("weight", weight);
        return record;
    }

    TempDir mDir;
    LogCapture mLog;
    SqlDatabase mDatabase;
    std::array<SqlField, 4> mFields{SqlField("_id", TypeInteger, FlagPrimaryKey, FlagNotNull),
        SqlField("name", TypeText, FlagNone, FlagNotNull), SqlField("weight", TypeReal), SqlField(FieldUseEnd)};
    SqlTable mTable{mDatabase.GetHandle(), "things", mFields.data(), mFields.size()};
};

// The name of a derived table comes from a rule set.
TEST_F(SqlTableTest, NameThatLeavesTheQuestionWithoutARowIsNoTable)
{
    ASSERT_TRUE(mTable.Create());
    SqlTable table(mDatabase.GetHandle(), "things' limit 0 --", mFields.data(), mFields.size());
    EXPECT_FALSE(table.Exists());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(SqlTableTest, FieldsEndAtTheMarkAndAreNumbered)
{
    EXPECT_EQ(mTable.GetFieldsString(), "_id, name, weight");
    EXPECT_EQ(mTable.GetFields()->size(), 3U);
    EXPECT_EQ(mFields[2].GetIndex(), 2U);
    EXPECT_EQ(mFields[3].GetIndex(), UINT64_MAX);
}

TEST_F(SqlTableTest, FieldsEndAtTheirCountToo)
{
    const SqlTable table(mDatabase.GetHandle(), "t", mFields.data(), 2);
    EXPECT_EQ(table.GetFieldsString(), "_id, name");
    const SqlTable none(mDatabase.GetHandle(), "t", nullptr, 2);
    EXPECT_EQ(none.GetFieldsString(), "");
    const SqlTable empty(mDatabase.GetHandle(), "t", mFields.data(), 0);
    EXPECT_EQ(empty.GetFieldsString(), "");
}

TEST_F(SqlTableTest, OfTwoFieldsWithOneNameTheLaterIsFound)
{
    std::array<SqlField, 2> fields{SqlField("a", TypeInteger), SqlField("a", TypeText)};
    const SqlTable table(mDatabase.GetHandle(), "t", fields.data(), fields.size());
    EXPECT_EQ(table.GetFieldsString(), "a, a");
    EXPECT_EQ(table.GetFields()->at("a"), &fields[1]);
}

TEST_F(SqlTableTest, DefinitionsAreBuiltFromTheFields)
{
    EXPECT_EQ(mTable.GetDefinition(),
        "CREATE TABLE things (_id INTEGER PRIMARY KEY NOT NULL, name TEXT NOT NULL, weight REAL)");
    EXPECT_EQ(SqlField("x", TypeNone).GetDefinition(), "x ");
    EXPECT_EQ(SqlField("", TypeText, FlagNone, FlagNone).GetDefinition(), "TEXT");
    EXPECT_TRUE(SqlField("x", TypeText, FlagNone, FlagNone).IsNull());
}

TEST_F(SqlTableTest, StatementsAreBuiltFromTheRecord)
{
    SqlRecord record = Record("it's", 1.5);
    EXPECT_EQ(mTable.GetAddString(record),
        "insert into things (_id, name, weight) values (null, 'it''s', 1.50000000)");
    record.SetInteger("_id", 7);
    EXPECT_EQ(mTable.GetUpdateString(record), "update things set name='it''s', weight=1.50000000 where _ID = 7");
}

TEST_F(SqlTableTest, UpdateWithoutAKeyHasNoCondition)
{
    EXPECT_EQ(mTable.GetUpdateString(Record("a", 0)), "update things set name='a', weight=0.00000000 where _ID = null");
    EXPECT_EQ(mTable.GetUpdateString(SqlRecord(nullptr)), "update things set ");
}

TEST_F(SqlTableTest, UpdateOfOneColumnSetsNothing)
{
    const SqlTable table(mDatabase.GetHandle(), "t", mFields.data(), 1);
    SqlRecord record(table.GetFields());
    record.SetInteger("_id", 5);
    EXPECT_EQ(table.GetUpdateString(record), "update t set  where _ID = 5");
}

TEST_F(SqlTableTest, CreatingTwiceIsTrueAndChangesNothing)
{
    EXPECT_FALSE(mTable.Exists());
    EXPECT_TRUE(mTable.Create());
    EXPECT_TRUE(mTable.Exists());
    ASSERT_TRUE(mTable.AddRecord(Record("a", 1)));
    EXPECT_TRUE(mTable.Create());
    EXPECT_EQ(mTable.GetTotalRecordCount(), 1);
}

TEST_F(SqlTableTest, MissingTableCanBeRemovedButNotRead)
{
    EXPECT_TRUE(mTable.Remove());
    EXPECT_FALSE(mTable.Truncate());
    EXPECT_FALSE(mTable.Open());
    EXPECT_FALSE(mTable.Open("name = 'a'"));
    EXPECT_FALSE(mTable.DeleteRecords(""));
    EXPECT_EQ(mTable.GetRecordByKeyId(1), nullptr);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_EQ(mTable.GetTotalRecordCount(), -1);
    EXPECT_THAT(mLog.Lines(),
        ElementsAre("FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: no such table: things"));
}

TEST_F(SqlTableTest, RowsAreAddedReadChangedAndDeleted)
{
    ASSERT_TRUE(mTable.Create());
    ASSERT_TRUE(mTable.AddRecord(Record("a", 1)));
    ASSERT_TRUE(mTable.AddRecord(Record("b", 2)));
    ASSERT_TRUE(mTable.Open());
    EXPECT_EQ(mTable.GetRecordCount(), 2U);
    ASSERT_TRUE(mTable.Open("name = 'b'"));
    ASSERT_EQ(mTable.GetRecordCount(), 1U);
    SqlRecord changed(*mTable.GetTopRecord());
    changed.SetString("name", "c");
    ASSERT_TRUE(mTable.UpdateRecord(changed));
    ASSERT_NE(mTable.GetRecordByKeyId(2), nullptr);
    EXPECT_EQ(mTable.GetTopRecord()->GetValue("name")->AsString(), "c");
    EXPECT_EQ(mTable.GetRecordByKeyId(9), nullptr);
    ASSERT_TRUE(mTable.DeleteRecords("_id = 1"));
    EXPECT_EQ(mTable.GetTotalRecordCount(), 1);
    ASSERT_TRUE(mTable.Truncate());
    EXPECT_EQ(mTable.GetTotalRecordCount(), 0);
    ASSERT_TRUE(mTable.Remove());
    EXPECT_FALSE(mTable.Exists());
}

TEST_F(SqlTableTest, DeletingTellsTheStatementFirst)
{
    ASSERT_TRUE(mTable.Create());
    ASSERT_TRUE(mTable.DeleteRecords("_id = 1"));
    ASSERT_TRUE(mTable.DeleteRecords(""));
    EXPECT_THAT(mLog.Lines(LEVEL_INFO), ElementsAre(
        "FUNc:FT::sql::SqlTable::DeleteRecords: delete sql: delete from things where _id = 1, condition: _id = 1",
        "FUNc:FT::sql::SqlTable::DeleteRecords: delete sql: delete from things, condition: "));
}

TEST_F(SqlTableTest, AskingForTheTableDropsTheRows)
{
    ASSERT_TRUE(mTable.Create());
    ASSERT_TRUE(mTable.Query("select 1 union select 2"));
    ASSERT_EQ(mTable.GetRecordCount(), 2U);
    EXPECT_TRUE(mTable.Exists());
    EXPECT_EQ(mTable.GetRecordCount(), 1U);
    EXPECT_EQ(mTable.GetRecord(0)->GetValue("_id")->AsInteger(), 1);
}

TEST_F(SqlTableTest, TopRecordIsThereAfterAFailureToo)
{
    EXPECT_FALSE(mTable.Query("select 5; select"));
    ASSERT_NE(mTable.GetTopRecord(), nullptr);
    EXPECT_EQ(mTable.GetTopRecord()->GetValue("_id")->AsInteger(), 5);
}

TEST_F(SqlTableTest, TableWithoutFieldsKeepsRowsOfNullValues)
{
    ASSERT_TRUE(mTable.Create());
    ASSERT_TRUE(mTable.AddRecord(Record("a", 1)));
    SqlTable bare(mDatabase.GetHandle(), "things", nullptr, 0);
    ASSERT_TRUE(bare.Query("select * from things"));
    ASSERT_EQ(bare.GetTopRecord()->GetColumnCount(), 3U);
    EXPECT_TRUE(bare.GetTopRecord()->GetValue(std::size_t{1})->IsNull());
    const SqlRecord* const found = bare.GetRecordByKeyId(1);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(bare.GetRecordCount(), 1U);
    ASSERT_EQ(found->GetColumnCount(), 3U);
    for (std::size_t column = 0; column < 3; ++column) {
        EXPECT_TRUE(found->GetValue(column)->IsNull()) << column;
    }
    EXPECT_EQ(bare.GetRecordByKeyId(2), nullptr);
}

TEST_F(SqlTableTest, TableWithoutFieldsKnowsWhetherItExists)
{
    SqlTable bare(mDatabase.GetHandle(), "things", nullptr, 0);
    EXPECT_FALSE(bare.Exists());
    EXPECT_EQ(bare.GetRecordByKeyId(1), nullptr);
    ASSERT_TRUE(mTable.Create());
    EXPECT_TRUE(bare.Exists());
    EXPECT_EQ(bare.GetFieldsString(), "");
}

TEST_F(SqlTableTest, NameIsNotQuoted)
{
    SqlTable table(mDatabase.GetHandle(), "it's", mFields.data(), mFields.size());
    EXPECT_FALSE(table.Exists());
    EXPECT_EQ(mLog.Lines(LEVEL_ERROR).size(), 1U);
}

TEST_F(SqlTableTest, NameAndKeyAreAsTheyWereGiven)
{
    EXPECT_EQ(mTable.GetName(), "things");
    EXPECT_TRUE(mFields[0].IsPrimaryKey());
    EXPECT_FALSE(mFields[1].IsPrimaryKey());
    const SqlField copy(mFields[0]);
    EXPECT_EQ(copy.GetDefinition(), mFields[0].GetDefinition());
}

TEST_F(SqlTableTest, UpdateWithoutFieldsSetsNothing)
{
    const SqlTable none(mDatabase.GetHandle(), "t", nullptr, 0);
    EXPECT_EQ(none.GetUpdateString(SqlRecord(none.GetFields())), "update t set ");
}

TEST_F(SqlTableTest, WhatTheDatabaseRefusesIsFalse)
{
    ASSERT_TRUE(mTable.Create());
    EXPECT_FALSE(mTable.Open("no such column = 1"));
    SqlDatabase reader;
    reader.Open(mDir.Path("a.db"));
    reader.BeginTransaction();
    SqlOperator(reader.GetHandle()).ExecuteNoCallback("insert into things values (1, 'a', 1)");
    EXPECT_FALSE(mTable.Truncate()) << "somebody else writes";
    EXPECT_FALSE(mTable.Remove());
    reader.Close();
    EXPECT_TRUE(mTable.Truncate());
    EXPECT_TRUE(mTable.Remove());
}

} // namespace
} // namespace FT::sql
