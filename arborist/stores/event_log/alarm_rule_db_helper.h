#ifndef ARBORIST_STORES_EVENT_LOG_ALARM_RULE_DB_HELPER_H
#define ARBORIST_STORES_EVENT_LOG_ALARM_RULE_DB_HELPER_H

#include <cstdint>
#include <optional>
#include <string>

#include "arborist/stores/event_log/event_log_search.h"
#include "arborist/stores/sql/sql_database.h"

/// The event log of the monitoring service, read only: which events of an id were logged since a time.
///
/// One connection for the life of the object. A log that can't be opened is tried again at each query, so that one
/// that appears during a detection is picked up. What fails logs its lines and gives no events. One thread at a time.
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

    /// The events of `eventId` since `startTime`, with `fromUpdate` those of the current version and of none. Asks the
    /// log each time.
    EventList GetEventList(std::int32_t eventId, std::int64_t startTime, bool fromUpdate);

    /// Shows the visitor what GetEventList gives for each id of the query, ascending, with the same lines in the log.
    /// Ids without rows since the start are not shown and cost nothing. The lines of a log that can't be opened come for
    /// each of the first EventLogSearch::LONGEST_RANGE_TOLD ids.
    Reading VisitEvents(const Query& query, const Visitor& visitor);

    /// See EventLogSearch::Foresee.
    void Foresee(std::int32_t firstId, std::int32_t lastId, const EventRows::Questions& questions)
    {
        mSearch.Foresee(firstId, lastId, questions);
    }

private:
    bool OpenDatabase();
    bool EnsureOpen();
    static std::string CurrentVersion();

    FT::sql::SqlDatabase mDatabase;
    EventLogSearch mSearch;
};

#endif
