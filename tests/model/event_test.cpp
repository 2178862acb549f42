#include "arborist/model/event.h"

#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/log.h"
#include "arborist/model/gate.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/tree_builder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct StatusCase {
    const char* name;
    EventStatus status;
    const char* word;
    bool isError;
};
void PrintTo(const StatusCase& statusCase, std::ostream* out) { *out << statusCase.name; }
class EventStatusWord : public testing::TestWithParam<StatusCase> {};

TEST_P(EventStatusWord, PrintsAndTellsAnError)
{
    EXPECT_STREQ(GetElemTypeName(GetParam().status), GetParam().word);
    EXPECT_EQ(IsError(GetParam().status), GetParam().isError);
}

INSTANTIATE_TEST_SUITE_P(Table, EventStatusWord, testing::Values(
    StatusCase{"True", EventStatus::TRUE, "TRUE", true},
    StatusCase{"False", EventStatus::FALSE, "FALSE", false},
    StatusCase{"IntermediateTrue", EventStatus::INTERMEDIATE_TRUE, "INTERMEDIATE_TRUE", true},
    StatusCase{"Unknown", EventStatus::UNKNOWN, "UNKNOWN", false},
    StatusCase{"OutsideTheEnumeration", static_cast<EventStatus>(7), "", false}),
    CaseName());

TEST(EventStatusTest, ValuesAreThoseThatRuleCodeStores)
{
    EXPECT_EQ(static_cast<int>(EventStatus::TRUE), 0);
    EXPECT_EQ(static_cast<int>(EventStatus::FALSE), 1);
    EXPECT_EQ(static_cast<int>(EventStatus::INTERMEDIATE_TRUE), 2);
    EXPECT_EQ(static_cast<int>(EventStatus::UNKNOWN), 3);
}

TEST(EventTest, FreshEventsHaveTheStatusOfTheirKind)
{
    EXPECT_EQ(Event().GetResult(), EventStatus::UNKNOWN);
    EXPECT_EQ(BasicEvent().GetResult(), EventStatus::FALSE);
    EXPECT_EQ(UndevelopedEvent().GetResult(), EventStatus::UNKNOWN);
    EXPECT_EQ(IntermediateEvent().GetResult(), EventStatus::FALSE);
    EXPECT_TRUE(Event().IsObservable());
    EXPECT_TRUE(IntermediateEvent().IsObservable());
    EXPECT_EQ(IntermediateEvent().GetGate(), nullptr);
}

TEST(EventTest, ResetGivesBackTheStatusOfTheKind)
{
    Event plain;
    BasicEvent basic;
    UndevelopedEvent undeveloped;
    for (Event* event : {&plain, static_cast<Event*>(&basic), static_cast<Event*>(&undeveloped)}) {
        event->SetResult(EventStatus::TRUE);
        event->Reset();
    }
    EXPECT_EQ(plain.GetResult(), EventStatus::TRUE);
    EXPECT_EQ(basic.GetResult(), EventStatus::FALSE);
    EXPECT_EQ(undeveloped.GetResult(), EventStatus::UNKNOWN);
}

TEST(EventTest, CheckLeavesEventsWithoutGatesAlone)
{
    Event plain;
    BasicEvent basic;
    UndevelopedEvent undeveloped;
    IntermediateEvent intermediate;
    intermediate.SetObservable(false);
    for (Event* event : {&plain, static_cast<Event*>(&basic), static_cast<Event*>(&undeveloped),
                         static_cast<Event*>(&intermediate)}) {
        event->SetResult(EventStatus::INTERMEDIATE_TRUE);
        event->Check();
        EXPECT_EQ(event->GetResult(), EventStatus::INTERMEDIATE_TRUE);
    }
}

TEST(EventTest, SetIdStripsSpacesAtItsEndsAndNoOtherBlanks)
{
    BasicEvent event;
    event.SetId("  a b ");
    EXPECT_EQ(event.GetId(), "a b");
    event.SetId(" \ta\t ");
    EXPECT_EQ(event.GetId(), "\ta\t");
    event.SetId("   ");
    EXPECT_EQ(event.GetId(), "");
}

