#ifndef ARBORIST_STORES_SQL_SQL_CURSOR_H
#define ARBORIST_STORES_SQL_SQL_CURSOR_H

#include <cstdint>
#include <string>
#include <string_view>

#include "arborist/stores/sql/sql_database.h"

struct sqlite3_stmt;

namespace FT::sql {

/// Steps through the rows of one select without holding them, for tables too large for SqlOperator.
///
/// Failure is told by the answers and GetError; nothing is logged. The cursor must be gone before its database is
/// closed, and holds a read lock on the file from the first Step until it has run out, failed or been reset.
class SqlCursor {
public:
    enum class ColumnType { INTEGER, REAL, TEXT, BLOB, NONE };

    /// Prepares `sql`; see IsReady.
    SqlCursor(const Sqlite3Db& database, const std::string& sql);
    ~SqlCursor();
    SqlCursor(const SqlCursor&) = delete;
    SqlCursor& operator=(const SqlCursor&) = delete;

    /// True when the statement could be prepared.
    bool IsReady() const { return mStatement != nullptr; }
    /// Moves to the next row. False at the end and on a failure, which IsOk tells apart.
    bool Step();
    /// True when neither preparing nor stepping failed.
    bool IsOk() const { return mError.empty(); }
    /// SQLite's words for what failed; empty while all is well.
    const std::string& GetError() const { return mError; }

    /// Back to before the first row.
    void Restart();
    /// The same with a new value for the parameter ?1.
    void Restart(std::int64_t parameter);
    /// Gives the read lock back.
    void Reset();

    /// The columns of the current row, from 0. Texts live until the next call on the cursor; a text ends at its first
    /// zero byte, as it does in the rows of SqlOperator.
    ColumnType GetType(int column) const;
    std::int64_t GetInteger(int column) const;
    std::string_view GetText(int column) const;

private:
    void Fail();

    const Sqlite3Db& mDb;
    sqlite3_stmt* mStatement = nullptr;
    std::string mError;
};

} // namespace FT::sql

#endif
