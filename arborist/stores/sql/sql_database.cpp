#include "arborist/stores/sql/sql_database.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <system_error>

#include <sqlite3.h>

#include "arborist/frame/log.h"
#include "arborist/stores/sql/sql_operator.h"

namespace FT::sql {
namespace {

constexpr std::int32_t CLOSED = 1;
constexpr sqlite3_int64 SOFT_HEAP_LIMIT = 102400;

template <std::size_t COUNT>
bool IsOneOf(const std::string_view (&names)[COUNT], const char* name)
{
    return name != nullptr && std::any_of(std::begin(names), std::end(names),
        [name](std::string_view known) { return sqlite3_stricmp(known.data(), name) == 0; });
}

// VACUUM attaches a database without a name for a while.
int AllowOwnFile(void*, int action, const char* name, const char* value, const char*, const char*)
{
    // These hold for every connection of the process, the host's own included.
    static constexpr std::string_view PROCESS_WIDE[] = {
        "data_store_directory", "hard_heap_limit", "soft_heap_limit", "temp_store_directory"};
    const bool isOtherFile = action == SQLITE_ATTACH && (name == nullptr || *name != '\0');
    const bool isProcessWide = action == SQLITE_PRAGMA && value != nullptr && IsOneOf(PROCESS_WIDE, name);
    return isOtherFile || isProcessWide ? SQLITE_DENY : SQLITE_OK;
}

int AllowReading(void*, int action, const char* name, const char* value, const char*, const char*)
{
    static constexpr std::string_view FILE_STATES[] = {"data_version", "page_count", "page_size"};
    const bool asks = action == SQLITE_PRAGMA && value == nullptr && IsOneOf(FILE_STATES, name);
    const bool reads = action == SQLITE_SELECT || action == SQLITE_READ || action == SQLITE_FUNCTION ||
        action == SQLITE_RECURSIVE || action == SQLITE_TRANSACTION;
    return reads || asks ? SQLITE_OK : SQLITE_DENY;
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

void SqlDatabase::Restrict(SqlAccess access, const SqlLimits& limits)
{
    if (!IsOpen()) {
        return;
    }
    const bool isReadOnly = access == SqlAccess::READ_ONLY;
    sqlite3_set_authorizer(handle->connection, isReadOnly ? AllowReading : AllowOwnFile, nullptr);
    if (!isReadOnly) {
        handle->limits = limits;
    }
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
    handle->limits.reset();
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
