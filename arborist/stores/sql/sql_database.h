#ifndef ARBORIST_STORES_SQL_SQL_DATABASE_H
#define ARBORIST_STORES_SQL_SQL_DATABASE_H

#include <cstdint>
#include <memory>
#include <string>

#include "arborist/stores/sql/sql_budget.h"

struct sqlite3;

namespace FT::sql {

class TemporaryFiles;

/// A connection; null while closed.
struct Sqlite3Db {
    sqlite3* connection = nullptr;
    /// The path with which it was opened.
    std::string path = {};
    /// Of the statements on it, which use it up.
    std::unique_ptr<SqlBudget> budget = std::make_unique<SqlBudget>();
};

/// What statements on a connection may do.
enum class SqlAccess {
    /// Everything that affects neither another file nor the whole process: ATTACH, VACUUM INTO and setting SQLite's
    /// memory limits, its directories or the place of temporary files fail with "not authorized"; setting its busy timeout
    /// has no effect. Only schema statements can change the schema, and there is always a journal. A statement that
    /// exceeds SqlLimits fails with "interrupted", "query aborted" or "database or disk is full".
    OWN_FILE,
    /// Only select, transactions, and queries of the state of the file (data_version, integrity_check, page_count,
    /// page_size). The file stays unchanged byte for byte, even if changes by others wait in its write-ahead log. The
    /// limits are derived from the size of the file and exceed what a select over all of it needs, so that only views
    /// or virtual tables in place of tables can reach them. After one SQL text has exceeded them, later ones are allowed
    /// next to no steps. Views and computed columns that call glob, instr, json_patch, like, replace, unhex or a trim fail
    /// with "authorization denied".
    READ_ONLY,
};

/// One SQLite database, sized for a small device: a soft heap limit of 100 KiB for the whole process (unless
/// Settings::KEEP_SQLITE_MEMORY says otherwise), ten pages of cache. Closes itself.
///
/// Not thread-safe. Tables and operators are built on GetHandle and must not outlive the object; they follow when the
/// connection is closed or reopened.
class SqlDatabase {
public:
    SqlDatabase();
    virtual ~SqlDatabase();
    SqlDatabase(const SqlDatabase&) = delete;
    SqlDatabase& operator=(const SqlDatabase&) = delete;

    /// Closes the open database, then opens the file; SQLite creates a missing one. On failure returns false and logs a
    /// line at INFO. A file that is no database opens without failure; its first statement fails. Within a detection
    /// statements wait for locks of other connections as LockWaits says; elsewhere they fail at once.
    bool Open(const std::string& path);
    void Close();
    bool IsOpen() const { return resultCode == 0; }
    /// Restricts what statements may do until the database is closed, for foreign statements and foreign files. A
    /// statement that goes further fails. `limits` applies to OWN_FILE only.
    void Restrict(SqlAccess access, const SqlLimits& limits = {});
    /// Replaces the limits of OWN_FILE for the SQL texts that follow.
    void Limit(const SqlLimits& limits);
    /// From now on no write waits for the disk; a crash of the machine may lose what was written.
    void WriteWithoutWaiting();
    /// Takes WriteWithoutWaiting back: from now on a committed write survives a crash of the machine.
    void WriteSafely();
    /// From now on temporary tables of this connection are in memory; SqlLimits::temporaryBytes doesn't count them. False
    /// on failure. Not for connections on which foreign statements run.
    bool KeepTemporaryTablesInMemory();
    const Sqlite3Db& GetHandle() const { return *handle; }

    /// There is no rollback: a transaction that isn't committed is dropped when the connection closes.
    bool BeginTransaction();
    bool CommitTransaction();

private:
    std::unique_ptr<Sqlite3Db> handle;
    std::unique_ptr<TemporaryFiles> temporaryFiles;
    std::uint64_t mostTemporaryBytes = UINT64_MAX;
    bool runsOwnStatement = false;
    std::string errorMessage;
    std::int32_t resultCode = 1;
};

} // namespace FT::sql

#endif
