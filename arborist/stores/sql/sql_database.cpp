#include "arborist/stores/sql/sql_database.h"

#include <sqlite3.h>

#include "arborist/frame/log.h"
#include "arborist/stores/sql/sql_operator.h"

namespace FT::sql {
namespace {

constexpr std::int32_t CLOSED = 1;
constexpr sqlite3_int64 SOFT_HEAP_LIMIT = 102400;

} // namespace

SqlDatabase::SqlDatabase() : handle(std::make_unique<Sqlite3Db>()) {}

SqlDatabase::~SqlDatabase()
{
    Close();
}

bool SqlDatabase::Open(const std::string& path)
{
    static constexpr char NAME[] = "FT::sql::SqlDatabase::Open";
    Close();
    // Counts only before SQLite's first use in the process; later it is refused, which does no harm.
    sqlite3_config(SQLITE_CONFIG_SMALL_MALLOC, 1);
    sqlite3_soft_heap_limit64(SOFT_HEAP_LIMIT);
    resultCode = sqlite3_open(path.c_str(), &handle->connection);
    if (!IsOpen()) {
        errorMessage = sqlite3_errmsg(handle->connection);
        Log::GetInstance().Output(LEVEL_INFO, "FUNc:%s: open db:%s failed, error msg is :%s", NAME, path.c_str(),
            errorMessage.c_str());
        return false;
    }
    int result = sqlite3_exec(handle->connection, "PRAGMA cache_size=10;", nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) {
        Log::GetInstance().Output(
            LEVEL_ERROR, "FUNc:%s: Failed(%d) to set cache size by %s", NAME, result, path.c_str());
    }
    result = sqlite3_exec(handle->connection, "PRAGMA synchronous=1;", nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) {
        Log::GetInstance().Output(
            LEVEL_ERROR, "FUNc:%s: Failed(%d) to set synchronous by %s", NAME, result, path.c_str());
    }
    return true;
}

void SqlDatabase::Close()
{
    if (handle->connection == nullptr) {
        return;
    }
    sqlite3_close(handle->connection);
    handle->connection = nullptr;
    errorMessage.clear();
    resultCode = CLOSED;
}

bool SqlDatabase::BeginTransaction()
{
    return SqlOperator(*handle).ExecuteNoCallback("BEGIN TRANSACTION");
}

bool SqlDatabase::CommitTransaction()
{
    return SqlOperator(*handle).ExecuteNoCallback("COMMIT TRANSACTION");
}

} // namespace FT::sql
