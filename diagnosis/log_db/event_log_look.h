#ifndef ARBORIST_DIAGNOSIS_LOG_DB_EVENT_LOG_LOOK_H
#define ARBORIST_DIAGNOSIS_LOG_DB_EVENT_LOG_LOOK_H

#include <cstdint>
#include <string>

namespace diagnosis {

/// What an event log holds that the engine passes over in silence.
struct EventLogLook {
    /// Why the log can't be read; empty when it can.
    std::string problem;
    /// Rows of events; those without a row of times under the same key, those without a row of versions, those whose
    /// version is not empty, and those whose "extra" is neither empty nor a JSON object.
    std::int64_t rows = 0;
    std::int64_t withoutTime = 0;
    std::int64_t withoutVersion = 0;
    std::int64_t ofAVersion = 0;
    std::int64_t badExtra = 0;
    /// Rows that no row of times names as its parent: derived tables pair the two that way.
    std::int64_t withoutParent = 0;
};

/// Reads the log at `path` without writing. A log that would keep it busy for long is given up as if it had nothing to
/// tell. Large logs have their "extra" read as JSON only where it doesn't even look like an object, or with
/// `readsExtra`.
EventLogLook LookAtEventLog(const std::string& path, bool readsExtra);

} // namespace diagnosis

#endif
