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

/// The names in the rule set of a bundle; relative paths start at the bundle's folder.
RuleSetSummary SummariseRuleSet(const Bundle& bundle);

/// `path` in normal form if it stays inside a folder, that is relative and without ".."; nothing otherwise.
std::optional<std::string> Inside(const std::string& path);
/// The name of a rule's path in a bundle whose device root is `root`: for an absolute path one below that root, with
/// ".." resolved in the text; a relative path itself.
std::string NameOnDevice(const std::string& root, const std::string& path);

} // namespace diagnosis

#endif
