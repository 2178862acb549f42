#ifndef ARBORIST_STORES_EVENT_LOG_ALARM_RULE_DB_HELPER_H
#define ARBORIST_STORES_EVENT_LOG_ALARM_RULE_DB_HELPER_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "arborist/stores/event_log/event_log_index.h"
#include "arborist/stores/event_log/event_member_cache.h"
#include "arborist/stores/event_log/event_rows.h"
#include "arborist/stores/event_log/log_event.h"
#include "arborist/stores/sql/sql_database.h"

namespace FT::sql {
class SqlTable;
}

/// The event log of the monitoring service, read only: which events of an id were logged since a time.
///
/// One connection for the life of the object. A log that can't be opened is tried again at each query, so that one
/// that appears during a detection is picked up. What fails logs its lines and gives no events. One thread at a time.
class AlarmRuleDbHelper final : private EventRows::Source {
public:
    using EventList = EventRows::EventList;

    /// The ids and times that VisitEvents asks for.
    struct Query {
        std::int32_t firstId;
        std::int32_t lastId;
        /// Seconds since the epoch, inclusive.
        std::int64_t startTime;
        /// Only events of the version in Settings::VERSION_NAME, and those whose version has no name.
        bool fromUpdate;
        /// The visitor will ask for members of the rows.
        bool withMembers = false;
    };

    /// Is told the rows of one id; true ends the visit.
    using Visitor = std::function<bool(EventRows& rows)>;

    /// Opens DevicePaths::EventLog.
    AlarmRuleDbHelper();
    ~AlarmRuleDbHelper();
    AlarmRuleDbHelper(const AlarmRuleDbHelper&) = delete;
    AlarmRuleDbHelper& operator=(const AlarmRuleDbHelper&) = delete;

    /// The events of `eventId` since `startTime`, with `fromUpdate` those of the current version and of none. Asks the
    /// log each time.
    EventList GetEventList(std::int32_t eventId, std::int64_t startTime, bool fromUpdate);

    /// As GetEventList for each id from `firstId` to `lastId`, ascending, with the same lines in the log, but asks the
    /// log at most once for as long as it doesn't change. Calls `visitor` for the ids that have rows since the start;
    /// the others cost nothing. False when the log can't be opened or asked: its lines come for each of the first
    /// LONGEST_UNREADABLE_RANGE ids, the rest of a longer range is left out.
    bool VisitEvents(const Query& query, const Visitor& visitor);

    /// Says that these members of the rows of these ids will be asked for; see EventMemberCache::Foresee.
    void Foresee(std::int32_t firstId, std::int32_t lastId, const std::vector<std::string>& keys)
    {
        mMembers.Foresee(firstId, lastId, keys);
    }

    static constexpr std::int64_t LONGEST_UNREADABLE_RANGE = 100000;

private:
    void InitDatabaseHelper();
    bool OpenDatabase();
    void InitEventInfoUnionTable();
    EventList GetEventListFromDb(bool fromUpdate, const std::string& versionName, std::uint64_t recordCount);
    void CleanDatabaseHelper();

    bool EnsureOpen();
    std::uint64_t RunQuery(std::int32_t eventId, std::int64_t startTime);
    void TakeVersionName();
    void TellVersionName() const;
    EventList QueryRows(std::int32_t eventId) override;
    EventLogIndex::State RefreshIndex();
    bool VisitEntries(std::int64_t firstId, const Visitor& visitor);
    bool VisitEntry(std::size_t entryNumber, const EventLogIndex::Filter& filter, const EventLogIndex::Counts& found,
        const EventLogIndex::Counts& counts, const Visitor& visitor);
    bool VisitByQuery(std::int32_t eventId, const Visitor& visitor);
    bool VisitUnreadable(std::int64_t firstId, const Visitor& visitor);
    void VisitBrokenOff(std::int64_t firstId, const Visitor& visitor);

    FT::sql::SqlDatabase mDatabase;
    std::unique_ptr<FT::sql::SqlTable> mEventInfoUnionTable;
    EventLogIndex mIndex;
    EventMemberCache mMembers;
    Query mQuery{}; // that of the visit under way
    std::vector<std::uint32_t> mPositions; // room for the rows of one id
    std::string mVersionName; // current when the last query began
};

#endif
