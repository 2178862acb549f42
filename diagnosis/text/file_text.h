#ifndef ARBORIST_DIAGNOSIS_TEXT_FILE_TEXT_H
#define ARBORIST_DIAGNOSIS_TEXT_FILE_TEXT_H

#include <optional>
#include <string>

#include <json/value.h>

namespace diagnosis {

/// The content of a file; nothing if it can't be read, as a folder can't. Waits for a pipe's writer.
std::optional<std::string> FileText(const std::string& path);

/// The object or array of a JSON file, which is read strictly. On failure returns nothing and sets `problem` to the path
/// and the reason on one line.
std::optional<Json::Value> ReadJsonFile(const std::string& path, std::string& problem);

} // namespace diagnosis

#endif
