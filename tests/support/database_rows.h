#ifndef ARBORIST_TESTS_SUPPORT_DATABASE_ROWS_H
#define ARBORIST_TESTS_SUPPORT_DATABASE_ROWS_H

#include <string>
#include <vector>

/// The rows of a query on a database file, which is opened read-only. Columns are joined by "|", with "null" for NULL.
/// For a statement that fails, a single row: "error: " and SQLite's message.
std::vector<std::string> DatabaseRows(const std::string& path, const std::string& sql);

#endif
