#include "arborist/stores/event_log/group_numbers.h"

#include <map>
#include <random>

#include <gtest/gtest.h>

namespace {

TEST(GroupNumbersTest, NumbersIdsInOrderOfAppearance)
{
    GroupNumbers numbers;
    EXPECT_EQ(numbers.Find(7), GroupNumbers::NONE);
    EXPECT_EQ(numbers.NumberOf(7), 0U);
    EXPECT_EQ(numbers.NumberOf(-7), 1U);
    EXPECT_EQ(numbers.NumberOf(7), 0U);
    EXPECT_EQ(numbers.GetCount(), 2U);
    numbers.Renumber(7, 5);
    EXPECT_EQ(numbers.Find(7), 5U);
    EXPECT_EQ(numbers.Find(8), GroupNumbers::NONE);
}

TEST(GroupNumbersTest, AgreesWithAMap)
{
    const unsigned int seed = 99;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    GroupNumbers numbers;
    std::map<std::int32_t, std::uint32_t> map;
    for (int round = 0; round < 50000; ++round) {
        const auto id = static_cast<std::int32_t>(random() % 20000 * (random() % 2 == 0 ? 65536U : 1U));
        ASSERT_EQ(numbers.NumberOf(id), map.emplace(id, static_cast<std::uint32_t>(map.size())).first->second);
    }
    EXPECT_EQ(numbers.GetCount(), map.size());
}

} // namespace
