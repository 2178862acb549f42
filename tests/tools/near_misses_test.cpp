#include "tools/arborist/explanation/analysis/near_misses.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/explained_tree.h"

namespace {

using command::ExplainedTree;
using testing::ElementsAre;
using testing::IsEmpty;

std::string Text(const ExplainedTree& tree, const command::NearMiss& nearMiss)
{
    std::set<std::string> missing;
    std::set<std::string> present;
    for (const std::size_t place : nearMiss.missing) {
        missing.insert(tree.events[place].id);
    }
    for (const std::size_t place : nearMiss.present) {
        present.insert(tree.events[place].id);
    }
    std::string text;
    for (const std::string& id : missing) {
        text += (text.empty() ? "" : " ") + id;
    }
    text += " |";
    for (const std::string& id : present) {
        text += " " + id;
    }
    return text;
}

std::vector<std::string> Texts(
    const ToldEvent& top, std::size_t mostMissing, std::size_t limit = 1000, std::size_t* leftOut = nullptr)
{
    const ExplainedTree tree = Told(top);
    const auto found = command::FindNearMisses(tree, mostMissing, limit);
    std::vector<std::string> texts;
    for (const auto& nearMiss : found.sets) {
        texts.push_back(Text(tree, nearMiss));
    }
    if (leftOut != nullptr) {
        *leftOut = found.leftOut;
    }
    return texts;
}

TEST(NearMissesTest, TellWhatIsMissingBesideWhatIsThere)
{
    EXPECT_THAT(Texts(GateEvent("T", false, {Event("A", true), Event("B", false)}), 1), ElementsAre("B | A"));
}

TEST(NearMissesTest, FewestMissingComeFirst)
{
    const auto top = GateEvent("T", true,
        {GateEvent("G", false, {Event("A", false), Event("B", false)}), Event("C", false), Event("D", true)}, true);
    EXPECT_THAT(Texts(top, 2), ElementsAre("C |", "A B |"));
    EXPECT_THAT(Texts(top, 1), ElementsAre("C |"));
}

TEST(NearMissesTest, ObservableEventThatIsNotInErrorIsMissingItself)
{
    const auto top = GateEvent("T", true, {GateEvent("G", true, {Event("A", true)}, false, true)});
    EXPECT_THAT(Texts(top, 1), ElementsAre("G | A"));
}

TEST(NearMissesTest, OneEventInTwoPlacesIsMissingOnce)
{
    const auto top = GateEvent("T", false, {GateEvent("G", true, {Event("A", false), Event("B", false)}),
        GateEvent("H", true, {Event("A", false), Event("C", false)})});
    EXPECT_THAT(Texts(top, 1), ElementsAre("A |"));
}

TEST(NearMissesTest, WhatIsLeftOutIsCounted)
{
    std::vector<ToldEvent> below;
    for (int number = 0; number < 50; ++number) {
        below.push_back(Event("E" + std::to_string(number), false));
    }
    std::size_t leftOut = 0;
    EXPECT_EQ(Texts(GateEvent("T", true, below), 1, 20, &leftOut).size(), 20U);
    EXPECT_EQ(leftOut, 30U);
}

TEST(NearMissesTest, TreeWithoutCutSetsHasNone)
{
    EXPECT_THAT(Texts(GateEvent("T", true, {}), 3), IsEmpty());
    EXPECT_THAT(command::FindNearMisses(ExplainedTree(), 3, 10).sets, IsEmpty());
}

TEST(NearMissesTest, ABranchWrittenOutManyTimesCostsNothing)
{
    const ToldEvent shared = GateEvent("S", true, {Event("A", true), Event("B", true)}, true);
    std::vector<ToldEvent> below(60, shared);
    below.push_back(Event("M", false));
    const ExplainedTree tree = Told(GateEvent("T", false, below));
    const auto found = command::FindNearMisses(tree, 1, 10);
    EXPECT_TRUE(found.isComplete);
    EXPECT_EQ(found.sets.size(), 2U);
}

TEST(NearMissesTest, ABoundedSearchSaysThatItEnded)
{
    std::vector<ToldEvent> below{Event("M", false)};
    for (int gate = 0; gate < 30; ++gate) {
        const std::string id = std::to_string(gate);
        below.push_back(GateEvent("G" + id, true, {Event("A" + id, true), Event("B" + id, true)}, true));
    }
    const auto found = command::FindNearMisses(Told(GateEvent("T", false, below)), 1, 5, 10000);
    EXPECT_FALSE(found.isComplete);
    EXPECT_EQ(found.sets.size(), 5U);
    EXPECT_GT(found.leftOut, 0U);
}

// ---- Against the plain expansion. ----

using Ids = std::set<std::string>;
struct PlainSet {
    Ids present;
    Ids missing;
};
using PlainSets = std::vector<PlainSet>;

PlainSet Union(const PlainSet& left, const PlainSet& right)
{
    PlainSet all = left;
    all.present.insert(right.present.begin(), right.present.end());
    all.missing.insert(right.missing.begin(), right.missing.end());
    return all;
}

PlainSets Expand(const ToldEvent& event)
{
    if (event.isLeaf) {
        return {IsError(event.status) ? PlainSet{{event.id}, {}} : PlainSet{{}, {event.id}}};
    }
    PlainSets all;
    for (const ToldEvent& below : event.below) {
        const PlainSets more = Expand(below);
        if (event.gate == command::ExplainedEvent::Folded::GateKind::OR || all.empty()) {
            all.insert(all.end(), more.begin(), more.end());
            continue;
        }
        PlainSets product;
        for (const PlainSet& left : all) {
            for (const PlainSet& right : more) {
                product.push_back(Union(left, right));
            }
        }
        all = product;
    }
    if (event.observable && !IsError(event.status)) {
        for (PlainSet& set : all) {
            set.missing.insert(event.id);
        }
    }
    return all;
}

class RandomTrees {
public:
    explicit RandomTrees(unsigned seed) : mRandom(seed)
    {
        for (char letter = 'A'; letter <= 'H'; ++letter) {
            mInError[std::string(1, letter)] = Below(2) == 0;
        }
    }

