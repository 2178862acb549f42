#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_LOG_READER_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_LOG_READER_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "arborist/stores/event_log/event_log_snapshot.h"
#include "arborist/stores/event_log/id_dictionary.h"
#include "arborist/stores/sql/sql_database.h"

namespace FT::sql {
class SqlCursor;
}

/// Reads the event log into a snapshot. Call Read once for each object.
///
/// Checks the tables first in which a query searches, as a search may miss in a damaged table what a scan finds. Then
/// reads an undamaged log in one pass, which touches everything that the query for any id touches, so that no such
/// query can fail. If the pass fails, reads each row by itself, and leaves an id with an unreadable row to its own
/// query. If rows may be found or not, depending on the way to them, leaves every id to its own query.
class EventLogReader {
public:
    explicit EventLogReader(const FT::sql::Sqlite3Db& database);

    /// Null if the query for an id can't even be prepared.
    std::shared_ptr<const EventLogSnapshot> Read();

private:
    // A row of a version: the number of its name, unless the row number alone doesn't determine it.
    struct Version {
        std::uint16_t number = EventLogSnapshot::UNNAMED_VERSION;
        bool isKnown = false;
        bool isAmbiguous = false;
    };

    // A row of the join.
    struct Row;

    void ReadInTableOrder();
    void ReadInAnyOrder();
    bool ReadInOnePass();
    void ReadRowByRow();
    void ReadIds();
    bool ReadIdsOfTable();
    bool ReadIdsFrom(const std::string& from);
    void TakeId(const FT::sql::SqlCursor& row);
    bool ReadVersions();
    void LeaveDroppedToQueries();
    void LeaveAllToQueries();
    void Clear();
    void TakeVersion(std::int64_t rowNumber, bool isNumber, const std::string& name);
    Version& VersionOf(std::int64_t rowNumber);
    void TakeRow(const Row& row);
    std::uint32_t NumberOfId(std::int32_t id);

    const FT::sql::Sqlite3Db& mDb;
    EventLogSnapshot::Origin mOrigin;
    std::vector<std::int32_t> mIds; // in order of appearance
    IdDictionary mNumberOfId;
    std::vector<bool> mNeedsQuery; // of each id
    std::vector<std::uint32_t> mIdOfRow;
    EventLogSnapshot::Columns mColumns;
    EventLogSnapshot::VersionNumbers mVersionNumbers;
    EventLogSnapshot::Unseen mDropped; // ids of rows without partners
    bool mIsInOrder = true; // of their row ids
    std::int64_t mLastRowId = 0;
    std::vector<Version> mVersions; // by row number
    std::map<std::int64_t, Version> mOtherVersions; // no hash table, as a log could choose numbers that collide
};

#endif
