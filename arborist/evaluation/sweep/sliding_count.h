#ifndef ARBORIST_EVALUATION_SWEEP_SLIDING_COUNT_H
#define ARBORIST_EVALUATION_SWEEP_SLIDING_COUNT_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "arborist/evaluation/alarm_count.h"
#include "arborist/evaluation/start_times.h"
#include "arborist/evaluation/sweep/moment_range.h"

/// The rows of one event id as a count sees them, in columns, in ascending order of time.
struct RowHistory {
    std::vector<std::uint32_t> times = {};
    /// What each row adds: its weight, or whether it passes the tests. Empty if each adds 1.
    std::vector<std::int32_t> answers = {};
    /// Days of the month, 1 to 31; empty for a count that doesn't go by days.
    std::vector<std::uint8_t> days = {};

    void SortByTime();
};

/// The count of one id in a window that moves with the current time.
///
/// A row is in the window from its own time on. It leaves when the start of the window has passed it, or at the next
/// repair.
struct SlidingCount {
    AlarmCount::Measure measure;
    std::int32_t threshold;
    const StartTimes::Floors& floors;
    /// Each row matters by itself, not only for the threshold.
    bool isEachRowTold = false;
    /// It matters whether the window has rows at all.
    bool isEmptinessTold = false;

    /// Adds the moments in `range` at which the count may come to another answer than a second before: whether the
    /// threshold is reached, and what the flags ask for. One pass over the rows.
    void AddChanges(const RowHistory& rows, const MomentRange& range, Moments& moments) const;

private:
    void AddChangesOfNumber(
        const RowHistory& rows, std::size_t first, const MomentRange& range, Moments& moments) const;
    template <typename Sums>
    void AddChangesOf(
        Sums sums, const RowHistory& rows, std::size_t first, const MomentRange& range, Moments& moments) const;
};

#endif
