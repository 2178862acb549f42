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

/// Reads the event log into a snapshot. One Read for each object.
///
/// A log without damage is read in one pass, which touches all that the query for any id would touch: nothing that it
/// read can fail there. Where the pass breaks off, each row is read by itself, and an id with a row that can't be read
/// is left to its own query. Where SQLite runs that query another way than through all of event_info, the whole file is
/// checked first, and in a damaged one every id is left to its query.
class EventLogReader {
public:
    explicit EventLogReader(const FT::sql::Sqlite3Db& database);

    /// Null when the query for an id can't even be prepared.
    std::shared_ptr<const EventLogSnapshot> Read();

private:
    // A version row: the number of its name, unless that can't be told from the row number alone.
    struct Version {
        std::uint16_t number = EventLogSnapshot::UNNAMED_VERSION;
        bool isKnown = false;
        bool isAmbiguous = false;
    };

    // What the join says of a row. Numbers that are none are missing.
    struct Row;

    bool ReadInOnePass();
    void ReadRowByRow();
    void ReadIds();
    bool ReadVersions();
    bool IsFileSound() const;
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
    std::vector<Version> mVersions; // by row number
    std::map<std::int64_t, Version> mOtherVersions; // a hash of numbers that a log may choose would not be safe
};

#endif