TEST(EventTest, EventsHaveTheSameIdWhereItsLettersAreTheSame)
{
    EXPECT_TRUE(Leaf("a b")->HasSameIdAs(*Leaf(" a b")));
    EXPECT_FALSE(Leaf("ab")->HasSameIdAs(*Leaf("ba")));
    EXPECT_TRUE(Event().HasSameIdAs(*Leaf(" "))); // an id that was never set is the empty one
    const BasicEvent copy = *Leaf("ab");
    EXPECT_TRUE(copy.HasSameIdAs(*Leaf("ab")));
}

TEST(EventTest, IdsWithOneSketchStayDifferentIds)
{
    ASSERT_EQ(Leaf(IDS_WITH_ONE_SKETCH[0])->GetIdSketch(), Leaf(IDS_WITH_ONE_SKETCH[1])->GetIdSketch());
    EXPECT_FALSE(Leaf(IDS_WITH_ONE_SKETCH[0])->HasSameIdAs(*Leaf(IDS_WITH_ONE_SKETCH[1])));
}

TEST(EventTest, ASeparatorInAnIdIsKnownUntilTheNextId)
{
    BasicEvent event;
    EXPECT_FALSE(event.HasSeparatorInId());
    for (const char* id : {"a/", "&a"}) {
        event.SetId(id);
        EXPECT_TRUE(event.HasSeparatorInId()) << id;
    }
    event.SetId("a");
    EXPECT_FALSE(event.HasSeparatorInId());
    EXPECT_TRUE(event.HasSameIdAs(*Leaf("a")));
}

TEST(EventTest, FillEventInfoStoresEveryTextAndReturnsTheEvent)
{
    const auto event = std::make_shared<BasicEvent>();
    EXPECT_EQ(event->FillEventInfo("value", " id ", " name ", "{}", "2"), event);
    EXPECT_EQ(event->GetValue(), "value");
    EXPECT_EQ(event->GetId(), "id");
    EXPECT_EQ(event->GetName(), " name ");
    EXPECT_EQ(event->GetUserDefined(), "{}");
    EXPECT_EQ(event->GetDetectMode(), "2");
}

TEST(EventTest, FillEventInfoOutsideSharedOwnershipThrows)
{
    BasicEvent event;
    EXPECT_THROW(event.FillEventInfo("", "id", "", "", ""), std::bad_weak_ptr);
    EXPECT_EQ(event.GetId(), "id");
}

TEST(EventTest, ToStringOfAFreshBasicEvent)
{
    EXPECT_EQ(BasicEvent().ToString(), "mID=,mName=,mValue=,mObservable=true,result=FALSE");
}

TEST(EventTest, ToStringTellsIdNameValueObservabilityAndStatus)
{
    UndevelopedEvent event;
    event.SetId("E1");
    event.SetName("Battery");
    event.SetValue("7");
    event.SetObservable(false);
    EXPECT_EQ(event.ToString(), "mID=E1,mName=Battery,mValue=7,mObservable=false,result=UNKNOWN");
}

class IntermediateEventTest : public testing::Test {
protected:
    LogCapture mLog;
};

TEST_F(IntermediateEventTest, ObservableFalseAboveATrueGateStaysFalseAndLogs)
{
    const auto event = Observable("G", EventStatus::FALSE, Or({Leaf("A", EventStatus::TRUE)}));
    event->Check();
    EXPECT_EQ(event->GetResult(), EventStatus::FALSE);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_INFO),
                ElementsAre("FUNc:IntermediateEvent::LogDetails: id: G is false, its children result is true."));
}

TEST_F(IntermediateEventTest, ObservableTrueAboveAFalseGateStaysTrueAndLogs)
{
    const auto event = Observable("G", EventStatus::TRUE, Or({Leaf("A")}));
    event->Check();
    EXPECT_EQ(event->GetResult(), EventStatus::TRUE);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_INFO),
                ElementsAre("FUNc:IntermediateEvent::LogDetails: id: G is checked as true individually."));
}

struct SilentCase {
    const char* name;
    EventStatus own;
    EventStatus below;
};
void PrintTo(const SilentCase& silentCase, std::ostream* out) { *out << silentCase.name; }
class ObservableEventInSilence : public testing::TestWithParam<SilentCase> {};

