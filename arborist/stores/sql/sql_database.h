#ifndef ARBORIST_STORES_SQL_SQL_DATABASE_H
#define ARBORIST_STORES_SQL_SQL_DATABASE_H

#include <cstdint>
#include <memory>
#include <string>

struct sqlite3;

namespace FT::sql {

/// A connection; null while closed.
struct Sqlite3Db {
    sqlite3* connection = nullptr;
};

/// What statements on a connection may do.
enum class SqlAccess {
    /// All but reaching another file: ATTACH and VACUUM INTO fail with "not authorized".
    OWN_FILE,
    /// Only select. The file stays byte for byte as it is, also when changes of others wait in its write-ahead log.
    READ_ONLY,
};

/// One SQLite database, sized for a small device: a soft heap limit of 100 KiB for the whole process, ten pages of
/// cache. Closes itself.
///
/// Used by one thread at a time. Tables and operators are built on GetHandle and must not outlive the object; they see
/// a closed or reopened connection without being rebuilt.
class SqlDatabase {
public:
    SqlDatabase();
    virtual ~SqlDatabase();
    SqlDatabase(const SqlDatabase&) = delete;
    SqlDatabase& operator=(const SqlDatabase&) = delete;

    /// Closes what was open, then opens the file, which SQLite creates when it is missing. Failure answers false with
    /// a line at INFO. A file that is no database opens all the same: its first statement fails.
    bool Open(const std::string& path);
    void Close();
    bool IsOpen() const { return resultCode == 0; }
    /// Holds foreign SQL text in bounds until the database is closed. A statement that goes further fails.
    void Restrict(SqlAccess access);
    const Sqlite3Db& GetHandle() const { return *handle; }

    /// There is no rollback: a transaction that isn't committed ends with the connection.
    bool BeginTransaction();
    bool CommitTransaction();

private:
    std::unique_ptr<Sqlite3Db> handle;
    std::string errorMessage;
    std::int32_t resultCode = 1;
};

} // namespace FT::sql

#endif
