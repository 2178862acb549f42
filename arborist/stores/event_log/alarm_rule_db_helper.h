#ifndef ARBORIST_STORES_EVENT_LOG_ALARM_RULE_DB_HELPER_H
#define ARBORIST_STORES_EVENT_LOG_ALARM_RULE_DB_HELPER_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "arborist/stores/event_log/event_log_search.h"
#include "arborist/stores/sql/sql_database.h"

/// Reads the event log of the monitoring service: finds the events of an id that were logged since a time.
///
/// Keeps one connection as long as it exists. If the log can't be opened, each query tries again, so that a log that
/// appears during a detection is found. A query that fails logs its lines and returns no events. Not thread-safe.
class AlarmRuleDbHelper final {
public:
    using EventList = EventQuery::EventList;
    using Query = EventLogSearch::Query;
    using Reading = EventLogSearch::Reading;
    using Visitor = EventLogSearch::Visitor;

    /// Opens DevicePaths::EventLog.
    AlarmRuleDbHelper();
    AlarmRuleDbHelper(const AlarmRuleDbHelper&) = delete;
    AlarmRuleDbHelper& operator=(const AlarmRuleDbHelper&) = delete;

    /// The events of `eventId` since `startTime`; with `fromUpdate` only those of the current version and those without
    /// a version. Queries the log at each call. Kept for the tests; rules visit whole queries.
    EventList GetEventList(std::int32_t eventId, std::int64_t startTime, bool fromUpdate);

    /// Calls the visitor with the result of GetEventList for each id of the query, in ascending order, and logs the
    /// same lines. Skips ids without rows since the start at no cost. If the log can't be opened, logs the lines for
    /// each of the first EventLogSearch::LONGEST_LOGGED_RANGE ids of the rule's range.
    Reading VisitEvents(const Query& query, const Visitor& visitor);

    /// The version whose events are selected with `fromUpdate`; empty if it is not known.
    static std::string CurrentVersion();

    /// See EventLogSearch::CountRows.
    std::optional<std::uint64_t> CountRows(
        std::int32_t firstId, std::int32_t lastId, std::int64_t start, std::int64_t end) const
    {
        return mSearch.CountRows(firstId, lastId, start, end);
    }

    /// See EventLogSearch::GetFirstTime.
    std::optional<std::int64_t> GetFirstTime() const { return mSearch.GetFirstTime(); }

    /// See EventLogSearch::HasUnseen.
    bool HasUnseen(std::int32_t firstId, std::int32_t lastId, std::int64_t start) const
    {
        return mSearch.HasUnseen(firstId, lastId, start);
    }

    /// See EventLogSearch::ListUnseen.
    std::vector<std::int64_t> ListUnseen(std::int32_t firstId, std::int32_t lastId) const
    {
        return mSearch.ListUnseen(firstId, lastId);
    }

    /// See EventLogSearch::ReadAhead. Does nothing if the log can't be opened.
    void ReadAhead()
    {
        if (mDatabase.IsOpen()) {
            mSearch.ReadAhead();
        }
    }

    /// See EventLogSearch::Foresee.
    void Foresee(std::int32_t firstId, std::int32_t lastId, const EventRows::Questions& questions)
    {
        mSearch.Foresee(firstId, lastId, questions);
    }

private:
    bool OpenDatabase();
    bool EnsureOpen();

    FT::sql::SqlDatabase mDatabase;
    EventLogSearch mSearch;
};

#endif
