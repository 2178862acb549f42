#include "diagnosis/sweep/timeline.h"

#include <gmock/gmock.h>

namespace diagnosis {
namespace {

using testing::ElementsAre;

using enum SweptState;

TEST(TimelineTest, NeighboursDifferAndEachEndsASecondBeforeTheNext)
{
    Timeline timeline;
    timeline.Set(10, FALSE);
    timeline.Set(20, FALSE);
    timeline.Set(30, TRUE);
    timeline.Set(40, NOT_JUDGED, "no_log");
    timeline.Close(99);
    EXPECT_THAT(timeline.GetIntervals(), ElementsAre(SweptInterval{10, 29, FALSE, ""}, SweptInterval{30, 39, TRUE, ""},
        SweptInterval{40, 99, NOT_JUDGED, "no_log"}));
}

TEST(TimelineTest, TheLastAnswerForAMomentCounts)
{
    Timeline timeline;
    timeline.Set(10, FALSE);
    timeline.Set(20, TRUE);
    timeline.Set(20, FALSE);
    timeline.Close(30);
    EXPECT_THAT(timeline.GetIntervals(), ElementsAre(SweptInterval{10, 30, FALSE, ""}));
}

TEST(TimelineTest, WhatBeginsBehindTheEndIsLeftOut)
{
    Timeline timeline;
    timeline.Set(10, FALSE);
    timeline.Set(20, TRUE);
    timeline.Close(19);
    EXPECT_THAT(timeline.GetIntervals(), ElementsAre(SweptInterval{10, 19, FALSE, ""}));
    Timeline late;
    late.Set(20, TRUE);
    late.Close(19);
    EXPECT_TRUE(late.GetIntervals().empty());
}

TEST(TimelineTest, SumsAreOfOneState)
{
    Timeline timeline;
    timeline.Set(10, TRUE, "one reason");
    timeline.Set(20, TRUE, "another"); // still the same time
    timeline.Set(30, FALSE);
    timeline.Set(50, TRUE);
    timeline.Close(50);
    EXPECT_EQ(timeline.GetFirst(), 10);
    EXPECT_EQ(timeline.GetSeconds(), 21U);
    EXPECT_EQ(timeline.GetTimes(), 2U);
    EXPECT_EQ(timeline.GetFirst(FALSE), 30);
    EXPECT_EQ(timeline.GetFirst(NOT_JUDGED), std::nullopt);
    EXPECT_EQ(timeline.GetTimes(NOT_JUDGED), 0U);
}

} // namespace
} // namespace diagnosis
