#ifndef ARBORIST_DIAGNOSIS_SQLITE_CONNECTION_H
#define ARBORIST_DIAGNOSIS_SQLITE_CONNECTION_H

#include <cstdint>
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
    void Bind(int parameter, const std::string& text);
    void BindNull(int parameter);
    /// Runs to the next row; false at the end or on an error, which the connection tells.
    bool Step();
    /// Ready to run again.
    void Reset();

    bool IsNull(int column) const;
    bool IsInteger(int column) const;
    std::int64_t Integer(int column) const;
    /// The column as SQLite converts it to text, NUL characters included.
    std::string Text(int column) const;

private:
    friend class Connection;
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    std::unique_ptr<sqlite3_stmt, Finalizer> mStatement;
};

/// A connection to one database file, through SQLite's own interface: the command reads and makes files that the
/// library only knows by their layout. One thread at a time.
class Connection {
public:
    enum class Mode { READ_ONLY, CREATE };

    /// Opens; false on failure, which GetError tells. What is there and no plain file is refused.
    bool Open(const std::string& path, Mode mode);
    /// Runs statements without parameters and results.
    bool Execute(const std::string& sql);
    /// Nothing on failure, which GetError tells.
    std::optional<Statement> Prepare(const std::string& sql);

    /// From now on statements fail when they take more work than reading a file of this size can, as interrupted, or
    /// make texts longer than the file: a view of a stranger could count for ever. To be called on an open connection.
    void LimitToFile();

    bool HasError() const;
    bool IsInterrupted() const;
    std::string GetError() const;
    std::int64_t LastRowId() const;
    bool Close();

private:
    struct Closer {
        void operator()(sqlite3* database) const;
    };
    // The handler that it belongs to goes with the connection, which is closed first.
    std::unique_ptr<std::int64_t> mWorkLeft;
    std::unique_ptr<sqlite3, Closer> mDatabase;
    std::uint64_t mFileBytes = 0;
    /// Why the file was not given to SQLite; else empty.
    std::string mRefusal;
};

} // namespace diagnosis

#endif
