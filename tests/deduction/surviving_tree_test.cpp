#include "arborist/deduction/surviving_tree.h"

#include <memory>

#include <gtest/gtest.h>

#include "arborist/model/event.h"

namespace {

TEST(SurvivingTreeTest, RewindingRemovesAllThatWasAddedSinceTheMark)
{
    const std::shared_ptr<Event> event;
    SurvivingTree tree;
    const SurvivingTree::Index top = tree.Add(event, SurvivingTree::NONE);
    tree.AddLeaf(top);
    const SurvivingTree::Mark mark = tree.GetMark();
    const SurvivingTree::Index leaf = tree.AddLeaf({tree.Add(event, top), tree.Add(event, top)});
    tree.AddGate(SurvivingTree::BranchKind::OR, leaf);
    tree.Rewind(mark);
    EXPECT_EQ(tree.GetMark().places, mark.places);
    EXPECT_EQ(tree.GetMark().branches, mark.branches);
    EXPECT_EQ(tree.GetMark().members, mark.members);
}

} // namespace
