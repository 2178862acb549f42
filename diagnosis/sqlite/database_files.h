#ifndef ARBORIST_DIAGNOSIS_SQLITE_DATABASE_FILES_H
#define ARBORIST_DIAGNOSIS_SQLITE_DATABASE_FILES_H

#include <functional>
#include <optional>
#include <string>

#include "diagnosis/problem.h"
#include "diagnosis/scratch/scratch.h"
#include "diagnosis/sqlite/connection.h"

namespace diagnosis {

/// True if reading the database at `path` would write into it or beside it: it is in WAL mode, or a program has ended
/// within a change, which the journal would undo.
bool IsTouchedByReading(const std::string& path);

/// Copies a database with its journal or WAL to `target`, replacing an existing file; the copy is writable. A database that
/// is not in WAL mode is locked meanwhile, as for reading: asks `tryAgain` while another program changes it. Returns the
/// failure, if any.
std::optional<Failure> CopyDatabase(const std::string& source, const std::string& target,
    const std::function<bool(int tries)>& tryAgain = WaitForLock);

/// A connection that only reads: no byte of the database changes and no file is created beside it. If SQLite would do
/// either, reads a copy in a scratch folder. Limits statements by the size of the file.
class ReadOnlyDatabase {
public:
    /// `code` is the code of the failure.
    std::optional<Failure> Open(const std::string& path, FailureCode code);
    Connection& Get() { return mConnection; }

private:
    // In this order, so that the connection is closed before its file is removed.
    Scratch mScratch;
    Connection mConnection;
};

} // namespace diagnosis

#endif
