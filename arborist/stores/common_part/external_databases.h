#ifndef ARBORIST_STORES_COMMON_PART_EXTERNAL_DATABASES_H
#define ARBORIST_STORES_COMMON_PART_EXTERNAL_DATABASES_H

#include <string>
#include <vector>

namespace FT::sql {
struct SqlLimits;
}

/// Copies of databases that other software left on disk, which rules query. The files themselves are only read.
namespace ExternalDatabases {

/// Searches `path` for files whose path matches the regular expression `dbName`, copies or unpacks them into the
/// directory Settings::APP_DATABASE_DIR and lists the copies; a file that was found again is listed again. Failures log
/// lines and end nothing. Raises std::regex_error for a pattern that is no regular expression.
std::vector<std::string> CopyDbFile(const std::string& path, const std::string& dbName);

/// Unpacks an archive into `directory` and lists what lies there now of its files, copied or not. Empty on failure.
std::vector<std::string> UnZipFile(const std::string& zipPath, const std::string& directory);

/// Runs the statements of `sql`, divided by semicolons, on a copy, up to the first that fails. False, with a line, when
/// one fails or there is nothing to run; what ran stays. Lowers `limits` after a statement that reached them.
bool CreateTable(const std::string& dbPath, const std::string& sql, FT::sql::SqlLimits& limits);

} // namespace ExternalDatabases

#endif
