#ifndef ARBORIST_DIAGNOSIS_LOG_DB_SLICE_LOG_H
#define ARBORIST_DIAGNOSIS_LOG_DB_SLICE_LOG_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis {

/// Which part of an event log is meant; what is not set does not limit it.
struct LogSlice {
    /// Seconds since the epoch, both inclusive.
    std::optional<std::int64_t> from;
    std::optional<std::int64_t> until;
    /// Days before the latest event of the log.
    std::optional<std::int64_t> lastDays;
    /// Ranges of event numbers, both ends inclusive.
    std::vector<std::pair<std::int64_t, std::int64_t>> ids;
};

/// Reads "931001001,932000000-932999999".
std::optional<std::vector<std::pair<std::int64_t, std::int64_t>>> ParseIdRanges(const std::string& text);

/// Makes a log of a part of the log `source` at `target`, replacing an old one. Keys, versions, indexes and tables of
/// others stay, so that the rows in it are found as before. An event stays with each moment in the slice; a moment that
/// is no number stays.
std::optional<Failure> SliceEventLog(const std::string& source, const std::string& target, const LogSlice& slice);

} // namespace diagnosis

#endif
