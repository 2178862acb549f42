#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_LOG_SNAPSHOT_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_LOG_SNAPSHOT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "arborist/stores/event_log/local_days.h"
#include "arborist/stores/event_log/row_bits.h"
#include "arborist/utilities/text_hash.h"

/// The rows of one state of the event log without their texts, grouped by event id: what a query for one id finds, for
/// all ids. Ten bytes a row and some ten an id. Built by EventLogReader; doesn't change afterwards.
class EventLogSnapshot {
public:
    /// The version that a row without a version name has.
    static constexpr std::uint16_t UNNAMED_VERSION = 0;

    /// One count for each day of the month, from 1.
    using DayCounts = std::array<std::int32_t, 32>;

    /// The columns of the rows. A row is a place in each of them.
    struct Columns {
        std::vector<std::uint32_t> times;
        std::vector<std::uint32_t> rowIds; ///< what Origin::rowName names
        std::vector<std::uint16_t> versions;
    };
    using VersionNumbers = std::unordered_map<std::string, std::uint16_t, TextHash>;

    /// Where the rows come from, and how far they are all there is.
    struct Origin {
        /// That of the connection, see LogState.
        std::int64_t dataVersion = 0;
        /// The column of event_info by which a row is found again. Empty where there is none.
        std::string rowName;
        /// The query for an id meets its rows in the order of event_info. Otherwise in an order that isn't known.
        bool isInTableOrder = false;
        /// Ids are known but no rows: each id has to be asked by its own query, those that are not known included.
        bool isEachIdAsked = false;
        /// SQLite's words for what ends the query of every id, behind the rows that are here. Empty for none.
        std::string breakError;
    };

    /// The rows of one event id, in the order in which the query for that id finds them.
    struct Entry {
        std::int32_t eventId;
        std::uint32_t begin;
        std::uint32_t end; ///< one behind the last
        bool isAscending; ///< times never fall from row to row
        bool needsQuery; ///< only the id's own query tells its rows
    };

    /// Rows of an entry.
    struct Run {
        std::uint32_t begin;
        std::uint32_t end; ///< one behind the last
        bool isSince; ///< all lie at or after the start that was asked for
    };

    /// Which rows of an id count.
    struct Filter {
        std::int64_t start; ///< seconds since the epoch, inclusive
        std::optional<std::uint16_t> version; ///< counts beside the unnamed one; all count where there is none

        bool operator==(const Filter&) const = default;
    };

    /// The rows of each id in the order of the log, which `idNumbers` tells by the place of their id in `ids`.
    EventLogSnapshot(std::vector<std::int32_t> ids, std::vector<bool> needsQuery, std::vector<std::uint32_t> idNumbers,
        Columns columns, VersionNumbers versionNumbers, Origin origin);

    const Origin& GetOrigin() const { return mOrigin; }
    std::size_t GetRowCount() const { return mColumns.times.size(); }

    /// Entries stand in ascending order of their ids.
    std::size_t GetEntryCount() const { return mIds.size(); }
    Entry GetEntry(std::size_t number) const
    {
        return {mIds[number], mBegins[number], mBegins[number + 1], mIsAscending[number], mNeedsQuery[number]};
    }
    /// Number of the first entry whose id is not below `id`.
    std::size_t FirstEntryFrom(std::int64_t id) const;
    const std::vector<std::int32_t>& GetIds() const { return mIds; }

    /// The rows of an entry that may lie at or after `start`: all that do are among them.
    Run RunSince(const Entry& entry, std::int64_t start) const;
    /// The same where it is known that `found` rows do.
    static Run RunOf(const Entry& entry, std::size_t found)
    {
        const std::uint32_t first = entry.end - static_cast<std::uint32_t>(found);
        return {entry.isAscending ? first : entry.begin, entry.end, entry.isAscending};
    }
    /// The number of the version with that name; UNNAMED_VERSION where no row has it.
    std::uint16_t NumberOfVersion(const std::string& name) const;
    std::size_t Count(const Run& run, const Filter& filter) const;
    /// Adds the rows that count to the counts of their days of the month.
    void CountDays(const Run& run, const Filter& filter, LocalDays& localDays, DayCounts& days) const;
    RowBits Select(const Run& run, const Filter& filter) const;
    std::uint32_t GetTime(std::uint32_t row) const { return mColumns.times[row]; }
    std::int64_t GetRowId(std::uint32_t row) const { return mColumns.rowIds[row]; }
    /// Whether the row ids of every entry rise.
    bool AreRowIdsAscending() const { return mAreRowIdsAscending; }

private:
    std::vector<std::uint32_t> SortIds(std::vector<bool> needsQuery);
    void GroupRows(const std::vector<std::uint32_t>& entryOfRow);
    void LookAtOrder();
    template <typename Condition>
    void CountDaysIf(const Run& run, LocalDays& localDays, DayCounts& days, Condition passes) const;
    // Without branches, so that compilers make one loop over several rows at once of it.
    bool Passes(std::uint32_t row, const Run& run, const Filter& filter) const
    {
        const std::uint16_t version = mColumns.versions[row];
        const bool isOfVersion = !filter.version.has_value() | (version == UNNAMED_VERSION) |
            (version == filter.version.value_or(UNNAMED_VERSION));
        return isOfVersion & (run.isSince | (std::int64_t{mColumns.times[row]} >= filter.start));
    }

    Origin mOrigin;
    // The columns of the entries.
    std::vector<std::int32_t> mIds;
    std::vector<std::uint32_t> mBegins; // and the end of the last
    std::vector<bool> mIsAscending;
    std::vector<bool> mNeedsQuery;
    Columns mColumns;
    VersionNumbers mVersionNumbers;
    bool mAreRowIdsAscending = true;
};

#endif
