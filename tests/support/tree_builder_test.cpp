#include "tests/support/tree_builder.h"

#include <gtest/gtest.h>

namespace {

TEST(TreeBuilderTest, EventsStandInTheOrderGivenWithTheirIdsAndStatuses)
{
    const auto gate = Or({Leaf("A", EventStatus::TRUE), nullptr, Undeveloped("U"), Inner("G", And({}))});
    ASSERT_EQ(gate->GetEvents().size(), 3U);
    EXPECT_EQ(gate->GetEvents()[0]->GetId(), "A");
    EXPECT_EQ(gate->GetEvents()[0]->GetResult(), EventStatus::TRUE);
    EXPECT_EQ(gate->GetEvents()[1]->GetKind(), EventKind::UNDEVELOPED);
    EXPECT_EQ(gate->GetEvents()[2]->AsIntermediate()->GetGate()->GetKind(), GateKind::AND);
}

TEST(TreeBuilderTest, InnerEventsFollowTheirGatesAndObservableOnesDoNot)
{
    EXPECT_FALSE(Inner("G", nullptr)->IsObservable());
    const auto event = Observable("G", EventStatus::UNKNOWN, nullptr);
    EXPECT_TRUE(event->IsObservable());
    EXPECT_EQ(event->GetResult(), EventStatus::UNKNOWN);
    EXPECT_EQ(TreeOf(event)->GetIntermediateEvent(), event);
}

} // namespace
