#include "diagnosis/sqlite/connection.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <limits>
#include <thread>
#include <utility>

#include <sqlite3.h>

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

// Steps of SQLite's virtual machine: reading, joining and sorting a row of thirty bytes takes about a hundred.
constexpr std::int64_t WORK_OF_A_BYTE = 200;
constexpr std::uint64_t MOST_BYTES = std::uint64_t{1} << 50;

std::int64_t WorkOf(std::uint64_t bytes)
{
    return WORK_OF_A_BYTE * static_cast<std::int64_t>(std::min(MOST_BYTES, bytes));
}

// The reason not to open a file: with a pipe SQLite would wait for its other end.
std::string ReasonAgainst(const std::string& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return path.empty() ? "has no name"
        : fs::is_directory(status) ? "is a folder"
        : fs::exists(status) && !fs::is_regular_file(status) ? "is no plain file" : "";
}

// SQLite takes some names for no file, or for the address of one.
std::string FileName(const std::string& path)
{
    return path.starts_with(':') || path.starts_with("file:") ? "./" + path : path;
}

std::uint64_t SizeOf(const std::string& path)
{
    std::error_code error;
    const auto size = fs::file_size(path, error);
    return error ? 0 : size;
}

} // namespace

void Statement::Finalizer::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

void Statement::Bind(int parameter, std::int64_t value)
{
    sqlite3_bind_int64(mStatement.get(), parameter, value);
}

void Statement::BindReal(int parameter, double value)
{
    sqlite3_bind_double(mStatement.get(), parameter, value);
}

void Statement::Bind(int parameter, const std::string& text)
{
    sqlite3_bind_text64(mStatement.get(), parameter, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void Statement::BindNull(int parameter)
{
    sqlite3_bind_null(mStatement.get(), parameter);
}

void Statement::BindColumn(int parameter, const Statement& row, int column)
{
    sqlite3_bind_value(mStatement.get(), parameter, sqlite3_column_value(row.mStatement.get(), column));
}

bool Statement::Step()
{
    return sqlite3_step(mStatement.get()) == SQLITE_ROW;
}

bool Statement::Reset()
{
    return sqlite3_reset(mStatement.get()) == SQLITE_OK;
}

bool Statement::IsReadOnly() const
{
    return sqlite3_stmt_readonly(mStatement.get()) != 0;
}

int Statement::ColumnCount() const
{
    return sqlite3_column_count(mStatement.get());
}

std::string Statement::ColumnName(int column) const
{
    const char* const name = sqlite3_column_name(mStatement.get(), column);
    return name == nullptr ? "" : name;
}

bool Statement::IsNull(int column) const
{
    return sqlite3_column_type(mStatement.get(), column) == SQLITE_NULL;
}

bool Statement::IsInteger(int column) const
{
    return sqlite3_column_type(mStatement.get(), column) == SQLITE_INTEGER;
}

std::int64_t Statement::Integer(int column) const
{
    return sqlite3_column_int64(mStatement.get(), column);
}

std::uint64_t Statement::Bytes(int column) const
{
    const int type = sqlite3_column_type(mStatement.get(), column);
    const bool isText = type == SQLITE_TEXT || type == SQLITE_BLOB;
    return isText ? static_cast<std::uint64_t>(sqlite3_column_bytes(mStatement.get(), column)) : 0;
}

double Statement::Real(int column) const
{
    return sqlite3_column_double(mStatement.get(), column);
}

std::string Statement::Text(int column) const
{
    const auto* text = sqlite3_column_text(mStatement.get(), column);
    const auto length = static_cast<std::size_t>(sqlite3_column_bytes(mStatement.get(), column));
    return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text), length);
}

bool WaitForLock(int tries)
{
    static constexpr std::chrono::milliseconds PAUSE(10);
    static constexpr int MOST_TRIES = 5'000 / 10;
    std::this_thread::sleep_for(PAUSE);
    return tries < MOST_TRIES;
}

void Connection::Closer::operator()(sqlite3* database) const
{
    sqlite3_close_v2(database);
}

bool Connection::Open(const std::string& path, Mode mode)
{
    mRefusal = ReasonAgainst(path);
    if (!mRefusal.empty()) {
        return false;
    }
    sqlite3* database = nullptr;
    const int flags = mode == Mode::READ_ONLY ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    const int result = sqlite3_open_v2(FileName(path).c_str(), &database, flags, nullptr);
    mDatabase.reset(database);
    if (result == SQLITE_OK) {
        WhileLocked(WaitForLock);
    }
    return result == SQLITE_OK;
}

