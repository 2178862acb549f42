#include "arborist/stores/sql/sql_scan.h"

#include <new>

#include <sqlite3.h>

#include "arborist/stores/sql/sql_cursor.h"

namespace FT::sql {
namespace {

using Visitor = std::function<void(const ScannedRow& row)>;

// Name of the aggregate function that receives the rows.
constexpr char FUNCTION[] = "arborist_visit_row";

void VisitRow(sqlite3_context* context, int, sqlite3_value** values)
{
    const auto* const visit = static_cast<const Visitor*>(sqlite3_user_data(context));
    try {
        (*visit)(ScannedRow(values));
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context); // no exception may pass through SQLite; the scan fails instead
    }
}

void EndRows(sqlite3_context* context)
{
    sqlite3_result_null(context);
}

// Registers the function for one scan only, as the function refers to the visitor of that scan.
class RowFunction {
public:
    RowFunction(const Sqlite3Db& database, const Visitor& visit) : mConnection(database.connection)
    {
        sqlite3_create_function_v2(mConnection, FUNCTION, -1, SQLITE_UTF8 | SQLITE_DIRECTONLY,
            const_cast<Visitor*>(&visit), nullptr, VisitRow, EndRows, nullptr);
    }
    ~RowFunction()
    {
        sqlite3_create_function_v2(
            mConnection, FUNCTION, -1, SQLITE_UTF8, nullptr, nullptr, nullptr, nullptr, nullptr);
    }
    RowFunction(const RowFunction&) = delete;
    RowFunction& operator=(const RowFunction&) = delete;

private:
    sqlite3* mConnection;
};

} // namespace

bool ScannedRow::IsInteger(int column) const
{
    return sqlite3_value_type(mValues[column]) == SQLITE_INTEGER;
}

bool ScannedRow::IsNull(int column) const
{
    return sqlite3_value_type(mValues[column]) == SQLITE_NULL;
}

std::int64_t ScannedRow::GetInteger(int column) const
{
    return sqlite3_value_int64(mValues[column]);
}

double ScannedRow::GetReal(int column) const
{
    return sqlite3_value_double(mValues[column]);
}

std::string_view ScannedRow::GetText(int column) const
{
    const auto* const text = reinterpret_cast<const char*>(sqlite3_value_text(mValues[column]));
    return text == nullptr ? std::string_view() : std::string_view(text);
}

bool ScanRows(const Sqlite3Db& database, const std::string& columns, const std::string& from, const Visitor& visit,
    std::string& error)
{
    if (database.connection == nullptr) {
        error = "database is closed";
        return false;
    }
    const RowFunction function(database, visit);
    SqlCursor cursor(database, std::string("select ") + FUNCTION + "(" + columns + ") " + from);
    cursor.Step();
    error = cursor.GetError();
    return cursor.IsOk();
}

} // namespace FT::sql
