#ifndef ARBORIST_UTILITIES_JSON_TEXT_H
#define ARBORIST_UTILITIES_JSON_TEXT_H

#include <string>
#include <string_view>

#include <json/value.h>

/// Parses `text` as JSON into `root`. True, with `error` empty, if the text has no error.
///
/// Otherwise `error` describes the error and `root` has the part that was read before it, or its former value if
/// nothing was. Text that is nested too deeply is an error, too. Throws nothing but std::bad_alloc.
bool ParseJson(std::string_view text, Json::Value& root, std::string& error);

/// The member `key` of an object as text, converted from a number or boolean if needed. Empty if `root` is no object,
/// or if the member is missing, null, an object or an array. Does not throw.
std::string MemberText(const Json::Value& root, std::string_view key);

/// True if an empty MemberText means that there is no value: `root` is an object, and the member is neither an object
/// nor an array. Does not throw.
bool IsMemberReadable(const Json::Value& root, std::string_view key);

#endif