    ToldEvent Make(int depth)
    {
        if (depth == 0 || Below(4) == 0) {
            const std::string id(1, static_cast<char>('A' + Below(8)));
            return Event(id, mInError[id]);
        }
        std::vector<ToldEvent> below;
        for (unsigned count = Below(8) == 0 ? 0 : 1 + Below(3); count > 0; --count) {
            below.push_back(Make(depth - 1));
        }
        return GateEvent("G" + std::to_string(++mGates), Below(2) == 0, below, Below(3) == 0, Below(4) == 0);
    }

    unsigned Below(unsigned end) { return static_cast<unsigned>(mRandom() % end); }

private:
    std::mt19937 mRandom;
    std::map<std::string, bool> mInError;
    int mGates = 0;
};

std::string PlainText(const PlainSet& set)
{
    std::string text;
    for (const std::string& id : set.missing) {
        text += (text.empty() ? "" : " ") + id;
    }
    text += " |";
    for (const std::string& id : set.present) {
        text += " " + id;
    }
    return text;
}

using SetsByShortness = std::map<std::size_t, std::set<std::string>>;

// Whether every id of `part` stands in `whole`, on the same side of the bar.
bool HoldsAll(const std::string& whole, const std::string& part)
{
    const auto idsOf = [](const std::string& text) {
        std::set<std::string> ids;
        std::istringstream words(text);
        std::string side = "missing ";
        for (std::string word; words >> word;) {
            side = word == "|" ? "present " : side;
            ids.insert(side + word);
        }
        return ids;
    };
    const auto all = idsOf(whole);
    const auto some = idsOf(part);
    return std::includes(all.begin(), all.end(), some.begin(), some.end());
}

// A branch that one AND gate holds twice is chosen from once; the plain way also mixes its choices.
void ExpectSame(const SetsByShortness& quick, const SetsByShortness& plain)
{
    std::set<std::string> found;
    for (const auto& [missing, sets] : quick) {
        for (const std::string& set : sets) {
            EXPECT_TRUE(plain.at(missing).count(set) != 0) << set;
            found.insert(set);
        }
    }
    for (const auto& [missing, sets] : plain) {
        for (const std::string& set : sets) {
            EXPECT_TRUE(std::any_of(found.begin(), found.end(),
                [&set](const std::string& other) { return HoldsAll(set, other); })) << set;
        }
    }
}

TEST(NearMissesTest, AreThoseOfThePlainExpansion)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomTrees trees(seed);
    for (int round = 0; round < 400; ++round) {
        const ToldEvent top = GateEvent("T", trees.Below(2) == 0, {trees.Make(3), trees.Make(2), trees.Make(3)});
        PlainSets all = Expand(top);
        if (all.size() > 5000) {
            continue;
        }
        std::map<std::size_t, std::set<std::string>> plain;
        for (const PlainSet& set : all) {
            if (!set.missing.empty() && set.missing.size() <= 3) {
                plain[set.missing.size()].insert(PlainText(set));
            }
        }
        const ExplainedTree tree = Told(top);
        const auto found = command::FindNearMisses(tree, 3, 100000);
        ASSERT_TRUE(found.isComplete);
        std::map<std::size_t, std::set<std::string>> quick;
        std::size_t before = 0;
        for (const auto& nearMiss : found.sets) {
            EXPECT_GE(nearMiss.missing.size(), before);
            before = nearMiss.missing.size();
            EXPECT_TRUE(quick[before].insert(Text(tree, nearMiss)).second);
        }
        ExpectSame(quick, plain);
        ASSERT_FALSE(testing::Test::HasFailure()) << "round " << round;
    }
}

} // namespace
