#ifndef ARBORIST_DIAGNOSIS_LOG_DB_EVENT_LOG_LOOK_H
#define ARBORIST_DIAGNOSIS_LOG_DB_EVENT_LOG_LOOK_H

#include <cstdint>
#include <string>

namespace diagnosis {

/// Counts of the rows of an event log that the engine skips without a log line, or that are later than now.
struct EventLogLook {
    /// The reason why the log can't be read; empty if it can.
    std::string problem;
    /// Numbers of rows of events: all; without a row of times under the same key; without a row of versions; with a
    /// version that is not empty; with an "extra" that is neither empty nor a JSON object.
    std::int64_t rows = 0;
    std::int64_t withoutTime = 0;
    std::int64_t withoutVersion = 0;
    std::int64_t ofAVersion = 0;
    std::int64_t badExtra = 0;
    std::int64_t afterNow = 0;
    /// Rows that no row of times names as its parent, by which derived tables join the two.
    std::int64_t withoutParent = 0;
};

/// Reads the log at `path` without writing. A log that would take too long is treated as one without findings. `now` in
/// seconds since the epoch. For large logs "extra" is parsed as JSON only if it doesn't look like an object, or with `readsExtra`.
EventLogLook LookAtEventLog(const std::string& path, std::int64_t now, bool readsExtra);

} // namespace diagnosis

#endif
