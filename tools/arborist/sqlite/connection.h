#ifndef ARBORIST_TOOLS_SQLITE_CONNECTION_H
#define ARBORIST_TOOLS_SQLITE_CONNECTION_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace command {

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

    /// From now on a statement that takes more than `steps` of SQLite's machine fails as interrupted.
    void LimitWork(int steps);

    bool HasError() const;
    bool IsInterrupted() const;
    std::string GetError() const;
    std::int64_t LastRowId() const;
    bool Close();

private:
    struct Closer {
        void operator()(sqlite3* database) const;
    };
    std::unique_ptr<sqlite3, Closer> mDatabase;
    /// Why the file was not given to SQLite; else empty.
    std::string mRefusal;
};

} // namespace command

#endif
