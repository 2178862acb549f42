#ifndef ARBORIST_STORES_EVENT_LOG_LOG_STATE_H
#define ARBORIST_STORES_EVENT_LOG_LOG_STATE_H

#include <cstdint>

#include "arborist/stores/sql/sql_database.h"

/// Holds one state of the log for several statements. They only read, so there is nothing to lose at its end.
class ReadTransaction {
public:
    explicit ReadTransaction(const FT::sql::Sqlite3Db& database);
    ~ReadTransaction();
    ReadTransaction(const ReadTransaction&) = delete;
    ReadTransaction& operator=(const ReadTransaction&) = delete;

private:
    const FT::sql::Sqlite3Db& mDb;
};

/// A number that changes when another connection changes the file. Asked inside a transaction it holds for what the
/// transaction sees. NO_DATA_VERSION when the file can't be asked.
std::int64_t ReadDataVersion(const FT::sql::Sqlite3Db& database);

constexpr std::int64_t NO_DATA_VERSION = -1;

#endif
