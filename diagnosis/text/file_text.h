#ifndef ARBORIST_DIAGNOSIS_TEXT_FILE_TEXT_H
#define ARBORIST_DIAGNOSIS_TEXT_FILE_TEXT_H

#include <cstddef>
#include <limits>
#include <optional>
#include <string>

#include <json/value.h>

namespace diagnosis {

/// The most bytes of a file that people write, as of a key or a list; one without an end would take all memory.
inline constexpr std::size_t MOST_WRITTEN_BYTES = std::size_t{1} << 20;
inline constexpr char TOO_LARGE[] = "is larger than 1 MiB";
inline constexpr std::size_t NO_LIMIT = std::numeric_limits<std::size_t>::max() / 2;

/// The content of a file; nothing if it can't be read, as a folder can't. Waits for a pipe's writer. Of a file with more
/// bytes than `most`, no more than some bytes beyond these.
std::optional<std::string> FileText(const std::string& path, std::size_t most = NO_LIMIT);

/// The object or array of a JSON file, which is read strictly. With more bytes than `most`, which MOST_WRITTEN_BYTES is
/// for, that is a failure. On failure returns nothing and sets `problem` to the path and the reason on one line.
std::optional<Json::Value> ReadJsonFile(const std::string& path, std::string& problem, std::size_t most = NO_LIMIT);

} // namespace diagnosis

#endif
