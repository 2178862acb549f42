#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_RESULTS_DATABASE_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_RESULTS_DATABASE_H

#include <optional>
#include <string>

#include "diagnosis/problem.h"
#include "diagnosis/sqlite/connection.h"

namespace diagnosis::results_db {

/// Gives an empty database the schema of results.
std::optional<Failure> CreateSchema(Connection& database, const std::string& path);

/// The failure `bad_results` if an open database is none of results, of another version, or doesn't have the tables and
/// views of its version as CreateSchema made them: a view in their place could run for ever. Tables, views and indexes
/// of columns that somebody added beside them are left alone; triggers and other indexes would run with an import.
std::optional<Failure> CheckSchema(Connection& database, const std::string& path);

/// Opens a results database to ask it: it must exist, have the schema of this version, and is not changed. Statements are
/// limited by the size of the file.
std::optional<Failure> OpenResults(const std::string& path, Connection& database);

/// The failure `bad_results` for what the connection reports last.
Failure DatabaseFailure(const std::string& path, const Connection& database);

/// True if a regular file starts as every SQLite database does. Reads nothing of a pipe.
bool IsDatabaseFile(const std::string& path);

} // namespace diagnosis::results_db

#endif
