#include "arborist/stores/sql/sql_cursor.h"

#include <new>

#include <sqlite3.h>

#include "arborist/frame/stopping.h"

namespace FT::sql {

SqlCursor::SqlCursor(const Sqlite3Db& database, const std::string& sql) : mDb(database)
{
    if (mDb.connection == nullptr) {
        mError = "database is closed";
        return;
    }
    StopPoint::Pass();
    mDb.budget->StartText();
    if (sqlite3_prepare_v2(mDb.connection, sql.c_str(), static_cast<int>(sql.size()) + 1, &mStatement, nullptr) !=
        SQLITE_OK) {
        Fail();
        StopPoint::Pass();
    }
}

SqlCursor::~SqlCursor()
{
    sqlite3_finalize(mStatement);
}

bool SqlCursor::Step()
{
    if (!IsReady()) {
        return false;
    }
    const int result = sqlite3_step(mStatement);
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result != SQLITE_DONE) {
        Fail();
    }
    sqlite3_reset(mStatement);
    if (!IsOk()) {
        StopPoint::Pass();
    }
    return false;
}

void SqlCursor::Restart()
{
    Reset();
    StopPoint::Pass();
    if (IsReady()) {
        mError.clear();
    }
    mDb.budget->StartText();
}

void SqlCursor::Restart(std::int64_t parameter)
{
    Restart();
    sqlite3_bind_int64(mStatement, 1, parameter);
}

void SqlCursor::Reset()
{
    sqlite3_reset(mStatement);
}

SqlCursor::ColumnType SqlCursor::GetType(int column) const
{
    switch (sqlite3_column_type(mStatement, column)) {
    case SQLITE_INTEGER:
        return ColumnType::INTEGER;
    case SQLITE_FLOAT:
        return ColumnType::REAL;
    case SQLITE_TEXT:
        return ColumnType::TEXT;
    case SQLITE_BLOB:
        return ColumnType::BLOB;
    default:
        return ColumnType::NONE;
    }
}

std::int64_t SqlCursor::GetInteger(int column) const
{
    return sqlite3_column_int64(mStatement, column);
}

double SqlCursor::GetReal(int column) const
{
    return sqlite3_column_double(mStatement, column);
}

std::string_view SqlCursor::GetText(int column) const
{
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(mStatement, column));
    if (text == nullptr && sqlite3_errcode(mDb.connection) == SQLITE_NOMEM) {
        throw std::bad_alloc(); // no later step would tell, and the text would pass for an empty one
    }
    return text == nullptr ? std::string_view() : std::string_view(text);
}

void SqlCursor::Fail()
{
    mError = sqlite3_errmsg(mDb.connection);
}

} // namespace FT::sql
