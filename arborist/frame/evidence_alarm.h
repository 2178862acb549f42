#ifndef ARBORIST_FRAME_EVIDENCE_ALARM_H
#define ARBORIST_FRAME_EVIDENCE_ALARM_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "arborist/frame/comparable.h"
#include "arborist/frame/evidence_values.h"
#include "arborist/frame/evidence_words.h"

namespace Evidence {

/// One test of an alarm item's parameters. If a row must pass several tests, each test is applied to the rows that passed
/// the tests before it.
struct Test {
    /// The member of "extra" that is tested.
    std::string key;
    /// How both values are read: "int", "long", "float", "double" or "string".
    std::string type;
    /// The comparison: "gt", "lt", "le", "ge", "eq" or "ne".
    std::string logic;
    /// The value of the rule.
    std::string value;
    /// The number of rows that were tested.
    std::uint64_t rowsTested = 0;
    /// The number of tested rows that passed.
    std::uint64_t rowsPassed = 0;
    /// The part of rowsPassed that belongs to the last id of the range. Set only if that id alone decides.
    std::optional<std::uint64_t> rowsPassedByLastId = std::nullopt;

    ARBORIST_COMPARABLE(Test)
};

/// The counts of a window of an alarm rule.
struct WindowCount {
    /// The number of rows of the range since the start. Counting ends with the id that reached the threshold.
    std::uint64_t rowsFound = 0;
    /// The number of these rows that belong to another version and don't count.
    std::uint64_t rowsOfOtherVersion = 0;
    /// The number of rows that failed a test. If the item has several conditions, the smallest of their numbers.
    std::uint64_t rowsFailedTest = 0;
    /// The largest count, weight or daily peak of an id; 0 without rows. See lastIdDecides.
    std::int64_t reached = 0;
    /// The id that `reached` belongs to; 0 without rows.
    std::int64_t reachedById = 0;
    /// The unit of `reached`; NONE if no row was counted.
    Measure measure = Measure::NONE;
    /// True for a condition with several tests in a "daily_peak" or "latest" window: only the last id of the range
    /// decides. `reached` is then the smallest number of its rows that pass one of the tests; 0 without rows.
    bool lastIdDecides = false;
    /// The number of rows of the whole range, of any version, that lie in the period but before the start, because a reset,
    /// an update or a repair moved the start. Not set if the period determined the start, or if the log is damaged.
    std::optional<std::uint64_t> rowsBeforeStart = std::nullopt;
    /// The whole days from the first row of the log to now. Set only if the log begins after the window does and is not
    /// damaged.
    std::optional<std::int64_t> coveredDays = std::nullopt;

    ARBORIST_COMPARABLE(WindowCount)
};

/// One time window of one item of an alarm rule. An item whose id range is empty has no window: its record has an empty
/// `kind` and the reason NO_IDS.
struct Window {
    /// Position of the item in its rule, from 0.
    std::size_t item = 0;
    /// The first event id of the range.
    std::int64_t firstId = 0;
    /// The last event id of the range, itself included.
    std::int64_t lastId = 0;
    /// "duration", "daily_peak", "latest" or empty.
    std::string kind;
    /// The length of the window in days.
    std::int32_t periodDays = 0;
    /// The number that one id must reach.
    std::int64_t threshold = 0;
    /// The moment from which rows count. Not set if the window was not counted.
    std::optional<Start> start;
    /// True if only rows of the current version count.
    bool versionFilter = false;
    /// What was counted.
    WindowCount count;
    /// True if the threshold was reached.
    bool hit = false;
    /// Why the window ended as it did.
    Reason reason = Reason::NONE;
    /// Why the count may be wrong: NEGATIVE_WEIGHT, ROWS_UNSEEN, ROWS_AFTER_NOW, VERSION_UNKNOWN or
    /// REPAIR_UNREADABLE.
    std::vector<Reason> notes;
    /// The tests of its rows, in the order of the rule.
    std::vector<Test> tests;

    /// How much the best id was short of the threshold; 0 for a hit and for a window that was not counted.
    std::int64_t Missing() const { return hit || !start || count.reached >= threshold ? 0 : threshold - count.reached; }

    ARBORIST_COMPARABLE(Window)
};

/// The part of an alarm rule: its windows.
struct Alarm {
    /// The windows in the order of counting, up to the first that reached its threshold.
    std::vector<Window> windows;

    ARBORIST_COMPARABLE(Alarm)
};

} // namespace Evidence

#endif