TEST_P(ObservableEventInSilence, KeepsItsStatus)
{
    LogCapture log;
    const auto event = Observable("G", GetParam().own, Or({Leaf("A", GetParam().below)}));
    event->Check();
    EXPECT_EQ(event->GetResult(), GetParam().own);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Table, ObservableEventInSilence, testing::Values(
    SilentCase{"TrueAndTrue", EventStatus::TRUE, EventStatus::TRUE},
    SilentCase{"FalseAndFalse", EventStatus::FALSE, EventStatus::FALSE},
    SilentCase{"TrueAndUnknown", EventStatus::TRUE, EventStatus::UNKNOWN},
    SilentCase{"FalseAndUnknown", EventStatus::FALSE, EventStatus::UNKNOWN},
    SilentCase{"UnknownAndTrue", EventStatus::UNKNOWN, EventStatus::TRUE},
    SilentCase{"IntermediateTrueAndFalse", EventStatus::INTERMEDIATE_TRUE, EventStatus::FALSE}),
    CaseName());

TEST_F(IntermediateEventTest, NonObservableFollowsItsGateAlsoToUnknown)
{
    const auto event = Inner("G", Or({Undeveloped("U")}));
    event->SetResult(EventStatus::TRUE);
    event->Check();
    EXPECT_EQ(event->GetResult(), EventStatus::UNKNOWN);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(IntermediateEventTest, ResetReachesEverythingBelowAndKeepsObservability)
{
    const auto leaf = Leaf("A", EventStatus::TRUE);
    const auto undeveloped = Undeveloped("U");
    undeveloped->SetResult(EventStatus::TRUE);
    const auto inner = Inner("H", Or({leaf, undeveloped}));
    const auto event = Observable("G", EventStatus::TRUE, And({inner}));
    inner->SetResult(EventStatus::TRUE);
    event->Reset();
    EXPECT_EQ(event->GetResult(), EventStatus::FALSE);
    EXPECT_EQ(inner->GetResult(), EventStatus::FALSE);
    EXPECT_EQ(leaf->GetResult(), EventStatus::FALSE);
    EXPECT_EQ(undeveloped->GetResult(), EventStatus::UNKNOWN);
    EXPECT_TRUE(event->IsObservable());
    EXPECT_FALSE(inner->IsObservable());
}

TEST_F(IntermediateEventTest, ResetWithoutAGateResetsItsOwnStatus)
{
    const auto event = Observable("G", EventStatus::TRUE, nullptr);
    event->Reset();
    EXPECT_EQ(event->GetResult(), EventStatus::FALSE);
}

std::shared_ptr<BasicEvent> NamedLeaf(const std::string& id, const std::string& name)
{
    auto leaf = Leaf(id);
    leaf->SetName(name);
    return leaf;
}

TEST(FindBasicEventTest, TheFirstOneDepthFirstIsCopied)
{
    const auto top = Inner("T", Or({Inner("G", And({NamedLeaf("A", "deep")})), NamedLeaf("A", "late")}));
    const auto found = top->FindBasicEventById("A");
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->GetName(), "deep");
}

TEST(FindBasicEventTest, TheSearchGoesOnBehindABranchWithoutIt)
{
    const auto top = Inner("T", Or({Inner("G", nullptr), Inner("H", Or({})), NamedLeaf("B", ""), Leaf("A")}));
    EXPECT_TRUE(top->FindBasicEventById("A").has_value());
}

TEST(FindBasicEventTest, OtherKindsUnknownIdsAndTheEmptyIdGiveNothing)
{
    const auto top = Inner("T", Or({Undeveloped("U"), Inner("G", Or({Leaf("")}))}));
    EXPECT_FALSE(top->FindBasicEventById("U").has_value());
    EXPECT_FALSE(top->FindBasicEventById("G").has_value());
    EXPECT_FALSE(top->FindBasicEventById("nowhere").has_value());
    EXPECT_FALSE(top->FindBasicEventById("").has_value());
}

TEST(FindBasicEventTest, OutsideSharedOwnershipItThrows)
{
    IntermediateEvent event;
    EXPECT_THROW(event.FindBasicEventById("A"), std::bad_weak_ptr);
}

} // namespace
