#include "arborist/stores/event_log/packed_column.h"

#include <random>
#include <vector>

#include <gmock/gmock.h>

namespace {

std::vector<std::uint32_t> NumbersOf(const PackedColumn& column)
{
    std::vector<std::uint32_t> numbers;
    for (std::size_t place = 0; place < column.GetCount(); ++place) {
        numbers.push_back(column[place]);
    }
    return numbers;
}

TEST(PackedColumnTest, TakesAsManyBytesAsTheFarthestNumberNeeds)
{
    PackedColumn column;
    column.Append(1000);
    column.Append(1255);
    EXPECT_EQ(column.GetWidth(), 1U);
    EXPECT_TRUE(column.Fits(1255));
    EXPECT_FALSE(column.Fits(1256));
    EXPECT_EQ(column.WidthWith(1256), 2U);
    column.Append(1256);
    EXPECT_EQ(column.GetWidth(), 2U);
    column.Append(1000 + 65536);
    EXPECT_EQ(column.GetWidth(), 3U);
    column.Append(4294967295);
    EXPECT_EQ(column.GetWidth(), 4U);
    EXPECT_THAT(NumbersOf(column), testing::ElementsAre(1000U, 1255U, 1256U, 66536U, 4294967295U));
}

TEST(PackedColumnTest, NumbersBelowTheFirstFitWithinItsHeadRoom)
{
    PackedColumn column(100);
    column.Append(1000);
    column.Append(900);
    column.Append(1155);
    EXPECT_EQ(column.GetWidth(), 1U);
    EXPECT_FALSE(column.Fits(899));
    column.Append(899);
    column.Append(0);
    EXPECT_EQ(column.GetWidth(), 4U);
    EXPECT_THAT(NumbersOf(column), testing::ElementsAre(1000U, 900U, 1155U, 899U, 0U));
}

TEST(PackedColumnTest, FirstNumberBelowTheHeadRoomIsNoDistance)
{
    PackedColumn column(100);
    column.Append(7);
    column.Append(0);
    EXPECT_EQ(column.GetWidth(), 1U);
    EXPECT_EQ(column.GetDistance(0), 7U);
}

TEST(PackedColumnTest, SettingLeavesTheNeighboursAlone)
{
    PackedColumn column;
    column.Assign(5, 70000);
    EXPECT_EQ(column.GetWidth(), 3U);
    EXPECT_THAT(NumbersOf(column), testing::Each(0U));
    column.Set(1, 70000);
    column.Set(3, 16777215);
    column.Set(2, 5);
    column.SetDistance(4, 6);
    EXPECT_THAT(NumbersOf(column), testing::ElementsAre(0U, 70000U, 5U, 16777215U, 6U));
    column.Set(0, 16777216);
    EXPECT_THAT(NumbersOf(column), testing::ElementsAre(16777216U, 70000U, 5U, 16777215U, 6U));
}

TEST(PackedColumnTest, AgreesWithAVector)
{
    for (unsigned int seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        std::vector<std::uint32_t> numbers;
        PackedColumn column(random() % 2 == 0 ? 0 : static_cast<std::uint32_t>(random()));
        const auto most = std::uint64_t{random()} >> random() % 32;
        const auto anyNumber = [&random, most] { return static_cast<std::uint32_t>(random() % (most + 1)); };
        if (random() % 2 == 0) {
            column.Reserve(random() % 200, static_cast<std::uint32_t>(random()));
        }
        for (int round = 0; round < 500; ++round) {
            if (numbers.empty() || random() % 2 == 0) {
                numbers.push_back(anyNumber());
                column.Append(numbers.back());
            } else {
                const std::size_t place = random() % numbers.size();
                numbers[place] = anyNumber();
                column.Set(place, numbers[place]);
            }
        }
        ASSERT_EQ(NumbersOf(column), numbers);
    }
}

} // namespace
