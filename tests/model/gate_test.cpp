#include "arborist/model/gate.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/model/event.h"
#include "tests/support/case_name.h"
#include "tests/support/tree_builder.h"

namespace {

using testing::ElementsAre;

EventList LeavesWith(const std::vector<EventStatus>& statuses)
{
    EventList leaves;
    for (const EventStatus status : statuses) {
        leaves.push_back(Leaf("E", status));
    }
    return leaves;
}

struct GateCase {
    const char* name;
    std::vector<EventStatus> children;
    EventStatus expected;
};
void PrintTo(const GateCase& gateCase, std::ostream* out) { *out << gateCase.name; }

class OrGateCheck : public testing::TestWithParam<GateCase> {};

TEST_P(OrGateCheck, AnswersForItsChildren)
{
    EXPECT_EQ(Or(LeavesWith(GetParam().children))->Check(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, OrGateCheck, testing::Values(
    GateCase{"NoChildrenIsFalse", {}, EventStatus::FALSE},
    GateCase{"FalseIsFalse", {EventStatus::FALSE, EventStatus::FALSE}, EventStatus::FALSE},
    GateCase{"FalseBeforeUnknownIsUnknown", {EventStatus::FALSE, EventStatus::UNKNOWN}, EventStatus::UNKNOWN},
    GateCase{"UnknownBeforeFalseIsUnknown", {EventStatus::UNKNOWN, EventStatus::FALSE}, EventStatus::UNKNOWN},
    GateCase{"UnknownBeforeTrueIsTrue", {EventStatus::UNKNOWN, EventStatus::TRUE}, EventStatus::TRUE},
    GateCase{"TrueBeforeUnknownIsTrue", {EventStatus::TRUE, EventStatus::UNKNOWN}, EventStatus::TRUE},
    GateCase{"IntermediateTrueIsTrue", {EventStatus::FALSE, EventStatus::INTERMEDIATE_TRUE}, EventStatus::TRUE}),
    CaseName());

class AndGateCheck : public testing::TestWithParam<GateCase> {};

TEST_P(AndGateCheck, AnswersForItsChildren)
{
    EXPECT_EQ(And(LeavesWith(GetParam().children))->Check(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, AndGateCheck, testing::Values(
    GateCase{"NoChildrenIsTrue", {}, EventStatus::TRUE},
    GateCase{"TrueIsTrue", {EventStatus::TRUE, EventStatus::TRUE}, EventStatus::TRUE},
    GateCase{"IntermediateTrueIsTrue", {EventStatus::INTERMEDIATE_TRUE}, EventStatus::TRUE},
    GateCase{"TrueBeforeFalseIsFalse", {EventStatus::TRUE, EventStatus::FALSE}, EventStatus::FALSE},
    GateCase{"UnknownBeforeFalseIsUnknown", {EventStatus::UNKNOWN, EventStatus::FALSE}, EventStatus::UNKNOWN},
    GateCase{"FalseBeforeUnknownIsFalse", {EventStatus::FALSE, EventStatus::UNKNOWN}, EventStatus::FALSE}),
    CaseName());

TEST(GateTest, NullEventsAreIgnored)
{
    EXPECT_TRUE(Or({nullptr, nullptr})->GetEvents().empty());
    EXPECT_EQ(Or({nullptr, nullptr})->Check(), EventStatus::FALSE);
    EXPECT_EQ(And({nullptr})->Check(), EventStatus::TRUE);
}

TEST(GateTest, EventsStayInTheOrderOfAdding)
{
    const auto a = Leaf("A");
    const auto b = Leaf("B");
    EXPECT_THAT(And({b, a, b})->GetEvents(), ElementsAre(b, a, b));
}

class RecordingEvent : public Event {
public:
    RecordingEvent(std::string name, std::string* calls) : mName(std::move(name)), mCalls(calls) {}
    void Check() override { *mCalls += "check " + mName + " "; }
    void Reset() override { *mCalls += "reset " + mName + " "; }

private:
    std::string mName;
    std::string* mCalls;
};

std::shared_ptr<Event> Recording(const std::string& name, EventStatus status, std::string* calls)
{
    auto event = std::make_shared<RecordingEvent>(name, calls);
    event->SetResult(status);
    return event;
}

TEST(GateTest, EveryEventIsCheckedAlsoWhenTheFirstDecides)
{
    std::string calls;
    Or({Recording("A", EventStatus::TRUE, &calls), Recording("B", EventStatus::TRUE, &calls)})->Check();
    And({Recording("C", EventStatus::FALSE, &calls), Recording("D", EventStatus::FALSE, &calls)})->Check();
    EXPECT_EQ(calls, "check A check B check C check D ");
}

TEST(GateTest, ResetGoesToEveryEventInOrder)
{
    std::string calls;
    Or({Recording("A", EventStatus::TRUE, &calls), Recording("B", EventStatus::TRUE, &calls)})->Reset();
    EXPECT_EQ(calls, "reset A reset B ");
}

TEST(GateTest, KindsAreTold)
{
    EXPECT_EQ(Or({})->GetKind(), GateKind::OR);
    EXPECT_EQ(And({})->GetKind(), GateKind::AND);
}

TEST(GateTest, ATreeDeeperThanTheStackIsLongIsTakenDown)
{
    auto event = Inner("E", Or({Leaf("A")}));
    for (int level = 0; level < 200000; ++level) {
        event = Inner("E", Or({event}));
    }
    event.reset();
}

TEST(GateTest, EventsThatOthersHoldOutliveTheirGate)
{
    const auto leaf = Leaf("A", EventStatus::TRUE);
    const auto shared = Inner("G", Or({leaf}));
    const auto sharedGate = Or({leaf});
    Or({shared, Inner("H", sharedGate), Inner("I", Or({shared}))}).reset();
    EXPECT_THAT(shared->GetGate()->GetEvents(), ElementsAre(leaf));
    EXPECT_THAT(sharedGate->GetEvents(), ElementsAre(leaf));
}

TEST(GateTest, AGateThatIsUsedElsewhereOutlivesTheTreesItWasIn)
{
    const auto shared = Or({Leaf("A"), Leaf("B")});
    {
        const auto tree = Or({Inner("G", shared), Inner("H", Or({Leaf("C")}))});
        EXPECT_EQ(shared.use_count(), 2);
    }
    EXPECT_EQ(shared->GetEvents().size(), 2U);
    EXPECT_EQ(shared.use_count(), 1);
}

} // namespace
