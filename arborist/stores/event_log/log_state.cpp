#include "arborist/stores/event_log/log_state.h"

#include "arborist/frame/stopping.h"
#include "arborist/stores/sql/sql_cursor.h"

using FT::sql::SqlCursor;

ReadTransaction::ReadTransaction(const FT::sql::Sqlite3Db& database)
    : mDb(database), mCommit(database, "COMMIT")
{
    SqlCursor(database, "BEGIN").Step();
}

ReadTransaction::~ReadTransaction()
{
    const StopScope unstoppable(nullptr);
    mCommit.Step();
}

std::int64_t ReadDataVersion(const FT::sql::Sqlite3Db& database)
{
    SqlCursor cursor(database, "PRAGMA data_version");
    return cursor.Step() ? cursor.GetInteger(0) : NO_DATA_VERSION;
}
