#ifndef ARBORIST_STORES_COMMON_PART_EXTERNAL_DATABASES_H
#define ARBORIST_STORES_COMMON_PART_EXTERNAL_DATABASES_H

#include <string>
#include <vector>

#include "arborist/frame/evidence_words.h"
#include "arborist/stores/common_part/database_search.h"

class TextLimits;

/// Copies databases of other software, so that rules can query them. The originals are only read.
namespace ExternalDatabases {

/// The paths of copies and, where there are none, why. Not whole if a file could not be copied, or not unpacked whole,
/// or if a limit of the search kept listings out.
struct Copies {
    std::vector<std::string> files;
    Evidence::NoCopy missing = Evidence::NoCopy::NONE;
    bool isWhole = true;
};

/// Searches `path` for files whose path matches the regular expression `dbName`, copies or unpacks them into the
/// directory Settings::APP_DATABASE_DIR and returns the copies; a file that the search repeats is listed again. A
/// failure logs a line and doesn't end the call. Throws std::regex_error for a pattern that is no regular expression.
/// Searches `mostEntries` files and directories, and no others.
Copies CopyDbFile(const std::string& path, const std::string& dbName,
    std::size_t mostEntries = DatabaseSearch::MOST_ENTRIES);

/// Unpacks an archive into `directory` and returns the paths of its files there, copied or not. Empty on failure.
/// Sets `isWhole`, if it is not null: false if the archive or one of its files could not be unpacked or copied. Reads the
/// archive at `opened`, another path of it, if that is not empty.
std::vector<std::string> UnZipFile(const std::string& zipPath, const std::string& directory, bool* isWhole = nullptr,
    const std::string& opened = {});

/// Runs the statements of `sql`, separated by semicolons, on a copy, up to the first that fails. False, with a line, if
/// one fails or there is none; statements that ran are not undone. Lowers the limits of `sql` after a
/// statement that reached them.
bool CreateTable(const std::string& dbPath, const std::string& sql, TextLimits& limits);

} // namespace ExternalDatabases

#endif
