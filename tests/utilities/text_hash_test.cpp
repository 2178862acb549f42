#include "arborist/utilities/text_hash.h"

#include <set>
#include <string>
#include <unordered_map>

#include <gtest/gtest.h>

namespace {

TEST(TextHashTest, GoesOnFromWhatCameBefore)
{
    const std::string whole = "top/gate/leaf/with \xFF bytes \x01 of all kinds, and longer than a block";
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        const std::uint64_t before = TextHash::Continue(TextHash::START, whole.substr(0, cut));
        EXPECT_EQ(TextHash::Continue(before, whole.substr(cut)), TextHash()(whole)) << cut;
    }
}

TEST(TextHashTest, EveryLetterCountsWhereverItStands)
{
    std::set<std::size_t> hashes;
    std::string zeros;
    for (int length = 0; length < 100; ++length) {
        hashes.insert(TextHash()(zeros)); // zero bytes alone differ in their number
        zeros += '\0';
        for (const char letter : {'a', '\xFF'}) {
            std::string text(100, 'b');
            text[static_cast<std::size_t>(length)] = letter;
            hashes.insert(TextHash()(text));
        }
    }
    EXPECT_EQ(hashes.size(), 300U);
}

TEST(TextHashTest, StaysBelowItsPrimesWhateverTheLength)
{
    const std::uint64_t hash = TextHash::Continue(TextHash::START, std::string(100000, '\xFF'));
    EXPECT_LT(hash >> 32, (1ULL << 31) - 1);
    EXPECT_LT(hash & 0xFFFFFFFFU, (1ULL << 31) - 1);
}

TEST(TextHashTest, ServesMapsOfTexts)
{
    std::unordered_map<std::string, int, TextHash> map{{"a", 1}, {"", 2}};
    EXPECT_EQ(map.at("a"), 1);
    EXPECT_EQ(map.at(""), 2);
    EXPECT_EQ(map.count("b"), 0U);
}

} // namespace
