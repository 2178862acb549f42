#ifndef ARBORIST_DIAGNOSIS_TEXT_FILE_PATTERN_H
#define ARBORIST_DIAGNOSIS_TEXT_FILE_PATTERN_H

#include <string>

namespace diagnosis {

/// Whether the library takes a text as a pattern of file paths: a regular expression in the grammar of ECMAScript of at
/// most 4096 characters. Patterns are compiled recursively, so that a longer one could overflow the stack.
bool IsFilePattern(const std::string& pattern);

} // namespace diagnosis

#endif
