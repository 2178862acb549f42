#include "diagnosis/analysis/minimal_sets.h"

#include <algorithm>
#include <random>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/evidence/recorded_tree.h"

namespace {

using diagnosis::DistinctCause;
using testing::ElementsAre;
using testing::IsEmpty;

std::string Text(const DistinctCause& cause)
{
    std::string text;
    for (const std::string& id : cause.ids) {
        text += (text.empty() ? "" : " ") + id;
    }
    return text + " x" + std::to_string(cause.times);
}

std::vector<std::string> Texts(const std::vector<DistinctCause>& causes)
{
    std::vector<std::string> texts;
    for (const DistinctCause& cause : causes) {
        texts.push_back(Text(cause));
    }
    return texts;
}

diagnosis::RecordedTree TreeOf(const std::vector<std::vector<std::string>>& causes)
{
    std::vector<ToldEvent> events;
    for (char letter = 'A'; letter <= 'J'; ++letter) {
        events.push_back(Event(std::string(1, letter), true));
    }
    diagnosis::RecordedTree tree = Told(GateEvent("T", true, events, true));
    for (const auto& cause : causes) {
        AddCause(tree, cause);
    }
    return tree;
}

TEST(MinimalSetsTest, EntriesWithTheSameEventsAreOne)
{
    const auto minimal = diagnosis::FindMinimalSets(TreeOf({{"A", "B"}, {"C"}, {"B", "A"}, {"A", "B", "A"}}));
    EXPECT_EQ(minimal.listed, 4U);
    EXPECT_EQ(minimal.distinct, 2U);
    EXPECT_THAT(Texts(minimal.sets), ElementsAre("A B x3", "C x1"));
}

TEST(MinimalSetsTest, SetsThatHoldAnotherOneAreLeftOut)
{
    const auto minimal = diagnosis::FindMinimalSets(TreeOf({{"A", "B", "C"}, {"C", "B"}, {"D"}, {"D", "E"}}));
    EXPECT_THAT(Texts(minimal.sets), ElementsAre("C B x1", "D x1"));
}

TEST(MinimalSetsTest, SharesAreRanked)
{
    const auto minimal = diagnosis::FindMinimalSets(TreeOf({{"A", "B"}, {"A", "C"}, {"D"}, {"A", "E"}}));
    ASSERT_EQ(minimal.shares.size(), 5U);
    EXPECT_EQ(minimal.shares[0].id, "A");
    EXPECT_EQ(minimal.shares[0].sets, 3U);
    EXPECT_DOUBLE_EQ(minimal.shares[0].share, 0.75);
    EXPECT_EQ(minimal.shares[1].id, "B");
    EXPECT_DOUBLE_EQ(minimal.shares[1].share, 0.25);
}

TEST(MinimalSetsTest, RepairsMeetEverySet)
{
    const auto minimal = diagnosis::FindMinimalSets(TreeOf({{"A", "B"}, {"A", "C"}, {"D", "C"}}));
    EXPECT_THAT(minimal.repairs.ids, testing::UnorderedElementsAre("A", "C"));
    EXPECT_TRUE(minimal.repairs.isSmallest);
}

TEST(MinimalSetsTest, TheGreedyChoiceIsNotAlwaysTheSmallest)
{
    // C is in four sets, more than any other event; but a set with C needs three events.
    const auto minimal = diagnosis::FindMinimalSets(
        TreeOf({{"A", "C"}, {"A", "C", "E"}, {"A", "D"}, {"B", "C"}, {"B", "C", "F"}, {"B", "G"}}));
    EXPECT_THAT(minimal.repairs.ids, testing::UnorderedElementsAre("A", "B"));
}

TEST(MinimalSetsTest, ABoundedSearchSaysSo)
{
    const auto causes = diagnosis::DistinctCausesOf(
        TreeOf({{"A", "B"}, {"C", "D"}, {"E", "F"}, {"A", "C"}, {"B", "D"}, {"E", "A"}, {"F", "C"}}));
    const auto repairs = diagnosis::FindRepairs(causes, 5);
    EXPECT_FALSE(repairs.isSmallest);
    for (const DistinctCause& cause : causes) {
        EXPECT_TRUE(std::any_of(cause.ids.begin(), cause.ids.end(), [&](const std::string& id) {
            return std::find(repairs.ids.begin(), repairs.ids.end(), id) != repairs.ids.end();
        }));
    }
}

TEST(MinimalSetsTest, AFaultFreeTreeHasNothing)
{
    const auto minimal = diagnosis::FindMinimalSets(TreeOf({}));
    EXPECT_THAT(minimal.sets, IsEmpty());
    EXPECT_THAT(minimal.shares, IsEmpty());
    EXPECT_THAT(minimal.repairs.ids, IsEmpty());
}

bool Meets(unsigned repaired, const std::vector<std::string>& ids)
{
    return std::any_of(
        ids.begin(), ids.end(), [&](const std::string& id) { return (repaired >> (id[0] - 'A') & 1U) != 0; });
}

TEST(MinimalSetsTest, RandomListsAgreeWithThePlainWay)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round) {
        std::vector<std::vector<std::string>> causes(1 + random() % 12);
        for (auto& cause : causes) {
            for (auto count = 1 + random() % 4; count > 0; --count) {
                cause.emplace_back(1, static_cast<char>('A' + random() % 8));
            }
        }
        std::set<std::set<std::string>> plain;
        for (const auto& cause : causes) {
            plain.insert({cause.begin(), cause.end()});
        }
        std::set<std::set<std::string>> minimalPlain;
        for (const auto& set : plain) {
            if (std::none_of(plain.begin(), plain.end(), [&set](const auto& other) {
                    return other != set && std::includes(set.begin(), set.end(), other.begin(), other.end());
                })) {
                minimalPlain.insert(set);
            }
        }
        const auto minimal = diagnosis::FindMinimalSets(TreeOf(causes));
        std::set<std::set<std::string>> quick;
        for (const DistinctCause& set : minimal.sets) {
            quick.insert({set.ids.begin(), set.ids.end()});
        }
        ASSERT_EQ(quick, minimalPlain);
        EXPECT_EQ(minimal.listed, causes.size());
        EXPECT_EQ(minimal.distinct, plain.size());
        for (const DistinctCause& set : minimal.sets) {
            const std::set<std::string> ids(set.ids.begin(), set.ids.end());
            EXPECT_EQ(set.times, static_cast<std::uint64_t>(std::count_if(causes.begin(), causes.end(),
                [&ids](const auto& cause) { return std::set<std::string>(cause.begin(), cause.end()) == ids; })));
        }
        std::size_t before = minimalPlain.size();
        for (const auto& share : minimal.shares) {
            const auto standsIn = [&share](const auto& set) { return set.count(share.id) != 0; };
            EXPECT_EQ(share.sets, static_cast<std::size_t>(
                std::count_if(minimalPlain.begin(), minimalPlain.end(), standsIn)));
            EXPECT_DOUBLE_EQ(share.share, static_cast<double>(share.sets) / static_cast<double>(minimalPlain.size()));
            EXPECT_LE(share.sets, before);
            before = share.sets;
        }

        std::size_t fewest = 8;
        for (unsigned repaired = 0; repaired < 256; ++repaired) {
            if (std::all_of(causes.begin(), causes.end(), [&](const auto& ids) { return Meets(repaired, ids); })) {
                fewest = std::min<std::size_t>(fewest, static_cast<std::size_t>(__builtin_popcount(repaired)));
            }
        }
        unsigned chosen = 0;
        for (const std::string& id : minimal.repairs.ids) {
            chosen |= 1U << (id[0] - 'A');
        }
        ASSERT_TRUE(minimal.repairs.isSmallest);
        ASSERT_EQ(minimal.repairs.ids.size(), fewest);
        ASSERT_TRUE(std::all_of(causes.begin(), causes.end(), [&](const auto& ids) { return Meets(chosen, ids); }));

        const auto hasty = diagnosis::FindRepairs(minimal.sets, random() % 100);
        EXPECT_TRUE(!hasty.isSmallest || hasty.ids.size() == fewest);
        ASSERT_TRUE(std::all_of(causes.begin(), causes.end(), [&](const auto& ids) {
            return std::any_of(hasty.ids.begin(), hasty.ids.end(),
                [&ids](const std::string& id) { return std::find(ids.begin(), ids.end(), id) != ids.end(); });
        }));
    }
}

} // namespace
