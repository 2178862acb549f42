#ifndef ARBORIST_DIAGNOSIS_DETECTION_BARE_RULES_H
#define ARBORIST_DIAGNOSIS_DETECTION_BARE_RULES_H

#include <string>

#include "diagnosis/detection/detection.h"

namespace diagnosis {

/// Reads the trees of a folder of rules under a tag, without a device: their shape and which events have rules of their
/// own. Statuses and results are meaningless. Runs a detection in which no rule applies, in a private folder that is
/// removed at the end.
DetectionReport ReadBareRules(const BundlePath& rules, const std::string& treeTag);

} // namespace diagnosis

#endif
