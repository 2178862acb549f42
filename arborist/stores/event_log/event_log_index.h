#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_LOG_INDEX_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_LOG_INDEX_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <unordered_map>
#include <vector>

#include "arborist/stores/event_log/id_table.h"
#include "arborist/stores/event_log/packed_column.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_scan.h"
#include "arborist/utilities/text_hash.h"

/// The event log's rows without their texts, grouped by event id: what a query for one id finds, for all ids, by one
/// reading of the log.
///
/// Seven to ten bytes a row and some six an id. Holds what the log held at the last Refresh; the texts stay in the
/// file. Used by one thread.
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

    /// Rows of one entry among which are all since some start.
    struct Range {
        std::uint32_t begin;
        std::uint32_t end;
        /// There are no others among them.
        bool isSince;
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
                return mIndex.Count(mIndex.GetEntry(entryNumber), mFilter);
            }
            std::uint32_t& count = mCounts[entryNumber];
            if (count == NOT_COUNTED) {
                count = static_cast<std::uint32_t>(mIndex.Count(mIndex.GetEntry(entryNumber), mFilter));
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

    /// The ids that have rows, ascending: that of each entry. Valid until the next Refresh, like all positions.
    const IdTable::Ids& GetIds() const { return mIds; }
    std::size_t GetEntryCount() const { return mIds.size(); }
    Entry GetEntry(std::size_t number) const
    {
        return {mIds[number], mBegins[number], mBegins[number + 1], mIsAscending[number], mNeedsQuery[number]};
    }
    /// Number of the first entry whose id is not below `id`.
    std::size_t FirstEntryFrom(std::int64_t id) const;
    /// Number of all rows.
    std::size_t GetRowCount() const { return mTimes.GetCount(); }

    /// Rows at or after `start`, of any version.
    static Filter FilterFor(std::int64_t start) { return {start, false, 0}; }
    /// Of these the rows of the version with this name, and those whose version has no name.
    Filter FilterFor(std::int64_t start, const std::string& versionName) const;
    std::size_t Count(const Entry& entry, const Filter& filter) const;
    Counts CountsFor(const Filter& filter);
    /// The first row of an ascending entry that lies at or after `start`; the first row of any other.
    std::uint32_t FirstSince(const Entry& entry, std::int64_t start) const;
    /// The rows of an entry of which `found` lie since the start that the filter has.
    static Range RangeOf(const Entry& entry, std::size_t found)
    {
        const std::uint32_t first = entry.end - static_cast<std::uint32_t>(found);
        return {entry.isAscending ? first : entry.begin, entry.end, entry.isAscending};
    }
    /// The positions of the rows that count.
    void Select(const Range& range, const Filter& filter, std::vector<std::uint32_t>& positions) const;
    /// Adds the rows that count to the counts of their days of the month.
    void CountDays(const Range& range, const Filter& filter, DayCounts& days) const;

    std::int64_t GetTime(std::uint32_t position) const { return mTimes[position]; }
    /// The row's rowid in event_info.
    std::int64_t GetRowId(std::uint32_t position) const { return mRowIds[position]; }
    /// Day of the month of the row in local time, 1 to 31, as it was when the log was read.
    std::int32_t GetDayOfMonth(std::uint32_t position) const { return mVersions[position] >> VERSION_BITS; }
    /// True when the rows of every entry have ascending rowids, as they do unless SQLite chose another order.
    bool AreRowIdsAscending() const { return mAreRowIdsAscending; }

private:
    static constexpr std::uint16_t UNNAMED_VERSION = 0;
    static constexpr int VERSION_BITS = 11;
    static constexpr std::uint16_t VERSION_MASK = (1 << VERSION_BITS) - 1;
    static constexpr std::uint32_t NOT_COUNTED = 0xFFFFFFFFU;
    // Half of what three bytes hold, in seconds: 97 days before and after the first row.
    static constexpr std::uint32_t TIME_HEAD_ROOM = 1U << 23;

    struct Scan;
    struct CountsOfFilter {
        Filter filter;
        std::vector<std::uint32_t> counts;
    };

    static bool IsOfVersion(std::uint16_t versionAndDay, const Filter& filter)
    {
        const int version = versionAndDay & VERSION_MASK;
        return !filter.byVersion | (version == UNNAMED_VERSION) | (version == filter.version);
    }
    bool Passes(std::uint32_t position, const Filter& filter) const
    {
        const bool isOfVersion = IsOfVersion(mVersions[position], filter);
        return isOfVersion & (std::int64_t{mTimes[position]} >= filter.start);
    }

    static std::int64_t ReadDataVersion(const FT::sql::Sqlite3Db& database);
    void Clear();
    State Read();
    bool ReadVersions(Scan& scan);
    void ReadRows(Scan& scan);
    void TakeRow(Scan& scan, const FT::sql::ScannedRow& row);
    void Group(Scan& scan);
    void GroupIds(Scan& scan);
    void GroupRows(const PackedColumn& entryOfRow);

    const FT::sql::Sqlite3Db& mDb;
    State mState = State::UNREADABLE;
    std::int64_t mDataVersion;
    std::uint64_t mGeneration = 0;
    std::string mError;
    // The columns of the entries.
    IdTable::Ids mIds;
    PackedColumn mBegins; // and the end of the last
    std::vector<bool> mIsAscending;
    std::vector<bool> mNeedsQuery;
    bool mAreRowIdsAscending = true;
    std::list<CountsOfFilter> mCounts; // the one asked for last at the end
    // The columns of the rows.
    PackedColumn mTimes{TIME_HEAD_ROOM};
    PackedColumn mRowIds;
    std::vector<std::uint16_t> mVersions; // number of the version, and above it the day of the month
    // Number of each version name; 0 is the empty name.
    std::unordered_map<std::string, std::uint16_t, TextHash> mVersionNumbers;
};

#endif
