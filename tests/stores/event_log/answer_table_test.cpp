#include "arborist/stores/event_log/answer_table.h"

#include <gtest/gtest.h>

namespace {

TEST(AnswerColumnTest, RowsAnswerWhatWasSetAndOtherwiseNo)
{
    AnswerColumn column(100, 300, false);
    column.Set(101, 1);
    column.Set(102, 0);
    EXPECT_EQ(column.Get(100), 0);
    EXPECT_EQ(column.Get(101), 1);
    EXPECT_EQ(column.Get(102), 0);
    EXPECT_EQ(column.GetYes(1), std::uint64_t{1} << (101 - 64));
}

TEST(AnswerColumnTest, NumbersKeepTheirSign)
{
    AnswerColumn column(100, 300, true);
    column.Set(299, -7);
    EXPECT_EQ(column.Get(299), -7);
    EXPECT_EQ(column.Get(100), 0);
}

TEST(AnswerColumnTest, RowsAreAskedAgainOnlyWhereThatWasSaid)
{
    AnswerColumn column(100, 300, false);
    EXPECT_FALSE(column.HasAskedAgain());
    EXPECT_FALSE(column.IsAskedAgain(150));
    column.SetAskAgain(150);
    EXPECT_TRUE(column.HasAskedAgain());
    EXPECT_TRUE(column.IsAskedAgain(150));
    EXPECT_FALSE(column.IsAskedAgain(151));
}

TEST(AnswerColumnTest, TakesTwoBitsARowOrFourBytesAndOneBit)
{
    constexpr std::uint32_t ROWS = 1000000;
    EXPECT_NEAR(static_cast<double>(AnswerColumn::SizeFor(ROWS, false)), ROWS / 4.0, 200);
    EXPECT_NEAR(static_cast<double>(AnswerColumn::SizeFor(ROWS, true)), ROWS * 4.125, 200);
}

TEST(AnswerTableTest, FindsTheColumnThatHasAllRows)
{
    AnswerTable table(17);
    const auto first = table.Add(1, 10, 20, false);
    const auto second = table.Add(1, 30, 40, false);
    const auto other = table.Add(2, 0, 100, true);
    EXPECT_EQ(table.GetSince(), 17);
    EXPECT_EQ(table.Find(1, 10, 20), first);
    EXPECT_EQ(table.Find(1, 35, 36), second);
    EXPECT_EQ(table.Find(2, 10, 20), other);
    EXPECT_EQ(table.Find(1, 10, 21), nullptr);
    EXPECT_EQ(table.Find(1, 9, 12), nullptr);
    EXPECT_EQ(table.Find(1, 18, 35), nullptr);
    EXPECT_EQ(table.Find(3, 10, 20), nullptr);
}

} // namespace
