#include "arborist/stores/event_log/row_bits.h"

#include <gmock/gmock.h>

namespace {

std::vector<std::uint32_t> RowsIn(const RowBits& bits)
{
    std::vector<std::uint32_t> rows;
    bits.ForEach([&rows](std::uint32_t row) { rows.push_back(row); });
    return rows;
}

TEST(RowBitsTest, RowsAreThereOnceTheyAreSet)
{
    RowBits bits(70, 200);
    EXPECT_THAT(RowsIn(bits), testing::IsEmpty());
    for (const std::uint32_t row : {199U, 70U, 127U, 128U}) {
        EXPECT_FALSE(bits.Has(row));
        bits.Set(row);
        EXPECT_TRUE(bits.Has(row));
    }
    EXPECT_FALSE(bits.Has(71));
    EXPECT_THAT(RowsIn(bits), testing::ElementsAre(70U, 127U, 128U, 199U));
}

TEST(RowBitsTest, WordsOfTwoRunsHoldTheSameRows)
{
    RowBits whole(0, 300);
    RowBits part(130, 131);
    whole.Set(130);
    part.Set(130);
    EXPECT_EQ(part.GetFirstWord(), 2U);
    EXPECT_EQ(part.GetEndWord(), 3U);
    EXPECT_EQ(whole.GetWord(2), part.GetWord(2));
    EXPECT_EQ(RowBits::WordsIn(130, 131), 1U);
    EXPECT_EQ(RowBits::WordsIn(127, 129), 2U);
    EXPECT_EQ(RowBits::WordsIn(64, 128), 1U);
}

TEST(RowBitsTest, NoRowsAreEmpty)
{
    EXPECT_TRUE(RowBits().IsEmpty());
    EXPECT_TRUE(RowBits(5, 5).IsEmpty());
    EXPECT_FALSE(RowBits(5, 6).IsEmpty());
    EXPECT_THAT(RowsIn(RowBits(5, 5)), testing::IsEmpty());
}

} // namespace
