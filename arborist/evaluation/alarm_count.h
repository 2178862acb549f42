#ifndef ARBORIST_EVALUATION_ALARM_COUNT_H
#define ARBORIST_EVALUATION_ALARM_COUNT_H

#include <cstddef>
#include <cstdint>

#include "arborist/evaluation/alarm_window.h"
#include "arborist/stores/event_log/event_rows.h"

/// Counts the rows of one id for a window and compares the count with the window's threshold.
namespace AlarmCount {

/// The number that is compared with the threshold.
enum class Measure {
    PERIOD, ///< rows, or their weights, or those that pass the one test
    DAILY_PEAK, ///< the same, on the day of the month with the most
    ALL_TESTS, ///< rows that pass all tests
};

/// True if a count of at least one row reaches a threshold. `sum` is that of all rows, `peak` that of the best day.
inline bool IsReached(Measure measure, std::uint64_t sum, std::int32_t peak, std::int32_t threshold)
{
    switch (measure) {
    case Measure::DAILY_PEAK:
        return peak >= threshold;
    case Measure::ALL_TESTS:
        return static_cast<std::int32_t>(sum) >= threshold; // wraps
    default:
        // Compares as unsigned, so that a negative threshold is never reached.
        return sum >= static_cast<std::uint64_t>(std::int64_t{threshold});
    }
}

/// True if the rows reach the threshold; an id without rows that count never does. `testCount` is the number of tests
/// among the questions of the visit. Notes the counts in the window.
bool IsHit(Measure measure, const EventRows& rows, std::size_t testCount, AlarmWindow& window);

} // namespace AlarmCount

#endif
