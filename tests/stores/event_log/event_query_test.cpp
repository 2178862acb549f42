#include "arborist/stores/event_log/event_query.h"

#include <gmock/gmock.h>

#include "tests/stores/event_log/log_reading.h"

namespace {

class EventQueryTest : public LogReadingTest {
protected:
    EventQuery mQuery{mDatabase.GetHandle()};
};

TEST_F(EventQueryTest, TextHoldsIdAndStart)
{
    EXPECT_THAT(EventQuery::TextFor(-7, INT64_MIN), testing::EndsWith(
        " where event_id = -7 and occurrence_time >= -9223372036854775808"));
}

TEST_F(EventQueryTest, FindsTheEventsOfOneIdSinceTheStart)
{
    Read(EventLogBuilder().Rows({{10, 7, "1", "a"}, {20, 7, "2", "b"}, {30, 8, "1", "c"}, {40, 7, "", "d"}}));
    mQuery.Run(7, 20);
    EXPECT_TRUE(mQuery.IsWhole());
    EXPECT_EQ(mQuery.GetCount(), 2U);
    EXPECT_EQ(mQuery.GetEvents(false, "").size(), 2U);
    const auto events = mQuery.GetEvents(true, "1");
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0]->extra, "d");
}

TEST_F(EventQueryTest, FailureIsToldAndLeavesNothing)
{
    Read(EventLogBuilder().Row({10, 7, "1", "a"}).Sql("drop table event_info_flow"));
    mQuery.Run(7, 0);
    EXPECT_FALSE(mQuery.IsWhole());
    EXPECT_EQ(mQuery.GetCount(), 0U);
    EXPECT_THAT(mLog.Lines(), testing::ElementsAre(
        "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: no such table: event_info_flow"));
}

} // namespace
