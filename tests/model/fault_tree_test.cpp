#include "arborist/model/fault_tree.h"

#include <gtest/gtest.h>

#include "arborist/model/event.h"
#include "tests/support/tree_builder.h"

namespace {

TEST(FaultTreeTest, AFreshTreeIsEmpty)
{
    const FaultTree tree;
    EXPECT_EQ(tree.GetIntermediateEvent(), nullptr);
    EXPECT_EQ(tree.GetId() + tree.GetVersion() + tree.GetType(), "");
    EXPECT_FALSE(tree.IsResult());
}

TEST(FaultTreeTest, ConstructorTakesIdVersionAndType)
{
    const FaultTree tree("id", "version", "type");
    EXPECT_EQ(tree.GetId(), "id");
    EXPECT_EQ(tree.GetVersion(), "version");
    EXPECT_EQ(tree.GetType(), "type");
}

TEST(FaultTreeTest, SettersStore)
{
    const auto top = Inner("T", nullptr);
    FaultTree tree;
    tree.SetId("id");
    tree.SetVersion("version");
    tree.SetType("type");
    tree.SetIntermediateEvent(top);
    tree.SetResult(true);
    EXPECT_EQ(tree.GetId(), "id");
    EXPECT_EQ(tree.GetVersion(), "version");
    EXPECT_EQ(tree.GetType(), "type");
    EXPECT_EQ(tree.GetIntermediateEvent(), top);
    EXPECT_TRUE(tree.IsResult());
}

TEST(FaultTreeTest, CheckFoldsToTheTopAndResetTakesItBack)
{
    const auto tree = TreeOf(Inner("T", Or({Inner("G", And({Leaf("A", EventStatus::TRUE)}))})));
    tree->Check();
    EXPECT_EQ(tree->GetIntermediateEvent()->GetResult(), EventStatus::TRUE);
    tree->Reset();
    tree->Check();
    EXPECT_EQ(tree->GetIntermediateEvent()->GetResult(), EventStatus::FALSE);
}

TEST(FaultTreeTest, WithoutATopEventCheckAndResetDoNothing)
{
    FaultTree tree;
    tree.Check();
    tree.Reset();
}

} // namespace
