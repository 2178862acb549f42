#include "arborist/stores/event_log/key_sets.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(KeySetsTest, EqualSetsHaveOneNumber)
{
    KeySets sets;
    EXPECT_THAT(sets.Get(0), IsEmpty());
    EXPECT_EQ(sets.NumberOf({}), 0U);
    const std::uint32_t number = sets.NumberOf({"a", "b"});
    EXPECT_EQ(sets.NumberOf({"a", "b"}), number);
    EXPECT_NE(sets.NumberOf({"b", "a"}), number);
}

TEST(KeySetsTest, UnionAddsWhatIsMissing)
{
    KeySets sets;
    const std::uint32_t ab = sets.NumberOf({"a", "b"});
    const std::uint32_t bc = sets.NumberOf({"b", "c"});
    EXPECT_THAT(sets.Get(sets.Union(ab, bc)), ElementsAre("a", "b", "c"));
    EXPECT_EQ(sets.Union(ab, sets.NumberOf({"b"})), ab);
    EXPECT_EQ(sets.Union(0, ab), ab);
    EXPECT_EQ(sets.Union(ab, 0), ab);
}

TEST(KeySetsTest, SetsThatGrowTooLargeGiveWayToTheNewOne)
{
    KeySets sets;
    std::uint32_t number = 0;
    for (std::size_t key = 0; key < KeySets::MOST_KEYS; ++key) {
        number = sets.Union(number, sets.NumberOf({std::to_string(key)}));
    }
    EXPECT_THAT(sets.Get(number), SizeIs(KeySets::MOST_KEYS));
    EXPECT_THAT(sets.Get(sets.Union(number, sets.NumberOf({"new"}))), ElementsAre("new"));
}

} // namespace
