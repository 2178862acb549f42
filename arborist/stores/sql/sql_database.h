#ifndef ARBORIST_STORES_SQL_SQL_DATABASE_H
#define ARBORIST_STORES_SQL_SQL_DATABASE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

struct sqlite3;

namespace FT::sql {

struct Sqlite3Db;

/// How far statements may go before they are broken off.
struct SqlLimits {
    /// Steps of SQLite's machine for one text, some half a minute of them.
    std::uint64_t steps = 5'000'000'000;
    /// Rows that a SqlOperator keeps, and bytes of all their texts.
    std::size_t rows = 100'000;
    std::uint64_t bytes = 256 * 1024 * 1024;

    /// Half the steps for what comes next, where the last text on `database` was broken off for its steps: one text
    /// that never ends is then no worse, run on a thousand files, than on two.
    void LowerAfter(const Sqlite3Db& database);
};

/// A connection; null while closed.
struct Sqlite3Db {
    sqlite3* connection = nullptr;
    mutable std::optional<SqlLimits> limits;
    /// The limits follow from the size of the file.
    mutable bool areLimitsOfFile = false;
    /// What the text under way may still take.
    mutable std::uint64_t stepsLeft = 0;

    /// To be called before each text is run.
    void StartText() const { stepsLeft = limits.has_value() ? limits->steps : 0; }
    /// To be called where a text has reached its limits: true when they are higher now, because the file has grown.
    bool RaiseLimits() const;
    /// Whether so many bytes of one text's rows may be kept.
    bool AllowsBytes(std::uint64_t bytes) const;
};

/// What statements on a connection may do.
enum class SqlAccess {
    /// All but reaching another file or the whole process: ATTACH, VACUUM INTO and setting SQLite's memory limits or
    /// directories fail with "not authorized". The schema is changed by its own statements alone, and there is always a
    /// journal. What goes beyond SqlLimits fails with "interrupted" or "query aborted".
    OWN_FILE,
    /// Only select, transactions, and asking for the state of the file (data_version, page_count, page_size). The file
    /// stays byte for byte as it is, also when changes of others wait in its write-ahead log. What the limits are
    /// follows from the size of the file: more than a select over all of it needs. A text that goes beyond them, which
    /// takes tables that aren't tables, leaves next to nothing for the texts that come later.
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
    /// Holds what statements do in bounds until the database is closed, whether their text or the file is foreign. A
    /// statement that goes further fails. `limits` are those of OWN_FILE.
    void Restrict(SqlAccess access, const SqlLimits& limits = {});
    /// From now on what is written is not safe from a failure of the machine, and no write waits for the disk.
    void WriteWithoutWaiting();
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
