#ifndef ARBORIST_DIAGNOSIS_TEXT_JSON_TEXT_H
#define ARBORIST_DIAGNOSIS_TEXT_JSON_TEXT_H

#include <optional>
#include <string>
#include <string_view>

#include <json/value.h>

namespace diagnosis {

/// Parses one JSON object or array strictly: no comments, no repeated keys, no invalid numbers or strings, no bytes that
/// are no UTF-8, no surrogate without its other half, nothing after it; a byte order mark may precede it. On failure
/// returns nothing and sets `problem` to position and reason on one line ("line 3, column 5: Missing ',' or '}' in object
/// declaration"). Columns count bytes.
std::optional<Json::Value> ParseJson(std::string_view text, std::string& problem);

/// The same for texts whose strings may have any bytes and any escapes: those of rule sets and event logs, as the engine
/// takes them.
std::optional<Json::Value> ParseEngineJson(std::string_view text, std::string& problem);

/// The same for texts with fewer levels of nesting than `deepest`, like requests of hosts, whose names of files are any
/// bytes too. Reading a level takes some 600 bytes of stack.
std::optional<Json::Value> ParseFlatJson(std::string_view text, unsigned deepest, std::string& problem);

/// The type of a JSON value for messages: "a text", "a number", "an object" ...
const char* JsonKind(const Json::Value& value);

} // namespace diagnosis

#endif