bool Connection::OpenInMemory()
{
    sqlite3* database = nullptr;
    const int result = sqlite3_open(":memory:", &database);
    mDatabase.reset(database);
    return result == SQLITE_OK;
}

void Connection::WhileLocked(std::function<bool(int tries)> tryAgain)
{
    const auto ask = [](void* asked, int tries) { return (*static_cast<std::function<bool(int)>*>(asked))(tries) ? 1 : 0; };
    mTryAgain = std::make_unique<std::function<bool(int tries)>>(std::move(tryAgain));
    sqlite3_busy_handler(mDatabase.get(), *mTryAgain ? +ask : nullptr, mTryAgain.get());
}

bool Connection::Execute(const std::string& sql)
{
    return sqlite3_exec(mDatabase.get(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool Connection::WriteCopy(const std::string& path)
{
    auto copy = Prepare("VACUUM INTO ?1");
    if (copy) {
        copy->Bind(1, FileName(path));
        copy->Step();
    }
    return copy && !HasError();
}

std::int64_t Connection::Changes() const
{
    return sqlite3_changes(mDatabase.get());
}

std::optional<Statement> Connection::Prepare(const std::string& sql)
{
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(mDatabase.get(), sql.c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
        return std::nullopt;
    }
    Statement statement;
    statement.mStatement.reset(prepared);
    return statement;
}

void Connection::LimitToFile()
{
    static constexpr std::int64_t LEAST_WORK = 100'000'000;
    static constexpr int STEPS_AT_A_TIME = 1'000'000;
    static constexpr std::uint64_t LEAST_LENGTH = 1'000'000;
    const char* const name = sqlite3_db_filename(mDatabase.get(), "main");
    const std::string path = name == nullptr ? "" : name;
    const std::uint64_t bytesBefore = std::exchange(mFileBytes, SizeOf(path) + SizeOf(path + "-wal"));
    if (mWorkLeft == nullptr) {
        mWorkLeft = std::make_unique<std::int64_t>(LEAST_WORK + WorkOf(mFileBytes));
    } else {
        const std::int64_t grown = std::max<std::int64_t>(0, WorkOf(mFileBytes) - WorkOf(bytesBefore));
        *mWorkLeft = std::min(WorkOf(MOST_BYTES), *mWorkLeft + grown);
    }
    const auto isOver = [](void* left) { return (*static_cast<std::int64_t*>(left) -= STEPS_AT_A_TIME) < 0 ? 1 : 0; };
    sqlite3_progress_handler(mDatabase.get(), STEPS_AT_A_TIME, isOver, mWorkLeft.get());
    const auto length = std::min<std::uint64_t>(std::max(LEAST_LENGTH, mFileBytes), std::numeric_limits<int>::max());
    sqlite3_limit(mDatabase.get(), SQLITE_LIMIT_LENGTH, static_cast<int>(length));
}

void Connection::AllowBytes(std::uint64_t bytes)
{
    if (mWorkLeft != nullptr) {
        *mWorkLeft = std::min(WorkOf(MOST_BYTES), *mWorkLeft + WorkOf(bytes));
        sqlite3_limit(mDatabase.get(), SQLITE_LIMIT_LENGTH, std::numeric_limits<int>::max());
    }
}

bool Connection::IsInterrupted() const
{
    return sqlite3_errcode(mDatabase.get()) == SQLITE_INTERRUPT;
}

bool Connection::IsLocked() const
{
    return sqlite3_errcode(mDatabase.get()) == SQLITE_BUSY;
}

bool Connection::NeedsRollback() const
{
    return sqlite3_extended_errcode(mDatabase.get()) == SQLITE_READONLY_ROLLBACK;
}

bool Connection::CannotWrite() const
{
    const int code = sqlite3_extended_errcode(mDatabase.get());
    const bool isOfReading = code == SQLITE_IOERR_READ || code == SQLITE_IOERR_SHORT_READ;
    return code == SQLITE_FULL || ((code & 0xFF) == SQLITE_IOERR && !isOfReading);
}

bool Connection::HasError() const
{
    const int code = sqlite3_errcode(mDatabase.get());
    return code != SQLITE_OK && code != SQLITE_ROW && code != SQLITE_DONE;
}

std::string Connection::GetError() const
{
    if (!mRefusal.empty()) {
        return mRefusal;
    }
    if (IsInterrupted()) {
        return "takes more work than a database of its size can need";
    }
    return mDatabase == nullptr ? "out of memory" : sqlite3_errmsg(mDatabase.get());
}

bool Connection::Close()
{
    return sqlite3_close(mDatabase.release()) == SQLITE_OK;
}

} // namespace diagnosis
