#ifndef ARBORIST_DIAGNOSIS_LOG_DB_SLICE_LOG_H
#define ARBORIST_DIAGNOSIS_LOG_DB_SLICE_LOG_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis {

/// The part of an event log to keep; a member that is not set doesn't limit it.
struct LogSlice {
    /// Seconds since the epoch, both inclusive.
    std::optional<std::int64_t> from;
    std::optional<std::int64_t> until;
    /// Leaves out what is later, as if the log ended there.
    std::optional<std::int64_t> asOf;
    /// Days before the latest event of the log, or of what `asOf` leaves of it.
    std::optional<std::int64_t> lastDays;
    /// Keeps the last events before `from`, too: they show that the log began before the slice does.
    bool keepsLastBefore = false;
    /// Ranges of event numbers, both ends inclusive.
    std::vector<std::pair<std::int64_t, std::int64_t>> ids;
};

/// Parses "931001001,932000000-932999999".
std::optional<std::vector<std::pair<std::int64_t, std::int64_t>>> ParseIdRanges(const std::string& text);

/// Copies a part of the log `source` to `target`, replacing an existing log and creating missing folders. Keeps keys,
/// versions, indexes and foreign tables, so that rows are found as before. Keeps an event if one of its times is in the
/// slice, and every time that is no number.
std::optional<Failure> SliceEventLog(const std::string& source, const std::string& target, const LogSlice& slice);

} // namespace diagnosis

#endif
