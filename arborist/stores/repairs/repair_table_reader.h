#ifndef ARBORIST_STORES_REPAIRS_REPAIR_TABLE_READER_H
#define ARBORIST_STORES_REPAIRS_REPAIR_TABLE_READER_H

#include <memory>
#include <string>

#include "arborist/stores/sql/sql_cursor.h"

/// Asks the table of repairs what would be dear to ask by a SqlTable. It must be gone before its database is closed.
class RepairTableReader {
public:
    static constexpr char TABLE_NAME[] = "repair_data";

    explicit RepairTableReader(const FT::sql::SqlDatabase& database) : mDatabase(database) {}

    /// Whether the table is there, for a connection that is used again and again; nothing is logged. False also when the
    /// file can't be read. After true the file stays locked for reading until Release: what is asked in between is one
    /// transaction.
    bool IsThere();
    void Release();

    /// Whether a row has this id, letter by letter. Reads all rows; a failure leaves the line of a statement that fails.
    bool Holds(const std::string& repairId) const;

private:
    const FT::sql::SqlDatabase& mDatabase;
    /// The question of IsThere, prepared once.
    std::unique_ptr<FT::sql::SqlCursor> mCount;
};

#endif
