#ifndef ARBORIST_DIAGNOSIS_DETECTION_BARE_RULES_H
#define ARBORIST_DIAGNOSIS_DETECTION_BARE_RULES_H

#include <string>

#include "diagnosis/detection/detection.h"

namespace diagnosis {

/// The trees of a folder of rules under a tag, without a device: their shape and which events have rules of their
/// own. Statuses and results mean nothing. The detection that finds the trees runs no rule and stays in a private
/// folder that is removed at the end.
DetectionReport ReadBareRules(const BundlePath& rules, const std::string& treeTag);

} // namespace diagnosis

#endif
