#ifndef ARBORIST_STORES_REPAIRS_REPAIR_TABLE_READER_H
#define ARBORIST_STORES_REPAIRS_REPAIR_TABLE_READER_H

#include <memory>
#include <string>

#include "arborist/stores/sql/sql_cursor.h"

/// Reads the table of repairs where SqlTable would be slow. Destroy it before its database is closed.
class RepairTableReader {
public:
    static constexpr char TABLE_NAME[] = "repair_data";

    explicit RepairTableReader(const FT::sql::SqlDatabase& database) : mDatabase(database) {}

    /// Releases the lock of IsThere at its end.
    class Lock {
    public:
        explicit Lock(RepairTableReader& reader) : mReader(reader) {}
        ~Lock() { mReader.Release(); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        RepairTableReader& mReader;
    };

    /// True if the table exists; false also if the file can't be read. Logs nothing. After true the file stays locked
    /// for reading until Release, so that all queries in between belong to one transaction.
    bool IsThere();
    void Release();

    /// True if a row has exactly this id. Reads all rows; a failure logs the line of a failed statement.
    bool Holds(const std::string& repairId) const;

private:
    const FT::sql::SqlDatabase& mDatabase;
    /// The statement of IsThere, prepared once.
    std::unique_ptr<FT::sql::SqlCursor> mCount;
};

#endif
