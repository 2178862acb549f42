#ifndef ARBORIST_DIAGNOSIS_TEXT_JSON_TEXT_H
#define ARBORIST_DIAGNOSIS_TEXT_JSON_TEXT_H

#include <optional>
#include <string>
#include <string_view>

#include <json/value.h>

namespace diagnosis {

/// Reads one JSON object or array, strictly: no comments, no key twice, no number or text in another form, nothing after
/// it; a byte order mark may stand before it. Otherwise nothing, and `problem` tells place and reason on one line ("line 3, column 5: Missing ',' or '}' in object declaration").
std::optional<Json::Value> ParseJson(std::string_view text, std::string& problem);

/// What a JSON value is, for messages: "a text", "a number", "an object" ...
const char* JsonKind(const Json::Value& value);

} // namespace diagnosis

#endif
