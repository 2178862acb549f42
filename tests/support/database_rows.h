#ifndef ARBORIST_TESTS_SUPPORT_DATABASE_ROWS_H
#define ARBORIST_TESTS_SUPPORT_DATABASE_ROWS_H

#include <string>
#include <vector>

/// The rows of a query on a database file, opened for reading alone, each as its columns joined by "|" with "null" for
/// NULL. A statement that fails gives one row: "error: " and SQLite's words.
std::vector<std::string> DatabaseRows(const std::string& path, const std::string& sql);

#endif
