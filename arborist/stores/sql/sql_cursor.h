#ifndef ARBORIST_STORES_SQL_SQL_CURSOR_H
#define ARBORIST_STORES_SQL_SQL_CURSOR_H

#include <cstdint>
#include <string>
#include <string_view>

#include "arborist/stores/sql/sql_database.h"

struct sqlite3_stmt;

namespace FT::sql {

/// Steps through the rows of one select without keeping them, for tables too large for SqlOperator.
///
/// Reports a failure by its return values and GetError and logs nothing. Destroy the cursor before its database is
/// closed. It locks the file for reading from the first Step until the rows end, a step fails or Reset is called.
class SqlCursor {
public:
    enum class ColumnType { INTEGER, REAL, TEXT, BLOB, NONE };

    /// Prepares `sql`; see IsReady.
    SqlCursor(const Sqlite3Db& database, const std::string& sql);
    ~SqlCursor();
    SqlCursor(const SqlCursor&) = delete;
    SqlCursor& operator=(const SqlCursor&) = delete;

    /// True if the statement could be prepared.
    bool IsReady() const { return mStatement != nullptr; }
    /// Moves to the next row. False at the end and on a failure; IsOk distinguishes the two.
    bool Step();
    /// True if neither preparing nor stepping failed.
    bool IsOk() const { return mError.empty(); }
    /// SQLite's message for the failure; empty if there was none.
    const std::string& GetError() const { return mError; }

    /// Moves back to before the first row and forgets a failure.
    void Restart();
    /// The same with a new value for the parameter ?1.
    void Restart(std::int64_t parameter);
    /// Releases the read lock.
    void Reset();

    /// The columns of the current row, from 0. GetText throws std::bad_alloc if SQLite has no memory for the text.
    /// Texts are valid until the next call on the cursor; a text ends at its first zero byte, as in the rows of
    /// SqlOperator.
    ColumnType GetType(int column) const;
    std::int64_t GetInteger(int column) const;
    double GetReal(int column) const;
    std::string_view GetText(int column) const;

private:
    void Fail();

    const Sqlite3Db& mDb;
    sqlite3_stmt* mStatement = nullptr;
    std::string mError;
};

} // namespace FT::sql

#endif
