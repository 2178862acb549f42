#include "arborist/model/condition.h"

#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

std::shared_ptr<OrLogic::LogicItem> ItemThat(bool holds)
{
    auto item = std::make_shared<OrLogic::LogicItem>();
    item->SetResult(holds);
    return item;
}

TEST(OrLogicTest, WithoutItemsAllHold)
{
    EXPECT_TRUE(OrLogic().CheckAndListResult());
}

TEST(OrLogicTest, OneItemThatDoesNotHoldDecides)
{
    OrLogic logic;
    logic.SetLogicItemList({ItemThat(true), ItemThat(false)});
    EXPECT_FALSE(logic.CheckAndListResult());
}

TEST(OrLogicTest, NullItemsDoNotCount)
{
    OrLogic logic;
    logic.SetLogicItemList({nullptr, ItemThat(true)});
    EXPECT_TRUE(logic.CheckAndListResult());
}

TEST(OrLogicTest, SetReplacesTheItemsAndInsertAppends)
{
    const auto first = ItemThat(true);
    const auto second = ItemThat(true);
    OrLogic logic;
    logic.SetLogicItemList({ItemThat(false)});
    logic.SetLogicItemList({first});
    logic.InsertLogicItemList({});
    logic.InsertLogicItemList({second});
    EXPECT_THAT(logic.GetLogicItemList(), ElementsAre(first, second));
}

TEST(LogicItemTest, DoesNotHoldByDefault)
{
    EXPECT_FALSE(OrLogic::LogicItem().IsResult());
}

} // namespace
