#ifndef ARBORIST_STORES_SQL_TEMPORARY_FILES_H
#define ARBORIST_STORES_SQL_TEMPORARY_FILES_H

#include <cstdint>
#include <memory>
#include <string>

struct sqlite3_vfs;

namespace FT::sql {

/// The file system of one connection: SQLite's own, except that the temporary files of the connection, in which SQLite
/// sorts and joins what doesn't fit into memory, have a limit on their bytes together. A statement that would exceed it
/// fails with "database or disk is full"; the files go with the statement.
///
/// SQLite knows it by its name as long as the object exists. It must outlive the connection that was opened by it.
class TemporaryFiles {
public:
    /// `mostBytes` is read at each write: whoever owns it may change it.
    explicit TemporaryFiles(const std::uint64_t& mostBytes);
    ~TemporaryFiles();
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;

    /// The name for sqlite3_open_v2; null, which stands for SQLite's own file system, if SQLite can't be initialised.
    const char* GetName() const;

    struct Vfs;

private:
    std::unique_ptr<Vfs> mVfs;
};

} // namespace FT::sql

#endif
