#ifndef ARBORIST_DIAGNOSIS_LOG_DB_INSPECT_LOG_H
#define ARBORIST_DIAGNOSIS_LOG_DB_INSPECT_LOG_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis {

/// Times of the first and the last logged event, in seconds since the epoch.
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

/// Rows that one of the library's readers doesn't see or reads differently than they were meant.
struct UnseenRows {
    /// A reason code of docs/command.md, and its description for people.
    const char* reason;
    const char* text;
    /// The reader that doesn't see them.
    const char* reader;
    std::uint64_t rows = 0;
    /// Keys in event_info of the first of these rows.
    std::vector<std::string> keys;
};

/// The content of an event log in numbers.
struct LogInspection {
    std::uint64_t rows = 0;
    LoggedSpan span;
    /// In order of the numbers.
    std::vector<LoggedId> ids;
    /// In order of the names.
    std::vector<LoggedVersion> versions;
    /// Only reasons with rows.
    std::vector<UnseenRows> unseen;
};

/// Reads the whole log at `path`. Returns the failure, if any: no file, no database, or a missing table or column.
std::optional<Failure> InspectEventLog(
    const std::string& path, LogInspection& inspection, std::optional<std::int64_t> asOf = std::nullopt);

} // namespace diagnosis

#endif
