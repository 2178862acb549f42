#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_RESULTS_DATABASE_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_RESULTS_DATABASE_H

#include <functional>
#include <optional>
#include <string>

#include "diagnosis/problem.h"
#include "diagnosis/sqlite/database_files.h"

namespace diagnosis::results_db {

/// Gives an empty database the schema of results.
std::optional<Failure> CreateSchema(Connection& database, const std::string& path);

/// What to ask while another process has a results database locked: waits a moment, and says no after a minute.
bool WaitForOthers(int tries);

/// The failure `bad_results` if an open database is no results database, has the schema of another version, or lacks the
/// tables and views of its version as CreateSchema makes them: a view in their place could run for ever. Tables, views
/// and indexes of columns that somebody added beside them are left alone; triggers and other indexes would run with an
/// import.
std::optional<Failure> CheckSchema(Connection& database, const std::string& path);

/// Opens an existing results database for reading, as it is at this moment: nobody changes it while it is open. It must
/// have the schema of this version. Statements are limited by the size of the file. Asks `tryAgain` while another
/// process has it locked.
std::optional<Failure> OpenResults(
    const std::string& path, ReadOnlyDatabase& database, const std::function<bool(int tries)>& tryAgain = WaitForOthers);

/// The failure `bad_results` with the last error of the connection.
Failure DatabaseFailure(const std::string& path, const Connection& database);

/// True if a regular file starts as every SQLite database does. Reads nothing of a pipe.
bool IsDatabaseFile(const std::string& path);

} // namespace diagnosis::results_db

#endif
