#ifndef ARBORIST_STORES_REPAIRS_REPAIR_DB_UTIL_H
#define ARBORIST_STORES_REPAIRS_REPAIR_DB_UTIL_H

#include <cstdint>
#include <memory>
#include <string>

class RepairTableReader;

namespace FT::sql {
class SqlDatabase;
}

/// The dates of repairs: one row for each repair id, in a database of its own that outlives the process.
///
/// Open for the life of the object; make one for each use. Not locked: two writers, in one process or in two, meet at
/// SQLite's file lock, where the second fails. What fails logs its line and leaves the rows as they were.
class RepairDbUtil {
public:
    /// Opens DevicePaths::RepairDatabase, making folder, file and table where they are missing.
    RepairDbUtil();
    ~RepairDbUtil();
    RepairDbUtil(const RepairDbUtil&) = delete;
    RepairDbUtil& operator=(const RepairDbUtil&) = delete;

    /// Notes that the repair was carried out now.
    void SaveRepairDataToDb(const std::string& repairId);
    /// Local time of the latest repair, "%Y-%m-%d %H:%M:%S"; empty when there is none. An id with a single quote in it
    /// can be saved but not asked for: its query fails.
    std::string QueryRepairDate(const std::string& repairId);
    /// For an object that is used again: says what opening says of a table that is there, then QueryRepairDate into
    /// `date`. Says nothing and answers false when the table is gone or can't be read.
    bool QueryAgain(const std::string& repairId, std::string& date);

private:
    friend struct RepairDbUtilPeer; // tests reach the private steps through it

    bool OpenDb();
    void CloseDb();
    bool CreateRepairRecordTable(const std::string& tableName);
    bool GetRepairDataRecord(const std::string& repairId, std::int32_t& id, std::string& date);
    /// Whether a row has this id. A row without one counts as having the empty one.
    bool QueryRepairId(const std::string& repairId);
    void InsertRepairData(const std::string& repairId, const std::string& date);
    void UpDateRepairData(const std::string& repairId, const std::string& date);

    std::unique_ptr<FT::sql::SqlDatabase> mDatabase;
    /// For QueryAgain; goes before the database is closed.
    std::unique_ptr<RepairTableReader> mReader;
};

#endif
