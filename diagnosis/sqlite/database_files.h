#ifndef ARBORIST_DIAGNOSIS_SQLITE_DATABASE_FILES_H
#define ARBORIST_DIAGNOSIS_SQLITE_DATABASE_FILES_H

#include <optional>
#include <string>

#include "diagnosis/problem.h"
#include "diagnosis/scratch/scratch.h"
#include "diagnosis/sqlite/connection.h"

namespace diagnosis {

/// Whether reading the database at `path` would write beside it or into it: it is in WAL mode, or an unfinished
/// change waits in a journal.
bool IsTouchedByReading(const std::string& path);

/// Copies a database with what waits beside it in a journal or WAL; the copy can be written. What stands at `target`
/// is replaced. Otherwise answers why not.
std::optional<Failure> CopyDatabase(const std::string& source, const std::string& target);

/// A connection to a database that is read and nothing more: no byte of it changes and no file comes into being
/// beside it. Where SQLite would do either, a copy in a scratch folder is read. Its work is limited to its size.
class ReadOnlyDatabase {
public:
    /// `code` is that of the failure.
    std::optional<Failure> Open(const std::string& path, const std::string& code);
    Connection& Get() { return mConnection; }

private:
    // In this order: the connection is closed before its file goes.
    Scratch mScratch;
    Connection mConnection;
};

} // namespace diagnosis

#endif
