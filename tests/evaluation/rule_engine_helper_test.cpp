#include "arborist/evaluation/rule_engine_helper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/log.h"
#include "arborist/model/event_rule.h"
#include "tests/support/log_capture.h"
#include "tests/support/tree_builder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> Ids(const RuleEngineHelper::EventList& events)
{
    std::vector<std::string> ids;
    for (const auto& event : events) {
        ids.push_back(event->GetId());
    }
    return ids;
}

class RuleEngineHelperTest : public testing::Test {
protected:
    LogCapture mLog;
    RuleEngineHelper mHelper;
};

TEST_F(RuleEngineHelperTest, ListsEventsBeforeWhatLiesBelowThem)
{
    mHelper.FetchEvent(Inner("T", Or({Leaf("A"), Inner("G", And({Leaf("B"), Undeveloped("U")})), Leaf("C")})));
    EXPECT_THAT(Ids(mHelper.GetAllEventList()), ElementsAre("T", "A", "G", "B", "U", "C"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleEngineHelperTest, OfTwoEventsWithOneIdTheMapHoldsTheFirstAndTheListBoth)
{
    const auto first = Leaf("A");
    mHelper.FetchEvent(Inner("T", Or({first, Leaf("A")})));
    EXPECT_THAT(Ids(mHelper.GetAllEventList()), ElementsAre("T", "A", "A"));
    EXPECT_THAT(mHelper.GetEventMap(), SizeIs(2));
    EXPECT_EQ(mHelper.GetEventMap().at("A"), first);
}

TEST_F(RuleEngineHelperTest, MapFollowsLaterEventsAndReset)
{
    mHelper.FetchEvent(Leaf("A"));
    EXPECT_THAT(mHelper.GetEventMap(), SizeIs(1));
    mHelper.FetchEvent(Leaf("B"));
    EXPECT_THAT(mHelper.GetEventMap(), SizeIs(2));
    mHelper.Reset();
    EXPECT_THAT(mHelper.GetEventMap(), IsEmpty());
    EXPECT_THAT(mHelper.GetAllEventList(), IsEmpty());
}

TEST_F(RuleEngineHelperTest, NullEventLogsAWarning)
{
    mHelper.FetchEvent(nullptr);
    EXPECT_THAT(mHelper.GetAllEventList(), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre("FUNc:RuleEngineHelper::FetchEvent: input null event."));
}

TEST_F(RuleEngineHelperTest, IntermediateEventWithoutGateIsListedAndLogsAWarning)
{
    mHelper.FetchEvent(Inner("T", Or({Inner("G", nullptr), Leaf("A")})));
    EXPECT_THAT(Ids(mHelper.GetAllEventList()), ElementsAre("T", "G", "A"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
                ElementsAre("FUNc:RuleEngineHelper::FetchEvent: IntermediateEvent G missing gate"));
}

TEST_F(RuleEngineHelperTest, IntermediateEventsWithRulesAreObservable)
{
    const auto basic = Leaf("A");
    const auto undeveloped = Undeveloped("U");
    const auto ruled = Inner("G", Or({basic, undeveloped}));
    const auto top = Observable("T", EventStatus::FALSE, Or({ruled}));
    basic->SetObservable(false);
    undeveloped->SetObservable(false);
    mHelper.FetchEvent(top);
    mHelper.MarkObservable({{"G", nullptr}});
    EXPECT_TRUE(ruled->IsObservable());
    EXPECT_FALSE(top->IsObservable());
    EXPECT_TRUE(basic->IsObservable());
    EXPECT_TRUE(undeveloped->IsObservable());
}

TEST_F(RuleEngineHelperTest, WithoutEventRulesNoIntermediateEventIsObservable)
{
    const auto basic = Leaf("A");
    const auto top = Observable("T", EventStatus::FALSE, Or({basic}));
    mHelper.FetchEvent(top);
    mHelper.MarkObservable({});
    EXPECT_FALSE(top->IsObservable());
    EXPECT_TRUE(basic->IsObservable());
}

TEST_F(RuleEngineHelperTest, RevisionTellsEveryChange)
{
    const auto empty = mHelper.GetRevision();
    mHelper.FetchEvent(Leaf("A"));
    const auto filled = mHelper.GetRevision();
    mHelper.Reset();
    EXPECT_NE(empty, filled);
    EXPECT_NE(filled, mHelper.GetRevision());
    EXPECT_NE(empty, mHelper.GetRevision());
}

} // namespace
