#include "arborist/stores/sql/sql_database.h"

#include <filesystem>
#include <system_error>

#include <sqlite3.h>

#include "arborist/frame/log.h"
#include "arborist/stores/sql/sql_operator.h"

namespace FT::sql {
namespace {

constexpr std::int32_t CLOSED = 1;
constexpr sqlite3_int64 SOFT_HEAP_LIMIT = 102400;

// VACUUM attaches a database without a name for a while.
int AllowOwnFile(void*, int action, const char* fileName, const char*, const char*, const char*)
{
    const bool isOtherFile = action == SQLITE_ATTACH && (fileName == nullptr || *fileName != '\0');
    return isOtherFile ? SQLITE_DENY : SQLITE_OK;
}

int AllowReading(void*, int action, const char*, const char*, const char*, const char*)
{
    const bool reads = action == SQLITE_SELECT || action == SQLITE_READ || action == SQLITE_FUNCTION ||
        action == SQLITE_RECURSIVE;
    return reads ? SQLITE_OK : SQLITE_DENY;
}

bool HasWaitingChanges(sqlite3* connection)
{
    const char* const path = sqlite3_db_filename(connection, "main");
    std::error_code error;
    const auto size = std::filesystem::file_size(std::string(path == nullptr ? "" : path) + "-wal", error);
    return !error && size > 0;
}

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

void SqlDatabase::Restrict(SqlAccess access)
{
    if (!IsOpen()) {
        return;
    }
    const bool isReadOnly = access == SqlAccess::READ_ONLY;
    sqlite3_set_authorizer(handle->connection, isReadOnly ? AllowReading : AllowOwnFile, nullptr);
    // The last one to close a database moves the waiting changes into it, unless told not to.
    if (isReadOnly && HasWaitingChanges(handle->connection)) {
        sqlite3_db_config(handle->connection, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    }
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
