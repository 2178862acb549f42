#ifndef ARBORIST_DIAGNOSIS_BUNDLE_RULE_PATHS_H
#define ARBORIST_DIAGNOSIS_BUNDLE_RULE_PATHS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle.h"

namespace diagnosis {

/// What a rule set looks at on a device, beside the library's own databases, and what a host asks it for.
struct RulePaths {
    /// As the rules name them, each once, in file order.
    std::vector<std::string> nodeFiles;
    std::vector<std::string> searchedFolders;
    /// Detection codes of the code rules.
    std::vector<std::string> codes;
    /// The longest time window of all rules, days; nothing when one has no bound.
    std::optional<std::int64_t> longestWindow = 0;
};

/// Path of the rule file of a bundle, from the bundle's folder.
std::string RuleFilePath(const Bundle& bundle);
std::string TreeFilePath(const Bundle& bundle);

/// Reads what stands under the bundle's tag in its rule file, whether or not a rule ever asks for it on this device.
/// A file that can't be read names nothing.
RulePaths ReadRulePaths(const Bundle& bundle);

/// The ids under which recorded repairs count for events of the bundle's tag. Nothing when a file of the rule set can't
/// be read.
std::optional<std::vector<std::string>> ReadRepairIds(const Bundle& bundle);

/// The tags of a tree file, each once; none when it can't be read.
std::vector<std::string> ReadTags(const std::string& treeFile);

/// Where the library looks for a path of a rule on a device whose root is at `root`.
std::string OnDevice(const std::string& root, const std::string& path);

} // namespace diagnosis

#endif
