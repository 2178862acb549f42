#ifndef ARBORIST_DIAGNOSIS_BUNDLE_RULE_PATHS_H
#define ARBORIST_DIAGNOSIS_BUNDLE_RULE_PATHS_H

#include <string>

#include "arborist/frame/rule_set_summary.h"
#include "diagnosis/bundle/bundle.h"

namespace diagnosis {

/// Path of the rule file of a bundle, from the bundle's folder.
std::string RuleFilePath(const Bundle& bundle);
std::string TreeFilePath(const Bundle& bundle);

/// What the rule set of a bundle names, from the bundle's folder.
RuleSetSummary SummariseRuleSet(const Bundle& bundle);

/// Where the library looks for a path of a rule on a device whose root is at `root`.
std::string OnDevice(const std::string& root, const std::string& path);

} // namespace diagnosis

#endif
