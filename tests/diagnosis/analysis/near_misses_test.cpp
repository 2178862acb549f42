#include "diagnosis/analysis/near_misses.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/evidence/recorded_tree.h"

namespace {

using diagnosis::RecordedTree;
using testing::ElementsAre;
using testing::IsEmpty;

std::string Text(const RecordedTree& tree, const diagnosis::NearMiss& nearMiss)
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
    const RecordedTree tree = Told(top);
    const auto found = diagnosis::FindNearMisses(tree, mostMissing, limit);
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
    EXPECT_THAT(diagnosis::FindNearMisses(RecordedTree(), 3, 10).sets, IsEmpty());
}

TEST(NearMissesTest, ABranchWrittenOutManyTimesCostsNothing)
{
    const ToldEvent shared = GateEvent("S", true, {Event("A", true), Event("B", true)}, true);
    std::vector<ToldEvent> below(60, shared);
    below.push_back(Event("M", false));
    const RecordedTree tree = Told(GateEvent("T", false, below));
    const auto found = diagnosis::FindNearMisses(tree, 1, 10);
    EXPECT_TRUE(found.isComplete);
    EXPECT_EQ(found.sets.size(), 1U);
}

TEST(NearMissesTest, ABranchThatAGateHoldsTwiceIsChosenFromTwice)
{
    const ToldEvent shared = GateEvent("S", true, {Event("A", false), Event("B", false), Event("C", false)});
    EXPECT_THAT(Texts(GateEvent("T", false, {shared, shared}), 3),
        ElementsAre("A |", "B |", "C |", "A B |", "A C |", "B C |"));
    EXPECT_THAT(Texts(GateEvent("T", false, {shared, GateEvent("G", false, {shared, shared})}), 3),
        testing::Contains("A B C |"));
}

TEST(NearMissesTest, OfManyCutSetsThatLackTheSameOneIsShown)
{
    const auto either = GateEvent("S", true, {Event("A", true), Event("B", true)}, true);
    EXPECT_THAT(Texts(GateEvent("T", false, {either, Event("M", false)}), 1), ElementsAre("M | A"));
}

TEST(NearMissesTest, ABoundedSearchSaysThatItEnded)
{
    std::vector<ToldEvent> below;
    for (int gate = 0; gate < 40; ++gate) {
        const std::string id = std::to_string(gate);
        below.push_back(GateEvent("G" + id, true, {Event("A" + id, false), Event("B" + id, false)}));
    }
    const ToldEvent wide = GateEvent("T", true, {GateEvent("G", false, below), Event("M", false)});
    const auto found = diagnosis::FindNearMisses(Told(wide), 50, 5, 10000);
    EXPECT_FALSE(found.isComplete);
    ASSERT_THAT(found.sets, testing::SizeIs(testing::Ge(2)));
    EXPECT_THAT(found.sets[0].missing, testing::SizeIs(1));
    EXPECT_THAT(found.sets[1].missing, testing::SizeIs(40));
    EXPECT_TRUE(diagnosis::FindNearMisses(Told(wide), 39, 5, 10000).isComplete);
}

// If the steps run out, the sets that were found are still right.
TEST(NearMissesTest, FewStepsFindLessAndNothingElse)
{
    const ToldEvent shared = GateEvent("S", true, {Event("A", false), Event("B", false), Event("C", true)});
    const ToldEvent top = GateEvent("T", false, {shared, shared, GateEvent("G", true, {Event("D", false), shared})});
    const RecordedTree tree = Told(top);
    std::set<std::string> all;
    for (const auto& nearMiss : diagnosis::FindNearMisses(tree, 3, 1000).sets) {
        all.insert(Text(tree, nearMiss).substr(0, Text(tree, nearMiss).find('|')));
    }
    for (std::size_t steps = 0; steps < 200; ++steps) {
        const auto found = diagnosis::FindNearMisses(tree, 3, 1000, steps);
        for (const auto& nearMiss : found.sets) {
            EXPECT_EQ(all.count(Text(tree, nearMiss).substr(0, Text(tree, nearMiss).find('|'))), 1U) << steps;
        }
        EXPECT_TRUE(!found.isComplete || found.sets.size() == all.size()) << steps;
    }
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
        return {Evidence::IsInError(event.status) ? PlainSet{{event.id}, {}} : PlainSet{{}, {event.id}}};
    }
    PlainSets all;
    for (const ToldEvent& below : event.below) {
        const PlainSets more = Expand(below);
        if (event.gate == Evidence::GateType::OR || all.empty()) {
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
    if (event.observable && !Evidence::IsInError(event.status)) {
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
        std::vector<ToldEvent>& made = mMade[depth];
        if (!made.empty() && Below(3) == 0) { // a repeated branch
            return made[Below(static_cast<unsigned>(made.size()))];
        }
        std::vector<ToldEvent> below;
        for (unsigned count = Below(8) == 0 ? 0 : 1 + Below(3); count > 0; --count) {
            below.push_back(Make(depth - 1));
        }
        made.push_back(
            GateEvent("G" + std::to_string(++mGates), Below(2) == 0, below, Below(3) == 0, Below(4) == 0));
        return made.back();
    }

    void Forget() { mMade.clear(); }

    unsigned Below(unsigned end) { return static_cast<unsigned>(mRandom() % end); }

private:
    std::mt19937 mRandom;
    std::map<std::string, bool> mInError;
    std::map<int, std::vector<ToldEvent>> mMade;
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

TEST(NearMissesTest, AreThoseOfThePlainExpansion)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomTrees trees(seed);
    for (int round = 0; round < 400; ++round) {
        trees.Forget();
        const ToldEvent top = GateEvent("T", trees.Below(2) == 0, {trees.Make(3), trees.Make(2), trees.Make(3)});
        PlainSets all = Expand(top);
        if (all.size() > 5000) {
            continue;
        }
        std::set<Ids> lacking;
        std::set<std::string> plain;
        for (const PlainSet& set : all) {
            if (!set.missing.empty() && set.missing.size() <= 3) {
                lacking.insert(set.missing);
                plain.insert(PlainText(set));
            }
        }
        const RecordedTree tree = Told(top);
        const auto found = diagnosis::FindNearMisses(tree, 3, 100000);
        ASSERT_TRUE(found.isComplete);
        std::set<Ids> quick;
        std::size_t before = 0;
        for (const auto& nearMiss : found.sets) {
            EXPECT_GE(nearMiss.missing.size(), before);
            before = nearMiss.missing.size();
            Ids ids;
            for (const std::size_t place : nearMiss.missing) {
                ids.insert(tree.events[place].id);
            }
            EXPECT_TRUE(quick.insert(ids).second);
            EXPECT_EQ(plain.count(Text(tree, nearMiss)), 1U) << Text(tree, nearMiss);
        }
        EXPECT_EQ(quick, lacking);
        ASSERT_FALSE(testing::Test::HasFailure()) << "round " << round;
    }
}

} // namespace
