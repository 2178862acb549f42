#include "arborist/deduction/verdict_fold.h"

#include <gtest/gtest.h>

#include "tests/support/tree_builder.h"

namespace {

constexpr auto TRUE = EventStatus::TRUE;

// A chain of gates above one leaf, too deep for a recursion.
std::shared_ptr<Event> Chain(int depth, std::shared_ptr<Event> leaf)
{
    std::shared_ptr<Event> event = std::move(leaf);
    for (int level = 0; level < depth; ++level) {
        event = Inner("G", level % 2 == 0 ? std::shared_ptr<Gate>(Or({event})) : And({event}));
    }
    return event;
}

TEST(VerdictFoldTest, DepthIsNoLimit)
{
    const auto top = Chain(300000, Leaf("A"));
    const FlatTree tree(top);
    std::vector<bool> isOpen(tree.Count());
    EXPECT_FALSE(VerdictFold(tree, isOpen).HasCutSet());
    isOpen.back() = true;
    const VerdictFold fold(tree, isOpen);
    EXPECT_TRUE(fold.HasCutSet());
    EXPECT_TRUE(fold.IsTopInError());
    EXPECT_TRUE(fold.AddsCutSet());
}

TEST(VerdictFoldTest, AMillionEventsAreFolded)
{
    EventList gates;
    for (int gate = 0; gate < 1000; ++gate) {
        EventList leaves;
        for (int leaf = 0; leaf < 1000; ++leaf) {
            leaves.push_back(Leaf("L" + std::to_string(leaf)));
        }
        const std::shared_ptr<Gate> joined = gate % 2 == 0 ? std::shared_ptr<Gate>(Or(leaves)) : And(leaves);
        gates.push_back(Inner("G" + std::to_string(gate), joined));
    }
    const std::shared_ptr<Event> top = Inner("T", And(gates));
    const FlatTree tree(top);
    EXPECT_EQ(tree.Count(), 1001001U);
    std::vector<bool> isOpen(tree.Count(), true);
    isOpen[0] = false;
    EXPECT_TRUE(VerdictFold(tree, isOpen).HasCutSet());
    isOpen.back() = false;
    EXPECT_FALSE(VerdictFold(tree, isOpen).HasCutSet());
}

TEST(VerdictFoldTest, WhatIsTrueAlreadyAddsNothing)
{
    const std::shared_ptr<Event> top = Observable("T", TRUE, Or({Leaf("A", TRUE)}));
    const FlatTree tree(top);
    const VerdictFold fold(tree, {false, true});
    EXPECT_TRUE(fold.HasCutSet());
    EXPECT_FALSE(fold.AddsCutSet());
}

TEST(VerdictFoldTest, APathThatLeadsToAnotherEventHasItsStatus)
{
    // Both leaves have the path T/A, which means the first of them.
    const std::shared_ptr<Event> top = Observable("T", TRUE, Or({Leaf("A"), Leaf("A", TRUE)}));
    const FlatTree tree(top);
    EXPECT_FALSE(VerdictFold(tree, {}).HasCutSet());
    EXPECT_TRUE(VerdictFold(tree, {false, true, false}).AddsCutSet());
}

TEST(VerdictFoldTest, AnIntermediateEventWithoutAGateIsALeafWhileItsCheckIsOpen)
{
    const std::shared_ptr<Event> top = Inner("T", Or({Inner("G", nullptr), Leaf("A")}));
    const FlatTree tree(top);
    const VerdictFold closed(tree, {false, false, false});
    EXPECT_FALSE(closed.IsLeaf(1));
    EXPECT_FALSE(closed.HasCutSet());
    const VerdictFold open(tree, {false, true, false});
    EXPECT_TRUE(open.IsLeaf(1));
    EXPECT_TRUE(open.AddsCutSet());
    EXPECT_TRUE(open.IsOr(0));
    EXPECT_FALSE(open.IsOr(1)) << "it has no gate";
    const std::shared_ptr<Event> both = Inner("T", And({Inner("G", nullptr), Leaf("A")}));
    const FlatTree joined(both);
    const VerdictFold fold(joined, {false, false, true});
    EXPECT_FALSE(fold.IsTopInError()) << "without a gate nothing puts it in error";
    EXPECT_FALSE(fold.HasCutSet());
}

} // namespace
