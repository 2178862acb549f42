#ifndef ARBORIST_STORES_EVENT_LOG_LOG_STATE_H
#define ARBORIST_STORES_EVENT_LOG_LOG_STATE_H

#include <cstdint>

#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/stores/sql/sql_database.h"

/// As long as it exists, all statements see the same state of the log. For reading only: nothing is committed at its
/// end.
class ReadTransaction {
public:
    explicit ReadTransaction(const FT::sql::Sqlite3Db& database);
    ~ReadTransaction();
    ReadTransaction(const ReadTransaction&) = delete;
    ReadTransaction& operator=(const ReadTransaction&) = delete;

private:
    const FT::sql::Sqlite3Db& mDb;
    FT::sql::SqlCursor mCommit; // prepared first: the end must not fail for lack of memory and leave the log locked
};

/// A number that changes whenever another connection changes the file. Inside a transaction it belongs to the state
/// that the transaction sees. NO_DATA_VERSION if the file can't be read.
std::int64_t ReadDataVersion(const FT::sql::Sqlite3Db& database);

constexpr std::int64_t NO_DATA_VERSION = -1;

#endif
