#ifndef ARBORIST_TESTS_SUPPORT_EVENT_LOG_BUILDER_H
#define ARBORIST_TESTS_SUPPORT_EVENT_LOG_BUILDER_H

#include <cstdint>
#include <string>
#include <vector>

/// One row of an event log.
struct LoggedRow {
    /// Seconds since the epoch.
    std::int64_t time = 0;
    std::int64_t event = 0;
    /// Name of the software version; rows of one name share a row of event_version.
    std::string version;
    /// JSON text.
    std::string extra;
};

/// Builds event logs like those of the monitoring service: row n, from 1, is row n of event_info and of
/// event_info_flow. A statement that fails fails the test.
class EventLogBuilder {
public:
    EventLogBuilder& Row(LoggedRow row);
    EventLogBuilder& Rows(const std::vector<LoggedRow>& rows);
    /// Adds a statement that runs after all rows are inserted, for content that no service would write. Statements run
    /// in order.
    EventLogBuilder& Sql(const std::string& sql);
    /// Replaces the statements that create the tables. Must create all three with their columns.
    EventLogBuilder& Schema(const std::string& sql);

    /// Writes the file anew, with the folders above it.
    void WriteTo(const std::string& path) const;

    /// Runs statements on any database file, in a connection of their own.
    static void Run(const std::string& path, const std::string& sql);
    /// Runs statements and leaves their changes in the write-ahead log beside the file, as in a log that was copied
    /// from a running service.
    static void RunIntoWal(const std::string& path, const std::string& sql);

private:
    std::string mSchema;
    std::vector<LoggedRow> mRows;
    std::vector<std::string> mStatements;
};

#endif
