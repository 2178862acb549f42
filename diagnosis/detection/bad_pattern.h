#ifndef ARBORIST_DIAGNOSIS_DETECTION_BAD_PATTERN_H
#define ARBORIST_DIAGNOSIS_DETECTION_BAD_PATTERN_H

#include <string>

#include "arborist/frame/evidence.h"

namespace diagnosis {

/// The message for file name patterns that are no regular expressions: names the "defDBTable" entry and the text of
/// each. The exception with which the library ends the detection doesn't say which pattern it was.
std::string BadPatternMessage(const Evidence::RuleSet& ruleSet, const std::string& reason);

} // namespace diagnosis

#endif
