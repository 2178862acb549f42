#include "arborist/evaluation/sweep/sliding_count.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "arborist/evaluation/day_sums.h"

namespace {

using Measure = AlarmCount::Measure;

constexpr std::int64_t NEVER = std::numeric_limits<std::int64_t>::max();

template <typename Column>
void Arrange(Column& column, const std::vector<std::size_t>& order)
{
    Column arranged;
    for (std::size_t place = 0; place < order.size() && !column.empty(); ++place) {
        arranged.push_back(column[order[place]]);
    }
    column = std::move(arranged);
}

// The moment at which each row leaves the window, for rows in ascending order.
class Departures {
public:
    explicit Departures(const StartTimes::Floors& floors) : mFloors(floors) {}

    std::int64_t Of(std::int64_t time)
    {
        while (mNext < mFloors.repairs.size() && mFloors.repairs[mNext] <= time) {
            ++mNext;
        }
        // The window includes its start.
        const std::int64_t end = time + mFloors.period + 1;
        return mNext == mFloors.repairs.size() ? end : std::min(end, mFloors.repairs[mNext]);
    }

private:
    const StartTimes::Floors& mFloors;
    std::size_t mNext = 0;
};

// The rows that are in the window, added up for any measure.
class AnySums {
public:
    AnySums(Measure measure, std::int32_t threshold, const RowHistory& rows)
        : mMeasure(measure), mThreshold(threshold), mHistory(rows)
    {
    }

    void Add(std::size_t row)
    {
        ++mRows;
        mSum += static_cast<std::uint64_t>(std::int64_t{AnswerOf(row)});
        AddWrapping(mDays[DayOf(row)], AnswerOf(row));
    }
    void Remove(std::size_t row)
    {
        --mRows;
        mSum -= static_cast<std::uint64_t>(std::int64_t{AnswerOf(row)});
        SubtractWrapping(mDays[DayOf(row)], AnswerOf(row));
    }
    bool IsEmpty() const { return mRows == 0; }
    bool IsReached() const
    {
        return !IsEmpty() && AlarmCount::IsReached(mMeasure, mSum, mHistory.days.empty() ? 0 : PeakOf(mDays), mThreshold);
    }

private:
    std::int32_t AnswerOf(std::size_t row) const { return mHistory.answers.empty() ? 1 : mHistory.answers[row]; }
    std::size_t DayOf(std::size_t row) const { return mHistory.days.empty() ? 0 : mHistory.days[row]; }

    Measure mMeasure;
    std::int32_t mThreshold;
    const RowHistory& mHistory;
    std::size_t mRows = 0;
    std::uint64_t mSum = 0;
    EventRows::DayCounts mDays{};
};

// The same for numbers of rows by day, without looking for the best day each time.
class DayNumbers {
public:
    DayNumbers(std::int32_t threshold, const RowHistory& rows) : mThreshold(threshold), mHistory(rows) {}

    void Add(std::size_t row) { mReached += ++mDays[mHistory.days[row]] == mThreshold ? 1 : 0; }
    void Remove(std::size_t row) { mReached -= mDays[mHistory.days[row]]-- == mThreshold ? 1 : 0; }
    bool IsEmpty() const { return false; } // nobody asks
    bool IsReached() const { return mReached != 0; }

private:
    std::int32_t mThreshold;
    const RowHistory& mHistory;
    EventRows::DayCounts mDays{};
    int mReached = 0; // days
};

bool CanReach(const RowHistory& rows, std::int32_t threshold)
{
    EventRows::DayCounts days{};
    for (const std::uint8_t day : rows.days) {
        ++days[day];
    }
    return PeakOf(days) >= threshold;
}

} // namespace

void RowHistory::SortByTime()
{
    if (std::is_sorted(times.begin(), times.end())) {
        return;
    }
    std::vector<std::size_t> order(times.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [this](std::size_t one, std::size_t other) { return times[one] < times[other]; });
    Arrange(times, order);
    Arrange(answers, order);
    Arrange(days, order);
}

void SlidingCount::AddChanges(const RowHistory& rows, const MomentRange& range, Moments& moments) const
{
    if (floors.period < 0) {
        return; // the window lies in the future, where there are no rows
    }
    const auto first = static_cast<std::size_t>(
        std::lower_bound(rows.times.begin(), rows.times.end(), floors.always) - rows.times.begin());
    const bool isNumber = rows.answers.empty() && threshold > 0 && !isEachRowTold && !isEmptinessTold &&
        rows.times.size() <= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    if (!isNumber) {
        AddChangesOf(AnySums(measure, threshold, rows), rows, first, range, moments);
    } else if (measure != Measure::DAILY_PEAK) {
        AddChangesOfNumber(rows, first, range, moments);
    } else if (CanReach(rows, threshold)) {
        AddChangesOf(DayNumbers(threshold, rows), rows, first, range, moments);
    }
}

// So many rows in a row are in the window together from the last one's time until the first one leaves.
void SlidingCount::AddChangesOfNumber(
    const RowHistory& rows, std::size_t first, const MomentRange& range, Moments& moments) const
{
    const std::vector<std::uint32_t>& times = rows.times;
    Departures departures(floors);
    std::int64_t end = std::numeric_limits<std::int64_t>::min();
    for (std::size_t last = first + static_cast<std::size_t>(threshold) - 1; last < times.size(); ++last, ++first) {
        const std::int64_t begin = times[last];
        const std::int64_t departure = departures.Of(times[first]);
        if (begin >= departure) {
            continue;
        }
        if (begin > end) {
            range.Add(end, moments);
            range.Add(begin, moments);
        }
        end = departure;
    }
    range.Add(end, moments);
}

template <typename Sums>
void SlidingCount::AddChangesOf(
    Sums sums, const RowHistory& rows, std::size_t first, const MomentRange& range, Moments& moments) const
{
    const std::vector<std::uint32_t>& times = rows.times;
    Departures departures(floors);
    std::size_t entering = first;
    std::size_t leaving = first;
    std::int64_t departure = first < times.size() ? departures.Of(times[leaving]) : NEVER;
    bool wasReached = false;
    bool wasEmpty = true;
    while (leaving < times.size()) {
        const std::int64_t moment = std::min(entering < times.size() ? std::int64_t{times[entering]} : NEVER, departure);
        if (moment > range.last) {
            return;
        }
        for (; entering < times.size() && times[entering] == moment; ++entering) {
            sums.Add(entering);
        }
        while (leaving < entering && departure == moment) {
            sums.Remove(leaving++);
            departure = leaving < times.size() ? departures.Of(times[leaving]) : NEVER;
        }
        const bool isReached = sums.IsReached();
        if (isEachRowTold || isReached != wasReached || (isEmptinessTold && sums.IsEmpty() != wasEmpty)) {
            range.Add(moment, moments);
        }
        wasReached = isReached;
        wasEmpty = sums.IsEmpty();
    }
}
