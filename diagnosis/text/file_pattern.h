#ifndef ARBORIST_DIAGNOSIS_TEXT_FILE_PATTERN_H
#define ARBORIST_DIAGNOSIS_TEXT_FILE_PATTERN_H

#include <cstddef>
#include <string>

namespace diagnosis {

/// Patterns are compiled recursively, so that a longer one could overflow the stack.
constexpr std::size_t LONGEST_FILE_PATTERN = 4096;

/// Whether the library takes a text as a pattern of file paths: a regular expression in the grammar of ECMAScript that is
/// no longer than LONGEST_FILE_PATTERN.
bool IsFilePattern(const std::string& pattern);

} // namespace diagnosis

#endif
