#ifndef ARBORIST_DIAGNOSIS_SQLITE_CONNECTION_H
#define ARBORIST_DIAGNOSIS_SQLITE_CONNECTION_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace diagnosis {

/// One prepared statement. Parameters are numbered from 1, columns from 0.
class Statement {
public:
    void Bind(int parameter, std::int64_t value);
    void BindReal(int parameter, double value);
    void Bind(int parameter, const std::string& text);
    void BindNull(int parameter);
    /// Binds the value of a column of another statement's row, of whatever type, unchanged.
    void BindColumn(int parameter, const Statement& row, int column);
    /// Runs to the next row. False at the end or on an error; see Connection::GetError.
    bool Step();
    /// Prepares the statement to run again. False if it had failed; see Connection::GetError.
    bool Reset();

    /// Whether running it changes no database.
    bool IsReadOnly() const;
    /// How many columns its rows have; 0 for a statement that gives none.
    int ColumnCount() const;
    std::string ColumnName(int column) const;

    bool IsNull(int column) const;
    bool IsInteger(int column) const;
    std::int64_t Integer(int column) const;
    /// How many bytes a text or a blob of the column has; 0 for a number and for null.
    std::uint64_t Bytes(int column) const;
    double Real(int column) const;
    /// The column converted to text by SQLite, NUL characters included.
    std::string Text(int column) const;

private:
    friend class Connection;
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    std::unique_ptr<sqlite3_stmt, Finalizer> mStatement;
};

/// Waits a moment for a lock of another program, who has it for a single change as a rule. False after some five seconds.
bool WaitForLock(int tries);

/// A connection to one database file through SQLite's own interface, for files that only share their tables with the
/// library. Not thread-safe.
class Connection {
public:
    enum class Mode { READ_ONLY, CREATE };

    /// Opens a database file, whatever its name: ":memory:" and "file:a" are files as well. False on failure; see GetError.
    /// Refuses an existing path that is no plain file. Statements wait for locks as WaitForLock does.
    bool Open(const std::string& path, Mode mode);
    /// Makes an empty database that is in no file.
    bool OpenInMemory();
    /// From now on, while another connection has the database locked, a statement asks `tryAgain` with the number of
    /// tries so far, and fails if that says no; null doesn't wait. Call it on an open connection.
    void WhileLocked(std::function<bool(int tries)> tryAgain);
    /// Runs statements that have neither parameters nor results.
    bool Execute(const std::string& sql);
    /// Writes the database, as it is at one moment even while others write, to a new file.
    bool WriteCopy(const std::string& path);
    /// How many rows the last statement that changes rows has changed.
    std::int64_t Changes() const;
    /// Nothing on failure; see GetError.
    std::optional<Statement> Prepare(const std::string& sql);

    /// From now on a statement is interrupted if it takes more steps than reading a file of this size can, and fails if
    /// it builds texts longer than the file: a view in a foreign file could run for ever. Call it on an open
    /// connection, and again if others may have made the file larger.
    void LimitToFile();
    /// Allows a limited connection the work for so many bytes more, and texts of any length: call it before these bytes
    /// are added to the file.
    void AllowBytes(std::uint64_t bytes);

    bool HasError() const;
    bool IsInterrupted() const;
    /// Whether the last statement failed as another connection has the database locked.
    bool IsLocked() const;
    /// Whether it failed as a program has ended within a change, which SQLite would undo in the file to read it.
    bool NeedsRollback() const;
    /// Whether it failed as a file can't be written, as on a full disk.
    bool CannotWrite() const;
    std::string GetError() const;
    bool Close();

private:
    struct Closer {
        void operator()(sqlite3* database) const;
    };
    // Used by handlers of the connection, which is closed first.
    std::unique_ptr<std::int64_t> mWorkLeft;
    std::unique_ptr<std::function<bool(int tries)>> mTryAgain;
    std::unique_ptr<sqlite3, Closer> mDatabase;
    std::uint64_t mFileBytes = 0;
    /// The reason why the file was not passed to SQLite; otherwise empty.
    std::string mRefusal;
};

} // namespace diagnosis

#endif
