#ifndef ARBORIST_DIAGNOSIS_LOG_DB_INSPECT_LOG_H
#define ARBORIST_DIAGNOSIS_LOG_DB_INSPECT_LOG_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis {

/// The moments between which something was logged, seconds since the epoch.
struct LoggedSpan {
    std::optional<std::int64_t> first;
    std::optional<std::int64_t> last;
};

/// The rows of one event number.
struct LoggedId {
    std::int64_t id = 0;
    std::uint64_t rows = 0;
    LoggedSpan span;
};

/// The rows of one software version.
struct LoggedVersion {
    std::string name;
    std::uint64_t rows = 0;
};

/// Rows that one of the library's readers does not see, or not as they are meant.
struct UnseenRows {
    /// A word of docs/command.md, and the same for people.
    const char* reason;
    const char* text;
    /// Who doesn't see them.
    const char* reader;
    std::uint64_t rows = 0;
    /// Keys in event_info of the first of them.
    std::vector<std::string> keys;
};

/// What an event log holds.
struct LogInspection {
    std::uint64_t rows = 0;
    LoggedSpan span;
    /// In order of the numbers.
    std::vector<LoggedId> ids;
    /// In order of the names.
    std::vector<LoggedVersion> versions;
    /// Reasons that have rows, alone.
    std::vector<UnseenRows> unseen;
};

/// Reads the whole log at `path`. Otherwise answers why not: no file, no database, a table or column is missing.
std::optional<Failure> InspectEventLog(const std::string& path, LogInspection& inspection);

} // namespace diagnosis

#endif
