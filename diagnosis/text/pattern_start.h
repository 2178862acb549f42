#ifndef ARBORIST_DIAGNOSIS_TEXT_PATTERN_START_H
#define ARBORIST_DIAGNOSIS_TEXT_PATTERN_START_H

#include <string_view>

namespace diagnosis {

/// Whether a pattern of file paths may match a text that begins with `start` and is longer. False is certain; true means
/// "perhaps": numbers of repetitions, backreferences, lookaheads and borders of words count as matched. For a
/// pattern that the library doesn't take, see IsFileNamePattern, the answer means nothing. Takes time proportional to
/// the product of both lengths.
bool MayMatchBeyond(std::string_view pattern, std::string_view start);

} // namespace diagnosis

#endif
