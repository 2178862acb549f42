#ifndef ARBORIST_DIAGNOSIS_TEXT_ESCAPED_NAME_H
#define ARBORIST_DIAGNOSIS_TEXT_ESCAPED_NAME_H

#include <string>

namespace diagnosis {

/// Converts an id to a name that the Open-PSA Model Exchange Format allows; different ids have different names. A byte
/// that is not allowed (or "_" before "x", or a digit at the front) becomes "_x" and its two hexadecimal digits; the empty
/// id becomes "_x_".
std::string EscapedName(const std::string& id);

/// The inverse of EscapedName; returns a name that EscapedName can't return unchanged.
std::string UnescapedName(const std::string& name);

} // namespace diagnosis

#endif
