#ifndef ARBORIST_DIAGNOSIS_LOG_DB_EVENT_LOG_LOOK_H
#define ARBORIST_DIAGNOSIS_LOG_DB_EVENT_LOG_LOOK_H

#include <cstdint>
#include <optional>
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
    /// Whether the log has the version that was asked for, with events or without; also if that can't be read.
    bool isVersionKnown = true;
};

/// What to look for.
struct EventLogQuestion {
    /// Seconds since the epoch.
    std::int64_t now = 0;
    /// Rows later than this are hidden, and count nowhere.
    std::optional<std::int64_t> asOf = std::nullopt;
    /// Parses every "extra" as JSON, also one that looks like an object.
    bool readsExtra = false;
    /// The version to look for; empty for none.
    std::string version = {};
};

/// Reads the log at `path` without writing. A log that would take too long is treated as one without findings.
EventLogLook LookAtEventLog(const std::string& path, const EventLogQuestion& question);

} // namespace diagnosis

#endif
