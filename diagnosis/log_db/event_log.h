#ifndef ARBORIST_DIAGNOSIS_LOG_DB_EVENT_LOG_H
#define ARBORIST_DIAGNOSIS_LOG_DB_EVENT_LOG_H

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "diagnosis/log_db/event_line.h"
#include "diagnosis/problem.h"
#include "diagnosis/scratch/new_file.h"
#include "diagnosis/sqlite/connection.h"

namespace diagnosis {

/// What waits beside the database at `path`, so that another must not take its place: SQLite would mix them. Nothing
/// when it is free.
std::optional<std::string> CompanionOf(const std::string& path);

/// Writes an event log in the monitoring service's layout, in one transaction, to a temporary file beside its place.
/// Only Finish puts it there: what is not finished leaves no trace, and an old log stays as it was.
class EventLogWriter {
public:
    std::optional<Failure> Open(const std::string& path);
    /// Rows get the key 1, 2, ... in all tables that the readers join.
    std::optional<Failure> Add(const LoggedEvent& event);
    std::optional<Failure> Finish();

private:
    std::optional<Failure> CreateTables();
    std::optional<std::int64_t> VersionId(const std::string& version);
    Failure Fail(const std::string& reason) const;

    std::string mPath;
    NewFile mFile;
    Connection mDatabase;
    std::optional<Statement> mInfo;
    std::optional<Statement> mFlow;
    std::optional<Statement> mVersion;
    std::map<std::string, std::int64_t> mVersionIds;
    std::int64_t mRows = 0;
};

/// One row of an event log that is shown; a log of a stranger can hold anything in any column.
struct ShownEvent {
    /// A JSON value each: of "time", "event", "version" and "extra".
    std::string time;
    std::string event;
    std::string version;
    std::string extra;
};

/// Hands every logged event of the log at `path` to `show`, in order of their keys; `asSeconds` shows times as
/// numbers. A text of "extra" that is a JSON object is shown as that object, letter by letter.
std::optional<Failure> ShowEventLog(const std::string& path, bool asSeconds,
    const std::function<void(const ShownEvent&)>& show);

} // namespace diagnosis

#endif
