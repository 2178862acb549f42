#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_LOG_INDEX_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_LOG_INDEX_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <unordered_map>
#include <vector>

#include "arborist/stores/event_log/group_numbers.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_scan.h"
#include "arborist/utilities/text_hash.h"

/// The event log's rows without their texts, grouped by event id: what a query for one id finds, for all ids, by one
/// reading of the log.
///
/// Ten bytes a row. Holds what the log held at the last Refresh; the texts stay in the file. Used by one thread.
class EventLogIndex {
public:
    /// The rows of one event id: positions from `begin` to before `end`, in the order in which SQLite gave them.
    struct Entry {
        std::int32_t eventId;
        std::uint32_t begin;
        std::uint32_t end;
        /// Times never fall from row to row.
        bool isAscending;
        /// Some row doesn't fit here (a time that is no number or out of range, a row that can't be found again): only
        /// a query of its own tells the rows of this id.
        bool needsQuery;
    };

    /// Which rows of an id count; see FilterFor.
    struct Filter {
        /// Seconds since the epoch, inclusive.
        std::int64_t start;
        bool byVersion;
        /// The number of the version that counts beside the unnamed one.
        std::uint16_t version;
    };

    /// One count for each day of the month, from 1.
    using DayCounts = std::array<std::int32_t, 32>;

    /// How the index stands to the log.
    enum class State {
        READY, ///< holds all rows
        BROKEN_OFF, ///< reading failed on the way, with GetError: holds the rows before
        UNREADABLE ///< the log can't be asked (no such table or column, locked, no database): holds nothing
    };

    /// How many rows of each entry count: worked out when first asked for and kept as long as few filters are used.
    /// Of two filters at a time; valid until the third and the next Refresh.
    class Counts {
    public:
        Counts(const EventLogIndex& index, const Filter& filter, std::uint32_t* counts)
            : mIndex(index), mFilter(filter), mCounts(counts)
        {
        }

        std::size_t Of(std::size_t entryNumber) const
        {
            if (mCounts == nullptr) {
                return mIndex.Count(mIndex.GetEntries()[entryNumber], mFilter);
            }
            std::uint32_t& count = mCounts[entryNumber];
            if (count == NOT_COUNTED) {
                count = static_cast<std::uint32_t>(mIndex.Count(mIndex.GetEntries()[entryNumber], mFilter));
            }
            return count;
        }

    private:
        const EventLogIndex& mIndex;
        Filter mFilter;
        std::uint32_t* mCounts;
    };

    explicit EventLogIndex(const FT::sql::Sqlite3Db& database);

    /// Reads the log if it was changed since the last time, by SQLite's data version, or never read.
    State Refresh();
    /// Whether the log is still what was read. Asked inside a transaction it holds for what the transaction sees.
    bool IsCurrent() const;
    /// Another number for each time that the log was read: positions don't outlive it.
    std::uint64_t GetGeneration() const { return mGeneration; }
    /// SQLite's words for what broke the reading off.
    const std::string& GetError() const { return mError; }

    /// Ascending by id; ids without rows have no entry. Valid until the next Refresh, like all positions.
    const std::vector<Entry>& GetEntries() const { return mEntries; }
    /// Number of all rows.
    std::size_t GetRowCount() const { return mTimes.size(); }

    /// Rows at or after `start`, of any version.
    static Filter FilterFor(std::int64_t start) { return {start, false, 0}; }
    /// Of these the rows of the version with this name, and those whose version has no name.
    Filter FilterFor(std::int64_t start, const std::string& versionName) const;
    std::size_t Count(const Entry& entry, const Filter& filter) const;
    Counts CountsFor(const Filter& filter);
    /// The first row of an ascending entry that lies at or after `start`; the first row of any other.
    std::uint32_t FirstSince(const Entry& entry, std::int64_t start) const;
    /// Number of the entry of this id; GroupNumbers::NONE without one.
    std::uint32_t FindEntry(std::int32_t eventId) const { return mEntryOfId.Find(eventId); }
    /// The positions of the rows that count.
    void Select(const Entry& entry, const Filter& filter, std::vector<std::uint32_t>& positions) const;

    /// Adds the rows that count to the counts of their days of the month.
    void CountDays(const Entry& entry, const Filter& filter, DayCounts& days);

    std::int64_t GetTime(std::uint32_t position) const { return mTimes[position]; }
    /// The row's rowid in event_info.
    std::int64_t GetRowId(std::uint32_t position) const { return mRowIds[position]; }
    /// Day of the month of the row in local time, 1 to 31. Kept from the first time on, whatever the time zone does.
    std::int32_t GetDayOfMonth(std::uint32_t position)
    {
        const int day = mVersions[position] >> VERSION_BITS;
        return day != 0 ? day : ReadDayOfMonth(position);
    }
    /// True when the rows of every entry have ascending rowids, as they do unless SQLite chose another order.
    bool AreRowIdsAscending() const { return mAreRowIdsAscending; }

private:
    static constexpr std::uint16_t UNNAMED_VERSION = 0;
    static constexpr int VERSION_BITS = 11;
    static constexpr std::uint16_t VERSION_MASK = (1 << VERSION_BITS) - 1;
    static constexpr std::uint32_t NOT_COUNTED = 0xFFFFFFFFU;

    struct Scan;
    // The day of the month that an hour lies in; 0 when it isn't known or the hour lies in two.
    struct DayOfHour {
        std::uint32_t start = 0;
        int day = 0;
    };
    struct CountsOfFilter {
        Filter filter;
        std::vector<std::uint32_t> counts;
    };

    bool Passes(std::uint32_t position, const Filter& filter) const
    {
        const int version = mVersions[position] & VERSION_MASK;
        const bool isOfVersion = !filter.byVersion | (version == UNNAMED_VERSION) | (version == filter.version);
        return isOfVersion & (std::int64_t{mTimes[position]} >= filter.start);
    }

    std::int32_t ReadDayOfMonth(std::uint32_t position);
    static std::int64_t ReadDataVersion(const FT::sql::Sqlite3Db& database);
    void Clear();
    State Read();
    bool ReadVersions(Scan& scan);
    void ReadRows(Scan& scan);
    void TakeRow(Scan& scan, const FT::sql::ScannedRow& row);
    void Group(Scan& scan);

    const FT::sql::Sqlite3Db& mDb;
    State mState = State::UNREADABLE;
    std::int64_t mDataVersion;
    std::uint64_t mGeneration = 0;
    std::string mError;
    std::vector<Entry> mEntries;
    GroupNumbers mEntryOfId;
    bool mAreRowIdsAscending = true;
    std::array<DayOfHour, 1024> mDays;
    std::list<CountsOfFilter> mCounts; // the one asked for last at the end
    // The columns of the rows.
    std::vector<std::uint32_t> mTimes;
    std::vector<std::uint32_t> mRowIds;
    std::vector<std::uint16_t> mVersions; // number of the version, and above it the day of the month, 0 while not known
    // Number of each version name; 0 is the empty name.
    std::unordered_map<std::string, std::uint16_t, TextHash> mVersionNumbers;
};

#endif
