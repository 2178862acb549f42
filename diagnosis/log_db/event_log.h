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

/// The journal file beside the database at `path`, if there is one: then no other database may replace it, as SQLite
/// would apply the journal to that.
std::optional<std::string> CompanionOf(const std::string& path);

/// Writes an event log with the tables of the monitoring service, in one transaction, to a temporary file beside its
/// target. Only Finish moves it to the target: without it nothing remains, and an existing log is unchanged.
class EventLogWriter {
public:
    /// Whether the finished file must survive a crash of the machine. With NONE nothing waits for the disk: for files
    /// that are removed soon.
    enum class Durability { FULL, NONE };

    explicit EventLogWriter(Durability durability = Durability::FULL) : mDurability(durability) {}

    std::optional<Failure> Open(const std::string& path);
    /// Gives the rows the keys 1, 2, ... in all tables that readers join.
    std::optional<Failure> Add(const LoggedEvent& event);
    std::optional<Failure> Finish();

private:
    std::optional<Failure> CreateTables();
    std::optional<std::int64_t> VersionId(const std::string& version);
    Failure Fail(const std::string& reason) const;

    Durability mDurability;
    std::string mPath;
    NewFile mFile;
    Connection mDatabase;
    std::optional<Statement> mInfo;
    std::optional<Statement> mFlow;
    std::optional<Statement> mVersion;
    std::map<std::string, std::int64_t> mVersionIds;
    std::int64_t mRows = 0;
};

/// One row of an event log to be shown. A foreign log can have any value in any column.
struct ShownEvent {
    /// The JSON values of "time", "event", "version" and "extra".
    std::string time;
    std::string event;
    std::string version;
    std::string extra;
};

/// Calls `show` for every event of the log at `path`, in the order of their keys; `asSeconds` gives times as numbers.
/// If "extra" is a JSON object, its text is copied unchanged. Events later than `asOf`, in seconds since the epoch, are
/// left out. With `wants`, so are those for whose number and time it returns false, and those whose number or time is no
/// whole number.
std::optional<Failure> ShowEventLog(const std::string& path, bool asSeconds, std::optional<std::int64_t> asOf,
    const std::function<void(const ShownEvent&)>& show,
    const std::function<bool(std::int64_t event, std::int64_t time)>& wants = nullptr);

} // namespace diagnosis

#endif
