#include "tools/arborist/sqlite/connection.h"

#include <filesystem>

#include <sqlite3.h>

namespace command {

namespace fs = std::filesystem;

namespace {

// SQLite would wait for the other end of a pipe.
std::string ReasonAgainst(const std::string& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return fs::is_directory(status) ? "is a folder"
        : fs::exists(status) && !fs::is_regular_file(status) ? "is no plain file" : "";
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

void Statement::Bind(int parameter, const std::string& text)
{
    sqlite3_bind_text64(mStatement.get(), parameter, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void Statement::BindNull(int parameter)
{
    sqlite3_bind_null(mStatement.get(), parameter);
}

bool Statement::Step()
{
    return sqlite3_step(mStatement.get()) == SQLITE_ROW;
}

void Statement::Reset()
{
    sqlite3_reset(mStatement.get());
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

std::string Statement::Text(int column) const
{
    const auto* text = sqlite3_column_text(mStatement.get(), column);
    const auto length = static_cast<std::size_t>(sqlite3_column_bytes(mStatement.get(), column));
    return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text), length);
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
    const int result = sqlite3_open_v2(path.c_str(), &database, flags, nullptr);
    mDatabase.reset(database);
    return result == SQLITE_OK;
}

bool Connection::Execute(const std::string& sql)
{
    return sqlite3_exec(mDatabase.get(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
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

void Connection::LimitWork(int steps)
{
    sqlite3_progress_handler(mDatabase.get(), steps, [](void*) { return 1; }, nullptr);
}

bool Connection::IsInterrupted() const
{
    return sqlite3_errcode(mDatabase.get()) == SQLITE_INTERRUPT;
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
    return mDatabase == nullptr ? "out of memory" : sqlite3_errmsg(mDatabase.get());
}

std::int64_t Connection::LastRowId() const
{
    return sqlite3_last_insert_rowid(mDatabase.get());
}

bool Connection::Close()
{
    return sqlite3_close(mDatabase.release()) == SQLITE_OK;
}

} // namespace command
