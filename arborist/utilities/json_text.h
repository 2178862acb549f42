#ifndef ARBORIST_UTILITIES_JSON_TEXT_H
#define ARBORIST_UTILITIES_JSON_TEXT_H

#include <string>
#include <string_view>

#include <json/value.h>

/// Reads `text` as JSON into `root` and answers whether that went without fault; `error` is then empty.
///
/// On a fault `error` says which, and what had been read by then is in `root`; where nothing had, `root` keeps its
/// former value. Text nested deeper than the reader goes is a fault, too. Raises nothing.
bool ParseJson(std::string_view text, Json::Value& root, std::string& error);

/// The member `key` of an object as text; numbers and booleans become text. Empty when `root` is no object, when the
/// member is missing or null, and when it is an object or array. Raises nothing.
std::string MemberText(const Json::Value& root, std::string_view key);

#endif
