#include "arborist/stores/sql/sql_record.h"

#include <gtest/gtest.h>

namespace FT::sql {
namespace {

class SqlRecordTest : public testing::Test {
protected:
    SqlRecordTest()
    {
        mNumber.SetIndex(0);
        mText.SetIndex(1);
    }

    std::string Text(const SqlRecord& record) const { return record.ToSql(mList); }

    SqlField mNumber{"number", TypeInteger};
    SqlField mText{"text", TypeText};
    SqlField mStray{"stray", TypeText};
    FieldList mList{&mNumber, &mText};
    FieldMap mMap{{"number", &mNumber}, {"text", &mText}};
};

TEST_F(SqlRecordTest, StartsWithANullValueForEachField)
{
    const SqlRecord record(&mMap);
    EXPECT_EQ(record.GetColumnCount(), 2U);
    EXPECT_EQ(Text(record), "null, null");
}

TEST_F(SqlRecordTest, FindsValuesByPositionNameAndField)
{
    SqlRecord record(&mMap);
    record.SetString(1, "x");
    EXPECT_EQ(record.GetValue(std::size_t{1})->AsString(), "x");
    EXPECT_EQ(record.GetValue("text")->AsString(), "x");
    EXPECT_EQ(record.GetValue(mText)->AsString(), "x");
    EXPECT_EQ(record.GetFieldByName("text"), &mText);
}

TEST_F(SqlRecordTest, UnknownColumnsGiveNull)
{
    const SqlRecord record(&mMap);
    EXPECT_EQ(record.GetValue(std::size_t{2}), nullptr);
    EXPECT_EQ(record.GetValue("stray"), nullptr);
    EXPECT_EQ(record.GetValue(mStray), nullptr);
    EXPECT_EQ(record.GetFieldByName("stray"), nullptr);
}

TEST_F(SqlRecordTest, SettersOfUnknownColumnsDoNothing)
{
    SqlRecord record(&mMap);
    record.SetNull("stray");
    record.SetNull(std::size_t{9});
    record.SetNull(mStray);
    record.SetInteger("stray", 1);
    record.SetInteger(9, 1);
    record.SetInteger(mStray, 1);
    record.SetDouble("stray", 1);
    record.SetDouble(9, 1);
    record.SetDouble(mStray, 1);
    record.SetString("stray", "x");
    record.SetString(9, "x");
    record.SetString(mStray, "x");
    record.SetString("stray", "x", 1);
    EXPECT_EQ(Text(record), "null, null");
}

TEST_F(SqlRecordTest, SettersReachTheirColumn)
{
    SqlRecord record(&mMap);
    record.SetInteger("number", 7);
    record.SetString("text", "it's");
    EXPECT_EQ(Text(record), "7, 'it''s'");
    record.SetDouble(mNumber, 0.25);
    record.SetString(mText, "");
    EXPECT_EQ(Text(record), "0.25000000, ''");
    record.SetInteger(mNumber, -1);
    record.SetNull(mText);
    EXPECT_EQ(Text(record), "-1, null");
    record.SetDouble("number", 2);
    record.SetNull("text");
    EXPECT_EQ(Text(record), "2.00000000, null");
    record.SetInteger(0, 3);
    record.SetNull(1);
    EXPECT_EQ(Text(record), "3, null");
    record.SetDouble(0, 4);
    EXPECT_EQ(Text(record), "4.00000000, null");
}

TEST_F(SqlRecordTest, LengthOfATextIsIgnored)
{
    SqlRecord record(&mMap);
    record.SetString("text", "whole", 2);
    EXPECT_EQ(record.GetValue("text")->AsString(), "whole");
}

TEST_F(SqlRecordTest, RecordWithoutAMapHasNoNamesAndCopiesEmpty)
{
    SqlRecord record(nullptr);
    EXPECT_EQ(record.GetColumnCount(), 0U);
    record.InitColumnCount(2);
    record.InitColumnValue(0, "x", TypeText);
    EXPECT_EQ(record.GetValue("text"), nullptr);
    EXPECT_EQ(record.GetFieldByName("text"), nullptr);
    const SqlRecord copy(record);
    EXPECT_EQ(copy.GetColumnCount(), 0U);
}

TEST_F(SqlRecordTest, CopyTakesAllValuesOfTheOther)
{
    SqlRecord record(&mMap);
    record.InitColumnCount(3);
    record.InitColumnValue(2, "x", TypeText);
    const SqlRecord copy(record);
    EXPECT_EQ(copy.GetColumnCount(), 3U);
    EXPECT_EQ(copy.GetValue(std::size_t{2})->AsString(), "x");
}

TEST_F(SqlRecordTest, PositionWithoutFieldOrValueAddsNotEvenAComma)
{
    SqlRecord record(&mMap);
    record.SetInteger("number", 1);
    EXPECT_EQ(record.ToSql({&mNumber, nullptr, &mText}), "1, null");
    EXPECT_EQ(record.ToSql({&mStray, &mNumber}), "1");
    EXPECT_EQ(record.ToSql({&mNumber, &mStray}), "1, ");
    EXPECT_EQ(record.ToSql({}), "");
}

} // namespace
} // namespace FT::sql
