#include "arborist/evaluation/alarm_count.h"

#include <cstdint>
#include <vector>

#include "arborist/evaluation/day_sums.h"
#include "arborist/evaluation/detection_customize.h"

namespace {

constexpr std::int32_t LAST_DAY = 31;

using AlarmCount::IsReached;
using AlarmCount::Measure;

// The answers of all rows, and of those up to now.
struct Sums { std::uint64_t all; std::uint64_t untilNow; };

// Weights may be negative; a sum below 0 wraps. Asks each row once, as an unreadable row logs a line each time.
Sums SumsOf(const EventRows& rows, bool isWeighed, AlarmWindow& window)
{
    const bool hasLater = window.Now() && rows.CountAfter(*window.Now()) != 0;
    if (!hasLater && !(isWeighed && window.HasRecord())) {
        const std::uint64_t sum = rows.Sum(0);
        return {sum, sum};
    }
    Sums sums{0, 0};
    rows.ForEach([&](const EventRows::Row& row) {
        const std::int64_t answer = row.Answer(0);
        window.NoteWeight(answer);
        sums.all += static_cast<std::uint64_t>(answer);
        sums.untilNow += row.IsAfter(*window.Now()) ? 0 : static_cast<std::uint64_t>(answer);
    });
    return sums;
}

// With `isTested` only the rows count that pass the first test of the visit.
bool IsFaultForPeriod(const EventRows& rows, bool isTested, AlarmWindow& window)
{
    const bool isWeighed = !isTested && DetectionCustomize::IsDmdEvent(rows.GetEventId());
    const std::size_t later = window.Now() ? rows.CountAfter(*window.Now()) : 0;
    const Sums sums = isWeighed || isTested ? SumsOf(rows, isWeighed, window)
                                            : Sums{rows.GetCount(), rows.GetCount() - later};
    if (isTested) {
        window.NoteTested(0, rows.GetCount(), sums.all);
        window.NoteFailed(rows.GetCount() - sums.all);
    }
    window.NoteReached(rows, static_cast<std::int64_t>(sums.all),
        isWeighed ? Evidence::Measure::WEIGHTS : Evidence::Measure::ROWS);
    const auto isReached = [&](std::uint64_t sum) { return IsReached(Measure::PERIOD, sum, 0, window.threshold); };
    return window.NoteHit(isReached(sums.all), isReached(sums.untilNow) && later != rows.GetCount());
}

// Days are distinguished by their number in the month only: the 3rd of two months counts as one day. Rule files rely on
// it.
bool IsFaultForDaily(const EventRows& rows, bool isTested, AlarmWindow& window)
{
    const bool isWeighed = !isTested && DetectionCustomize::IsDmdEvent(rows.GetEventId());
    EventRows::DayCounts days{};
    EventRows::DayCounts later{};
    std::uint64_t tested = 0;
    std::uint64_t passed = 0;
    const auto take = [&](const EventRows::Row& row) {
        const std::int32_t day = row.GetDayOfMonth();
        if (day < 1 || day > LAST_DAY) {
            return;
        }
        const std::int32_t answer = row.Answer(0);
        window.NoteWeight(answer);
        ++tested;
        passed += answer != 0 ? 1 : 0;
        AddWrapping(days[static_cast<std::size_t>(day)], answer);
        AddWrapping(later[static_cast<std::size_t>(day)], window.Now() && row.IsAfter(*window.Now()) ? answer : 0);
    };
    const std::size_t rowsLater = window.Now() ? rows.CountAfter(*window.Now()) : 0;
    if (isTested || isWeighed) {
        rows.ForEach(take);
    } else {
        rows.CountDays(days);
        if (rowsLater != 0) {
            rows.CountDaysAfter(*window.Now(), later);
        }
    }
    if (isTested) {
        window.NoteTested(0, tested, passed);
        window.NoteFailed(tested - passed);
    }
    const std::int32_t peak = PeakOf(days);
    window.NoteReached(rows, peak,
        isWeighed ? Evidence::Measure::DAILY_WEIGHTS : Evidence::Measure::DAILY_ROWS);
    if (rowsLater == 0) {
        return window.NoteHit(IsReached(Measure::DAILY_PEAK, 0, peak, window.threshold), true);
    }
    for (std::size_t day = 0; day < days.size(); ++day) {
        SubtractWrapping(days[day], later[day]);
    }
    const auto isReached = [&](std::int32_t best) { return IsReached(Measure::DAILY_PEAK, 0, best, window.threshold); };
    return window.NoteHit(isReached(peak), isReached(PeakOf(days)) && rowsLater != rows.GetCount());
}

bool IsFaultForPeriodWithParam(const EventRows& rows, std::size_t testCount, AlarmWindow& window)
{
    if (testCount == 0) {
        return false;
    }
    std::vector<std::uint64_t> rowsByPassed(testCount + 1); // by number of passed tests
    std::uint64_t passedLater = 0;
    const std::size_t rowsLater = window.Now() ? rows.CountAfter(*window.Now()) : 0;
    rows.ForEach([&](const EventRows::Row& row) {
        std::size_t passed = 0;
        while (passed < testCount && row.Answer(passed) != 0) {
            ++passed;
        }
        ++rowsByPassed[passed];
        passedLater += passed == testCount && window.Now() && row.IsAfter(*window.Now()) ? 1 : 0;
    });
    std::uint64_t tested = rows.GetCount();
    for (std::size_t test = 0; test < testCount; ++test) {
        window.NoteTested(test, tested, tested - rowsByPassed[test]);
        tested -= rowsByPassed[test];
    }
    window.NoteFailed(rows.GetCount() - tested);
    window.NoteReached(rows, static_cast<std::int32_t>(tested), Evidence::Measure::ROWS);
    const auto isReached = [&](std::uint64_t sum) { return IsReached(Measure::ALL_TESTS, sum, 0, window.threshold); };
    return window.NoteHit(isReached(tested), isReached(tested - passedLater) && rowsLater != rows.GetCount());
}

} // namespace

bool AlarmCount::IsHit(Measure measure, const EventRows& rows, std::size_t testCount, AlarmWindow& window)
{
    window.NoteFound(rows);
    if (rows.GetCount() == 0) {
        return false;
    }
    switch (measure) {
    case Measure::DAILY_PEAK:
        return IsFaultForDaily(rows, testCount != 0, window);
    case Measure::ALL_TESTS:
        return IsFaultForPeriodWithParam(rows, testCount, window);
    default:
        return IsFaultForPeriod(rows, testCount != 0, window);
    }
}
