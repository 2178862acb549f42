#include "arborist/stores/sql/sql_database.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <mutex>
#include <string_view>

#include <sqlite3.h>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/frame/stopping.h"
#include "arborist/stores/sql/sql_operator.h"
#include "arborist/stores/sql/temporary_files.h"

namespace FT::sql {
namespace {

constexpr std::int32_t CLOSED = 1;
constexpr sqlite3_int64 SOFT_HEAP_LIMIT = 102400;
// Both apply to restricted connections: a few bytes of a file can ask for a text of a gigabyte, and nothing interrupts a
// function that works on one. `like` and `glob` compare the pattern at each byte of the text; this length has room for a
// file name between wildcards.
constexpr int LONGEST_TEXT = 16 * 1024 * 1024;
constexpr int LONGEST_PATTERN = 300;

template <std::size_t COUNT>
bool IsOneOf(const std::string_view (&names)[COUNT], const char* name)
{
    return name != nullptr && std::any_of(std::begin(names), std::end(names),
        [name](std::string_view known) { return sqlite3_stricmp(known.data(), name) == 0; });
}

// While it runs, VACUUM attaches a database without a name.
int AllowOwnFile(void* runsOwnStatement, int action, const char* name, const char* value, const char*, const char*)
{
    // These affect every connection of the process, the host's own included.
    static constexpr std::string_view PROCESS_WIDE[] = {
        "data_store_directory", "hard_heap_limit", "soft_heap_limit", "temp_store_directory"};
    // This would have SQLite sort in memory, without a limit.
    static constexpr std::string_view PLACE_OF_SORTS[] = {"temp_store"};
    // This would replace WaitForLock, which has an end.
    static constexpr std::string_view WAIT_FOR_LOCKS[] = {"busy_timeout"};
    const bool isOtherFile = action == SQLITE_ATTACH && (name == nullptr || *name != '\0');
    const bool isSetting = action == SQLITE_PRAGMA && value != nullptr;
    if (isSetting && IsOneOf(WAIT_FOR_LOCKS, name)) {
        return SQLITE_IGNORE;
    }
    const bool isForbidden = IsOneOf(PROCESS_WIDE, name) ||
        (IsOneOf(PLACE_OF_SORTS, name) && !*static_cast<const bool*>(runsOwnStatement));
    return isOtherFile || (isSetting && isForbidden) ? SQLITE_DENY : SQLITE_OK;
}

int AllowReading(void*, int action, const char* name, const char* value, const char*, const char*)
{
    static constexpr std::string_view FILE_STATES[] = {"data_version", "integrity_check", "page_count", "page_size"};
    static constexpr std::string_view TABLE_STATES[] = {"quick_check"};
    const bool asks =
        action == SQLITE_PRAGMA && (IsOneOf(TABLE_STATES, name) || (value == nullptr && IsOneOf(FILE_STATES, name)));
    const bool reads = action == SQLITE_SELECT || action == SQLITE_READ || action == SQLITE_FUNCTION ||
        action == SQLITE_RECURSIVE || action == SQLITE_TRANSACTION;
    return reads || asks ? SQLITE_OK : SQLITE_DENY;
}

void Refuse(sqlite3_context* context, int, sqlite3_value**)
{
    sqlite3_result_error_code(context, SQLITE_AUTH);
}

// Their time grows with the product of the lengths of two texts. A view or a computed column of a foreign file could hold a
// thread for hours by one call, which nothing interrupts. An authorizer isn't asked about computed columns.
void RefuseSlowFunctions(sqlite3* connection)
{
    static constexpr const char* NAMES[] = {
        "glob", "instr", "json_patch", "jsonb_patch", "like", "ltrim", "replace", "rtrim", "trim", "unhex"};
    for (const char* const name : NAMES) {
        sqlite3_create_function(
            connection, name, -1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, Refuse, nullptr, nullptr);
    }
}

// Has an effect only before SQLite's first use in the process; later SQLite refuses the calls, which does no harm.
// Before its first use SQLite doesn't guard these settings, so that only one thread at a time may run this.
void Configure()
{
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    sqlite3_config(SQLITE_CONFIG_SMALL_MALLOC, 1);
    // Each page when it is needed: by default a connection begins with 20, which is nearly the whole heap limit.
    sqlite3_config(SQLITE_CONFIG_PAGECACHE, nullptr, 0, 0);
    sqlite3_initialize();
}

constexpr int STEPS_AT_ONCE = 1000;

// Counts steps instead of time, so that a statement is interrupted at the same place on a busy machine.
int TakeSteps(void* context)
{
    if (StopPoint::IsDue()) {
        return 1; // whoever runs the statement passes a stop point after it
    }
    return static_cast<SqlBudget*>(context)->TakeSteps(STEPS_AT_ONCE) ? 0 : 1;
}

// Called by SQLite when another connection has locked the file: 1 to try again, 0 to fail with "database is locked".
int WaitForLock(void* handle, int attempt)
{
    return StopPoint::WaitForLock(static_cast<const Sqlite3Db*>(handle)->path, attempt) ? 1 : 0;
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
    if (FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(Settings::KEEP_SQLITE_MEMORY, "").empty()) {
        Configure();
        sqlite3_soft_heap_limit64(SOFT_HEAP_LIMIT);
    }
    handle->path = path;
    mostTemporaryBytes = UINT64_MAX;
    temporaryFiles = std::make_unique<TemporaryFiles>(mostTemporaryBytes);
    resultCode = sqlite3_open_v2(path.c_str(), &handle->connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
        temporaryFiles->GetName());
    if (!IsOpen()) {
        errorMessage = sqlite3_errmsg(handle->connection);
        Log::GetInstance().Output(LEVEL_INFO, "FUNc:%s: open db:%s failed, error msg is :%s", NAME, path.c_str(),
            errorMessage.c_str());
        return false;
    }
    sqlite3_busy_handler(handle->connection, WaitForLock, handle.get());
    const auto resultOf = [this](const char* sql) {
        const int result = sqlite3_exec(handle->connection, sql, nullptr, nullptr, nullptr);
        if (result != SQLITE_OK) {
            StopPoint::Pass(); // the failure may be the stop's, and then belongs into no log
        }
        return result;
    };
    if (const int result = resultOf("PRAGMA cache_size=10;"); result != SQLITE_OK) {
        Log::GetInstance().Output(
            LEVEL_ERROR, "FUNc:%s: Failed(%d) to set cache size by %s", NAME, result, path.c_str());
    }
    if (const int result = resultOf("PRAGMA synchronous=1;"); result != SQLITE_OK) {
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
    sqlite3* const connection = handle->connection;
    sqlite3_set_authorizer(connection, isReadOnly ? AllowReading : AllowOwnFile, &runsOwnStatement);
    SqlBudget& budget = *handle->budget;
    if (isReadOnly) {
        budget.LimitByFile(connection);
        RefuseSlowFunctions(connection);
    } else {
        budget.SetLimits(limits);
    }
    mostTemporaryBytes = budget.GetLimits()->temporaryBytes;
    sqlite3_progress_handler(connection, STEPS_AT_ONCE, TakeSteps, &budget);
    sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, LONGEST_TEXT);
    sqlite3_limit(connection, SQLITE_LIMIT_LIKE_PATTERN_LENGTH, LONGEST_PATTERN);
    // Forbids everything that could leave a file which SQLite itself can't read any more.
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    // By default the last connection that closes a database moves the waiting changes into it, which would write to the
    // file.
    if (isReadOnly && SizeOfWaitingChanges(connection) > 0) {
        sqlite3_db_config(connection, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    }
}

void SqlDatabase::Limit(const SqlLimits& limits)
{
    if (handle->budget->GetLimits().has_value() && !handle->budget->IsLimitedByFile()) {
        handle->budget->SetLimits(limits);
        mostTemporaryBytes = limits.temporaryBytes;
    }
}

void SqlDatabase::WriteWithoutWaiting()
{
    if (IsOpen()) {
        sqlite3_exec(
            handle->connection, "PRAGMA synchronous=OFF; PRAGMA journal_mode=MEMORY", nullptr, nullptr, nullptr);
    }
}

void SqlDatabase::WriteSafely()
{
    if (IsOpen()) {
        sqlite3_exec(
            handle->connection, "PRAGMA synchronous=FULL; PRAGMA journal_mode=DELETE", nullptr, nullptr, nullptr);
    }
}

bool SqlDatabase::KeepTemporaryTablesInMemory()
{
    runsOwnStatement = true;
    const bool isSet = IsOpen() &&
        sqlite3_exec(handle->connection, "PRAGMA temp_store=MEMORY", nullptr, nullptr, nullptr) == SQLITE_OK;
    runsOwnStatement = false;
    return isSet;
}

void SqlDatabase::Close()
{
    if (handle->connection == nullptr) {
        return;
    }
    sqlite3_close(handle->connection);
    handle->connection = nullptr;
    temporaryFiles.reset();
    handle->budget->RemoveLimits();
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
