#ifndef ARBORIST_STORES_EVENT_ROWS_H
#define ARBORIST_STORES_EVENT_ROWS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "arborist/stores/event_log_index.h"
#include "arborist/stores/event_member_cache.h"
#include "arborist/stores/log_event.h"

/// The rows of one event id that a query of the event log found, in the order in which SQLite gives them. What is not
/// asked for is not read. Lives for the length of one call of a visitor; see AlarmRuleDbHelper::VisitEvents.
class EventRows {
public:
    using EventList = std::vector<std::shared_ptr<LogEvent>>;
    /// Asks the log again for rows that can't be told from the index.
    class Source {
    public:
        virtual EventList QueryRows(std::int32_t eventId) = 0;

    protected:
        ~Source() = default;
    };

    /// Rows of the index. `found` are those since the start, of any version.
    EventRows(Source& source, const EventLogIndex& index, EventMemberCache& cache, std::size_t entryNumber,
        const EventLogIndex::Filter& filter, std::size_t found);
    /// Rows that were read whole.
    EventRows(Source& source, std::int32_t eventId, EventList events, std::size_t found);

    std::int32_t GetEventId() const { return mEventId; }
    /// Rows since the start time, of any version; at least one.
    std::size_t GetFoundCount() const { return mFound; }
    /// Those that count. None when all belong to another version.
    std::size_t GetCount() const { return mCount; }

    /// Makes the members `keys` of all rows ready for GetMember. Call it before anything is asked of single rows: if
    /// the log was changed meanwhile, the rows are read again and there may be more or fewer.
    void LoadMembers(const std::vector<std::string>& keys);
    /// The member `keys[keyNumber]` of a row, 0 to GetCount() - 1. The text lives until the next LoadMembers.
    EventMember GetMember(std::size_t row, std::size_t keyNumber) const;

    /// Day of the month in local time; 0 when the row has none.
    std::int32_t GetDayOfMonth(std::size_t row);

private:
    void SelectRows();
    void ReadWhole();

    Source& mSource;
    const EventLogIndex* mIndex = nullptr; // null when the rows were read whole
    EventMemberCache* mCache = nullptr;
    std::size_t mEntryNumber = 0;
    EventLogIndex::Filter mFilter{};
    std::int32_t mEventId;
    std::size_t mFound;
    std::size_t mCount;
    std::vector<std::uint32_t> mPositions;
    EventList mEvents;
};

#endif
