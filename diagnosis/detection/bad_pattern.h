#ifndef ARBORIST_DIAGNOSIS_DETECTION_BAD_PATTERN_H
#define ARBORIST_DIAGNOSIS_DETECTION_BAD_PATTERN_H

#include <string>

#include "arborist/frame/evidence.h"

namespace diagnosis {

/// The message for a file name pattern that is no regular expression, which the library lets out of a detection as
/// an exception without saying which one: names the "defDBTable" entry and the text of each such pattern.
std::string BadPatternMessage(const Evidence::RuleSet& ruleSet, const std::string& reason);

} // namespace diagnosis

#endif
