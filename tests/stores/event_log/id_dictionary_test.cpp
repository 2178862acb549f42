#include "arborist/stores/event_log/id_dictionary.h"

#include <cstdint>
#include <set>

#include <gtest/gtest.h>

namespace {

TEST(IdDictionaryTest, IdsKeepTheirNumbersWhileItGrows)
{
    IdDictionary numbers;
    for (std::uint32_t number = 0; number < 20000; ++number) {
        numbers.emplace(static_cast<std::int32_t>(number * 4096U), number);
    }
    for (std::uint32_t number = 0; number < 20000; ++number) {
        ASSERT_EQ(numbers.at(static_cast<std::int32_t>(number * 4096U)), number);
    }
    EXPECT_EQ(numbers.count(1), 0U);
    EXPECT_EQ(numbers.count(INT32_MIN), 0U);
}

// Few keys spread ids at equal distances badly, and one is drawn for each process: only a hash without high bits has one
// value for all.
TEST(IdDictionaryTest, IdsThatDifferInHighBitsDoNotAllMeet)
{
    std::set<std::size_t> hashes;
    for (std::uint32_t number = 0; number < 1000; ++number) {
        hashes.insert(IdHash()(static_cast<std::int32_t>(number << 20)) % 65536);
    }
    EXPECT_GT(hashes.size(), 16U);
}

} // namespace
