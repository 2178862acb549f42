#ifndef ARBORIST_DIAGNOSIS_BUNDLE_RULE_PATHS_H
#define ARBORIST_DIAGNOSIS_BUNDLE_RULE_PATHS_H

#include <optional>
#include <string>

#include "arborist/frame/rule_set_summary.h"
#include "diagnosis/bundle/bundle.h"

namespace diagnosis {

/// Path of the rule file of a bundle, from the bundle's folder.
std::string RuleFilePath(const Bundle& bundle);
std::string TreeFilePath(const Bundle& bundle);

/// What the rule set of a bundle names, from the bundle's folder.
RuleSetSummary SummariseRuleSet(const Bundle& bundle);

/// `path` as it is written when it lies inside a folder, relative and without ".."; nothing for any other.
std::optional<std::string> Inside(const std::string& path);
/// The name of a rule's path in a bundle whose device root is `root`: an absolute path below that root, ".." resolved
/// as text; a relative path itself.
std::string NameOnDevice(const std::string& root, const std::string& path);

} // namespace diagnosis

#endif
