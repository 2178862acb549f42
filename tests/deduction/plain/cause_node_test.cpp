#include "arborist/deduction/plain/cause_node.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/tree_builder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::shared_ptr<CauseNode> NodeOf(const std::string& id)
{
    return std::make_shared<CauseNode>(Leaf(id));
}

TEST(CauseNodeTest, AFreshNodeHasItsIdAsPathAndNothingAround)
{
    const auto event = Leaf("A");
    const auto node = std::make_shared<CauseNode>(event);
    EXPECT_EQ(node->GetEvent(), event);
    EXPECT_EQ(node->GetPath(), "A");
    EXPECT_EQ(node->GetParent(), nullptr);
    EXPECT_THAT(node->GetChildren(), IsEmpty());
    EXPECT_FALSE(node->IsHasChildren());
}

TEST(CauseNodeTest, AChildGetsItsParentAndTheParentsPathBeforeItsOwn)
{
    const auto top = NodeOf("T");
    const auto middle = NodeOf("G");
    const auto leaf = NodeOf("A");
    top->AddChild(middle);
    middle->AddChild(leaf);
    EXPECT_EQ(leaf->GetPath(), "T/G/A");
    EXPECT_EQ(leaf->GetParent(), middle);
    EXPECT_EQ(middle->GetParent(), top);
    EXPECT_THAT(top->GetChildren(), ElementsAre(middle));
    EXPECT_TRUE(top->IsHasChildren());
}

TEST(CauseNodeTest, ANullChildIsIgnored)
{
    const auto top = NodeOf("T");
    top->AddChild(nullptr);
    EXPECT_FALSE(top->IsHasChildren());
}

TEST(CauseNodeTest, AllChildNodesAreTheLeavesInOrder)
{
    const auto top = NodeOf("T");
    const auto first = NodeOf("A");
    const auto middle = NodeOf("G");
    const auto second = NodeOf("B");
    const auto third = NodeOf("C");
    top->AddChild(first);
    top->AddChild(middle);
    top->AddChild(third);
    middle->AddChild(second);
    EXPECT_THAT(top->GetAllChildNodes(), ElementsAre(first, second, third));
    EXPECT_THAT(first->GetAllChildNodes(), ElementsAre(first));
}

} // namespace
