#include "arborist/evaluation/sweep/sliding_count.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Measure = AlarmCount::Measure;

constexpr std::int64_t PERIOD = 100;

struct Row {
    std::uint32_t time;
    std::int32_t answer = 1;
    std::uint8_t day = 1;
};

// Asks for the plain number of rows, and once more for the sum of the same answers, which goes another way.
Moments ChangesOf(const std::vector<Row>& rows, SlidingCount count, MomentRange range = {0, 1000})
{
    RowHistory history;
    bool isNumber = true;
    for (const Row& row : rows) {
        history.times.push_back(row.time);
        history.answers.push_back(row.answer);
        history.days.push_back(row.day);
        isNumber = isNumber && row.answer == 1;
    }
    Moments moments;
    count.AddChanges(history, range, moments);
    if (isNumber) {
        history.answers.clear();
        Moments again;
        count.AddChanges(history, range, again);
        EXPECT_EQ(again, moments);
    }
    return moments;
}

TEST(SlidingCountTest, RowEntersAtItsTimeAndLeavesOnceTheStartHasPassedIt)
{
    const StartTimes::Floors floors{PERIOD};
    EXPECT_THAT(ChangesOf({{50}}, {Measure::PERIOD, 1, floors}), ElementsAre(50, 151));
    EXPECT_THAT(ChangesOf({{50}, {60}}, {Measure::PERIOD, 2, floors}), ElementsAre(60, 151));
    EXPECT_THAT(ChangesOf({{50}, {151}}, {Measure::PERIOD, 1, floors}), ElementsAre(50, 252)); // one for the other
}

TEST(SlidingCountTest, OnlyMomentsInTheRangeAreToldAndTheFirstIsKnown)
{
    const StartTimes::Floors floors{PERIOD};
    EXPECT_THAT(ChangesOf({{50}}, {Measure::PERIOD, 1, floors}, {50, 150}), IsEmpty());
    EXPECT_THAT(ChangesOf({{50}}, {Measure::PERIOD, 1, floors}, {49, 151}), ElementsAre(50, 151));
}

TEST(SlidingCountTest, ARepairEmptiesTheWindowOfWhatWasBefore)
{
    const StartTimes::Floors floors{PERIOD, 0, {60, 70}};
    EXPECT_THAT(ChangesOf({{50}}, {Measure::PERIOD, 1, floors}), ElementsAre(50, 60));
    EXPECT_THAT(ChangesOf({{60}}, {Measure::PERIOD, 1, floors}), ElementsAre(60, 70)); // the start is inclusive
    EXPECT_THAT(ChangesOf({{70}}, {Measure::PERIOD, 1, floors}), ElementsAre(70, 171));
}

TEST(SlidingCountTest, RowsBeforeAFloorThatAlwaysHoldsNeverCount)
{
    EXPECT_THAT(ChangesOf({{50}, {80}}, {Measure::PERIOD, 1, StartTimes::Floors{PERIOD, 60}}), ElementsAre(80, 181));
}

TEST(SlidingCountTest, APeriodThatEndsInTheFutureHasNoRows)
{
    EXPECT_THAT(ChangesOf({{50}}, {Measure::PERIOD, 1, StartTimes::Floors{-PERIOD}}), IsEmpty());
}

TEST(SlidingCountTest, DailyPeakGoesByTheDayOfTheMonth)
{
    const StartTimes::Floors floors{PERIOD};
    const std::vector<Row> rows{{10, 1, 3}, {20, 1, 4}, {30, 1, 3}};
    EXPECT_THAT(ChangesOf(rows, {Measure::DAILY_PEAK, 2, floors}), ElementsAre(30, 111));
}

TEST(SlidingCountTest, RowsAreSortedWithAllThatBelongsToThem)
{
    RowHistory history{{30, 10, 20}, {3, 1, 2}, {13, 11, 12}};
    history.SortByTime();
    EXPECT_THAT(history.times, ElementsAre(10, 20, 30));
    EXPECT_THAT(history.answers, ElementsAre(1, 2, 3));
    EXPECT_THAT(history.days, ElementsAre(11, 12, 13));
    RowHistory plain{{30, 10}};
    plain.SortByTime();
    EXPECT_THAT(plain.answers, IsEmpty());
}

TEST(SlidingCountTest, WeightsAddUpAndNegativeThresholdsAreOnlyReachedByPeaks)
{
    const StartTimes::Floors floors{PERIOD};
    EXPECT_THAT(ChangesOf({{10, 5}, {20, 0}}, {Measure::PERIOD, 5, floors}), ElementsAre(10, 111));
    EXPECT_THAT(ChangesOf({{10}}, {Measure::PERIOD, -1, floors}), IsEmpty());
    EXPECT_THAT(ChangesOf({{10}}, {Measure::DAILY_PEAK, -1, floors}), ElementsAre(10, 111));
}

TEST(SlidingCountTest, EachRowAndEmptinessAreToldOnRequest)
{
    const StartTimes::Floors floors{PERIOD};
    const std::vector<Row> rows{{10}, {20}};
    EXPECT_THAT(ChangesOf(rows, {Measure::PERIOD, 9, floors, true}), ElementsAre(10, 20, 111, 121));
    EXPECT_THAT(ChangesOf(rows, {Measure::PERIOD, 9, floors, false, true}), ElementsAre(10, 121));
    EXPECT_THAT(ChangesOf(rows, {Measure::PERIOD, 9, floors}), IsEmpty());
}

} // namespace
