#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_LOG_SNAPSHOT_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_LOG_SNAPSHOT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "arborist/stores/event_log/local_days.h"
#include "arborist/stores/event_log/row_bits.h"
#include "arborist/utilities/text_hash.h"

/// The rows of one state of the event log, without their texts, grouped by event id as queries for each id would find
/// them. Takes ten bytes a row and about ten an id. Made by SnapshotBuilder; immutable.
class EventLogSnapshot {
public:
    /// Version number of a row without a version name.
    static constexpr std::uint16_t UNNAMED_VERSION = 0;

    /// One count for each day of the month, from 1.
    using DayCounts = std::array<std::int32_t, 32>;

    /// The columns of the rows; a row is an index into each of them.
    struct Columns {
        std::vector<std::uint32_t> times;
        std::vector<std::uint32_t> rowIds; ///< what Origin::rowName names
        std::vector<std::uint16_t> versions;
    };
    using VersionNumbers = std::unordered_map<std::string, std::uint16_t, TextHash>;

    /// The state of the log from which the rows were read, and how complete they are.
    struct Origin {
        /// Data version of the connection; see ReadDataVersion.
        std::int64_t dataVersion = 0;
        /// Rows later than this are left out. A search as of an earlier moment leaves out more: see Filter.
        std::int64_t lastMoment = 0;
        /// The column of event_info by which a row is found again; empty if there is none.
        std::string rowName;
        /// True if the query for an id returns rows in the order of event_info; otherwise their order isn't known.
        bool isInTableOrder = false;
        /// True if a search in event_info for the number of a row in the snapshot finds that row or fails.
        bool canSearchEvents = true;
        /// True if only ids are known and no rows: every id, known or not, must be queried by itself.
        bool isEachIdAsked = false;
        /// Where only ids are known: true if no other id can have rows.
        bool areAllIdsKnown = false;
        /// SQLite's message for the error that ends the query of every id after the rows in the snapshot; empty if
        /// there is none.
        std::string breakError;
        /// SQLite's message for damage because of which queries may miss rows without an error; empty if there is none.
        std::string damage;
    };

    /// For each id the moments of its rows that no query finds for lack of a partner, in ascending order; the greatest
    /// number for one without a time.
    using Unseen = std::map<std::int32_t, std::vector<std::int64_t>>;

    /// The rows of one event id, in the order in which the query for that id returns them.
    struct Entry {
        std::int32_t eventId;
        std::uint32_t begin;
        std::uint32_t end; ///< one behind the last
        bool isAscending; ///< times never fall from row to row
        bool needsQuery; ///< the rows are not in the snapshot: run the query of this id
    };

    /// Rows of an entry.
    struct RowRange {
        std::uint32_t begin;
        std::uint32_t end; ///< one behind the last
        bool isSince; ///< all lie in the time that was asked for
    };

    /// Selects the rows of an id that count.
    struct Filter {
        std::int64_t start; ///< seconds since the epoch, inclusive
        std::optional<std::uint16_t> version; ///< counts beside the unnamed one; all count where there is none
        std::int64_t last = std::numeric_limits<std::int64_t>::max(); ///< seconds since the epoch, inclusive

        bool operator==(const Filter&) const = default;
    };

    /// `idNumbers` gives, for each row in the order of the log, the index of its id in `ids`.
    EventLogSnapshot(std::vector<std::int32_t> ids, std::vector<bool> needsQuery, std::vector<std::uint32_t> idNumbers,
        Columns columns, VersionNumbers versionNumbers, Unseen unseen, Origin origin);

    const Origin& GetOrigin() const { return mOrigin; }
    std::size_t GetRowCount() const { return mColumns.times.size(); }

    /// Entries are sorted by id.
    std::size_t GetEntryCount() const { return mIds.size(); }
    Entry GetEntry(std::size_t number) const
    {
        return {mIds[number], mBegins[number], mBegins[number + 1], mIsAscending[number], mNeedsQuery[number]};
    }
    /// Number of the first entry with an id of at least `id`.
    std::size_t FirstEntryFrom(std::int64_t id) const;
    const std::vector<std::int32_t>& GetIds() const { return mIds; }

    /// A superset of the entry's rows from `start` to `last`, both inclusive.
    RowRange RangeSince(
        const Entry& entry, std::int64_t start, std::int64_t last = std::numeric_limits<std::int64_t>::max()) const;
    /// The same if it is known that there are `found` rows since a start, and none is too late.
    static RowRange RangeOf(const Entry& entry, std::size_t found)
    {
        const std::uint32_t first = entry.end - static_cast<std::uint32_t>(found);
        return {entry.isAscending ? first : entry.begin, entry.end, entry.isAscending};
    }
    /// The number of the version with this name; UNNAMED_VERSION if no row has it.
    std::uint16_t NumberOfVersion(const std::string& name) const;
    std::size_t Count(const RowRange& range, const Filter& filter) const;
    /// Counts the rows that pass the filter by their day of the month.
    void CountDays(const RowRange& range, const Filter& filter, LocalDays& localDays, DayCounts& days) const;
    RowBits Select(const RowRange& range, const Filter& filter) const;
    /// Appends the times of the rows that pass the filter.
    void AppendTimes(const RowRange& range, const Filter& filter, std::vector<std::uint32_t>& times) const;
    std::uint32_t GetTime(std::uint32_t row) const { return mColumns.times[row]; }
    std::int64_t GetRowId(std::uint32_t row) const { return mColumns.rowIds[row]; }
    /// The time of the earliest row; nothing if there are none.
    std::optional<std::uint32_t> GetFirstTime() const { return mFirstTime; }
    /// True if one of these ids has a row that no query finds, from `start` to `last` or at an unknown time.
    bool HasUnseen(std::int32_t firstId, std::int32_t lastId, std::int64_t start,
        std::int64_t last = std::numeric_limits<std::int64_t>::max()) const;
    /// The moments of such rows of these ids, but not those without a time, in any order.
    std::vector<std::int64_t> ListUnseen(std::int32_t firstId, std::int32_t lastId) const;
    /// Counts the rows that pass the filter and are later than `time`.
    std::size_t CountAfter(const RowRange& range, const Filter& filter, std::int64_t time) const;
    /// The same by their day of the month.
    void CountDaysAfter(
        const RowRange& range, const Filter& filter, std::int64_t time, LocalDays& localDays, DayCounts& days) const;
    /// True if the row ids of every entry ascend that needs no query.
    bool AreRowIdsAscending() const { return mAreRowIdsAscending; }

private:
    std::vector<std::uint32_t> SortIds(std::vector<bool> needsQuery);
    void GroupRows(const std::vector<std::uint32_t>& entryOfRow);
    void LookAtOrder();
    template <typename Visit>
    auto WithCondition(const RowRange& range, const Filter& filter, Visit visit) const;

    Origin mOrigin;
    // The columns of the entries.
    std::vector<std::int32_t> mIds;
    std::vector<std::uint32_t> mBegins; // followed by the end of the last
    std::vector<bool> mIsAscending;
    std::vector<bool> mNeedsQuery;
    Columns mColumns;
    VersionNumbers mVersionNumbers;
    Unseen mUnseen;
    bool mAreRowIdsAscending = true;
    std::optional<std::uint32_t> mFirstTime;
};

#endif
