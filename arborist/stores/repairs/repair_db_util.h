#ifndef ARBORIST_STORES_REPAIRS_REPAIR_DB_UTIL_H
#define ARBORIST_STORES_REPAIRS_REPAIR_DB_UTIL_H

#include <cstdint>
#include <memory>
#include <string>

class RepairTableReader;

namespace FT::sql {
class SqlDatabase;
}

/// Stores the date of each repair: one row for each repair id, in a database of its own that outlives the process.
///
/// The database is open as long as the object exists; make one object for each use. Not thread-safe. If two objects
/// write at the same time, in one process or in two, SQLite's file lock makes the second fail. An operation that fails
/// logs a line and changes no row.
class RepairDbUtil {
public:
    /// Opens DevicePaths::RepairDatabase; creates its folder, file and table if they are missing.
    RepairDbUtil();
    ~RepairDbUtil();
    RepairDbUtil(const RepairDbUtil&) = delete;
    RepairDbUtil& operator=(const RepairDbUtil&) = delete;

    /// Records that the repair was carried out now.
    void SaveRepairDataToDb(const std::string& repairId);
    /// Local time of the latest repair, "%Y-%m-%d %H:%M:%S"; empty if there is none. An id with a single quote can be
    /// saved but not queried: its query fails.
    std::string QueryRepairDate(const std::string& repairId);
    /// True if the last query got no answer although there may be one: the store could not be read, or the repair is
    /// recorded without a date.
    bool HasFailed() const { return mHasFailed; }
    /// QueryRepairDate for an object that is used again: logs the lines that opening logs for an existing table, then
    /// stores the date in `date`. If the table is gone or can't be read, returns false and logs nothing.
    bool QueryAgain(const std::string& repairId, std::string& date);

private:
    friend struct RepairDbUtilPeer; // tests reach the private steps through it

    bool OpenDb();
    void CloseDb();
    bool CreateRepairRecordTable(const std::string& tableName);
    bool GetRepairDataRecord(const std::string& repairId, std::int32_t& id, std::string& date);
    /// True if a row has this id. A row without an id counts as one with the empty id.
    bool QueryRepairId(const std::string& repairId);
    void InsertRepairData(const std::string& repairId, const std::string& date);
    void UpDateRepairData(const std::string& repairId, const std::string& date);

    std::unique_ptr<FT::sql::SqlDatabase> mDatabase;
    bool mHasFailed = false;
    /// Used by QueryAgain. Destroy it before the database is closed.
    std::unique_ptr<RepairTableReader> mReader;
};

#endif
