#ifndef ARBORIST_DIAGNOSIS_TEXT_FILE_PATTERN_H
#define ARBORIST_DIAGNOSIS_TEXT_FILE_PATTERN_H

#include <string>
#include <string_view>

namespace diagnosis {

/// Whether the library takes a text as a pattern of file paths: a regular expression in the grammar of ECMAScript of at
/// most 4096 characters. Patterns are compiled recursively, so that a longer one could overflow the stack.
bool IsFilePattern(const std::string& pattern);

/// The characters with which every text that a pattern matches begins: "/data/" of "^/data/.*\.db". Empty if they can't be
/// told from the first characters of the pattern alone, as for one with alternatives.
std::string LiteralStart(std::string_view pattern);

} // namespace diagnosis

#endif
