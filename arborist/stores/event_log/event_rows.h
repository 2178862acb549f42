#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_ROWS_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_ROWS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "arborist/stores/event_log/event_log_index.h"
#include "arborist/stores/event_log/event_member_cache.h"
#include "arborist/stores/event_log/log_event.h"

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

    /// Where the rows of an entry of the index are found.
    struct Indexed {
        const EventLogIndex& index;
        EventMemberCache& members;
        /// Room for their positions; empty.
        std::vector<std::uint32_t>& positions;
        std::size_t entryNumber;
        EventLogIndex::Range range;
        EventLogIndex::Filter filter;
    };

    /// Rows of the index: `found` are those since the start, of any version, and `count` those that count.
    EventRows(Source& source, const Indexed& rows, std::size_t found, std::size_t count);
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
    EventMember GetMember(std::size_t row, std::size_t keyNumber) const
    {
        return mIndexed ? mIndexed->members.Get(mIndexed->positions[row], keyNumber) : GetWholeMember(row);
    }

    /// What MemberTest tells most rows by without a look at their text; see EventMemberCache::GetCode. UNKNOWN for rows
    /// that were read whole.
    MemberStore::Code GetCode(std::size_t row, std::size_t keyNumber) const
    {
        return mIndexed ? mIndexed->members.GetCode(mIndexed->positions[row], keyNumber) : MemberStore::UNKNOWN;
    }

    /// Day of the month in local time; 0 when the row has none.
    std::int32_t GetDayOfMonth(std::size_t row)
    {
        SelectRows();
        return mIndexed ? mIndexed->index.GetDayOfMonth(mIndexed->positions[row]) : GetWholeDay(row);
    }

    /// Adds each row that has a day to the count of that day.
    void CountDays(EventLogIndex::DayCounts& days);

private:
    void SelectRows()
    {
        if (mIndexed && mIndexed->positions.empty()) {
            mIndexed->index.Select(mIndexed->range, mIndexed->filter, mIndexed->positions);
        }
    }
    void ReadWhole();
    EventMember GetWholeMember(std::size_t row) const;
    std::int32_t GetWholeDay(std::size_t row) const;

    Source& mSource;
    std::optional<Indexed> mIndexed; // without, the rows were read whole
    std::int32_t mEventId;
    std::size_t mFound;
    std::size_t mCount;
    EventList mEvents;
};

#endif
