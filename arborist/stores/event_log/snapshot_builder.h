#ifndef ARBORIST_STORES_EVENT_LOG_SNAPSHOT_BUILDER_H
#define ARBORIST_STORES_EVENT_LOG_SNAPSHOT_BUILDER_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "arborist/stores/event_log/event_log_snapshot.h"
#include "arborist/stores/event_log/id_dictionary.h"

/// Collects the rows of one reading of the event log, in the order of the log, and makes a snapshot of them. What a
/// snapshot can't hold is left to the query of its id.
class SnapshotBuilder {
public:
    /// A row of event_info with its partners.
    struct Row {
        bool isFound; ///< a query finds the row, as it has an id, a time and a version
        bool hasTime;
        bool isWhole; ///< all numbers are whole numbers in the log
        std::int64_t id;
        std::int64_t time;
        std::int64_t version; ///< the row number of its version
        std::int64_t rowId;
    };

    /// Leaves out rows later than `lastMoment`.
    explicit SnapshotBuilder(std::int64_t lastMoment);

    /// Makes room for so many rows: growing would need the memory twice.
    void Reserve(std::size_t rows);
    /// Adds a row of event_version. Add the versions before the rows. One without a whole number as row number is known
    /// by its name alone.
    void AddVersion(std::int64_t rowNumber, bool isNumber, const std::string& name);
    bool HasVersion(std::int64_t rowNumber) const { return FindVersion(rowNumber).isKnown; }
    void AddRow(const Row& row);
    /// Leaves an id to its query.
    void LeaveToQuery(std::int32_t id) { mNeedsQuery[NumberOf(id)] = true; }
    /// Leaves the ids of rows that no query finds to their queries.
    void LeaveDroppedToQueries();
    /// Leaves all ids that have rows to their queries.
    void LeaveAllToQueries();
    /// Leaves the ids to their queries whose rows can't be told apart by their row ids, as these don't ascend or belong
    /// to dropped rows, too.
    void LeaveUnorderedToQueries();
    /// True if the row ids of all rows ascend.
    bool IsInOrder() const { return mIsInOrder; }

    /// Makes the snapshot. Nothing is left in the builder.
    std::shared_ptr<const EventLogSnapshot> Build(EventLogSnapshot::Origin origin) &&;

private:
    // A row of event_version: the number of its name, unless the row number alone doesn't determine it.
    struct Version {
        std::uint16_t number = EventLogSnapshot::UNNAMED_VERSION;
        bool isKnown = false;
        bool isAmbiguous = false;
    };

    Version FindVersion(std::int64_t rowNumber) const;
    Version& VersionOf(std::int64_t rowNumber);
    std::uint32_t NumberOf(std::int32_t id);
    void Drop(const Row& row);

    std::int64_t mLastMoment;
    std::vector<std::int32_t> mIds; // in order of appearance
    IdDictionary mNumberOfId;
    std::vector<bool> mNeedsQuery; // of each id
    std::vector<std::uint32_t> mIdOfRow;
    EventLogSnapshot::Columns mColumns;
    EventLogSnapshot::VersionNumbers mVersionNumbers{{"", EventLogSnapshot::UNNAMED_VERSION}};
    EventLogSnapshot::Unseen mDropped;
    bool mIsInOrder = true;
    std::int64_t mLastRowId = std::numeric_limits<std::int64_t>::min();
    std::vector<Version> mVersions; // by row number
    std::map<std::int64_t, Version> mOtherVersions; // no hash table, as a log could choose numbers that collide
};

#endif
