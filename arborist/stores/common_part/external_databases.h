#ifndef ARBORIST_STORES_COMMON_PART_EXTERNAL_DATABASES_H
#define ARBORIST_STORES_COMMON_PART_EXTERNAL_DATABASES_H

#include <cstdint>
#include <string>
#include <vector>

#include "arborist/frame/evidence_words.h"
#include "arborist/stores/common_part/database_search.h"

class TextLimits;

/// Copies databases of other software, so that rules can query them. The originals are only read.
namespace ExternalDatabases {

/// Bytes that one search unpacks again, 16 KiB more for each member and 64 KiB for each archive; to these come, for each
/// archive, UNPACKED_AGAIN_FOR_A_BYTE times its size.
constexpr std::uint64_t MOST_UNPACKED_AGAIN = 1024ULL * 1024 * 1024;
constexpr std::uint64_t UNPACKED_AGAIN_FOR_A_BYTE = 100;

/// The paths of copies and, where there are none, why. Not whole if a file could not be copied, or not unpacked whole,
/// or if a limit of the search kept listings out.
struct Copies {
    std::vector<std::string> files;
    Evidence::NoCopy missing = Evidence::NoCopy::NONE;
    bool isWhole = true;
};

/// Searches `path` for files whose path matches the regular expression `dbName`, copies or unpacks them into the
/// directory Settings::APP_DATABASE_DIR and returns the copies; a file that the search repeats is listed again, and
/// written again if its copy doesn't stand any more. A failure logs a line and doesn't end the call. Archives are unpacked
/// again up to `mostUnpackedAgain`, and listed again up to DatabaseSearch::MOST_LISTINGS_IN_ALL files. Searches
/// `mostEntries` files and directories, and no others. Throws std::regex_error for a pattern that is no regular expression.
Copies CopyDbFile(const std::string& path, const std::string& dbName,
    std::size_t mostEntries = DatabaseSearch::MOST_ENTRIES, std::uint64_t mostUnpackedAgain = MOST_UNPACKED_AGAIN);

/// What became of an archive.
struct Unpacking {
    /// False if the archive or one of its files could not be unpacked or copied.
    bool isWhole = false;
    /// True if doing it again would log nothing and give the same files.
    bool isRepeatable = false;
    /// See ZipUtil::UnZipFile.
    std::uint64_t work = 0;
};

/// Unpacks an archive into `directory` and returns the paths of its files there, copied or not. Empty on failure.
/// Tells in `unpacking`, if it is not null, what became of it. Reads the archive at `opened`, another path of it, if that
/// is not empty.
std::vector<std::string> UnZipFile(const std::string& zipPath, const std::string& directory,
    Unpacking* unpacking = nullptr, const std::string& opened = {});

/// Runs the statements of `sql`, separated by semicolons, on a copy, up to the first that fails. False, with a line, if
/// one fails or there is none; statements that ran are not undone. Lowers the limits of `sql` after a
/// statement that reached them.
bool CreateTable(const std::string& dbPath, const std::string& sql, TextLimits& limits);

} // namespace ExternalDatabases

#endif
