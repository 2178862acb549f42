#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_QUERY_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_QUERY_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "arborist/stores/event_log/log_event.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_table.h"

/// The query for the events of one id. Every faster way must return the same results and log the same lines.
class EventQuery {
public:
    using EventList = std::vector<std::shared_ptr<LogEvent>>;

    explicit EventQuery(const FT::sql::Sqlite3Db& database);

    static std::string TextFor(std::int32_t eventId, std::int64_t startTime);

    /// Queries the events of `eventId` since `startTime`. A failure logs its line; rows read before it stay.
    void Run(std::int32_t eventId, std::int64_t startTime);
    /// The same if all its events meet `condition`; see RowsOfIds.
    void RunAmong(std::int32_t eventId, std::int64_t startTime, const std::string& condition);
    /// True if the last query did not fail.
    bool IsWhole() const { return mIsWhole; }
    /// Number of rows of the last query.
    std::size_t GetCount() const { return mFound; }
    /// Their events; with `fromUpdate` only those of the version `versionName` and those without a version.
    EventList GetEvents(bool fromUpdate, const std::string& versionName) const;

private:
    void RunText(const std::string& text);

    FT::sql::SqlTable mEventInfoUnion;
    bool mIsWhole = false;
    std::size_t mFound = 0;
};

#endif
