#ifndef ARBORIST_FRAME_RULE_SET_SUMMARY_H
#define ARBORIST_FRAME_RULE_SET_SUMMARY_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "arborist/arborist_export.h"

/// What a rule set names, for a host that gathers what a detection will look at or checks what it was asked for.
/// Nothing is evaluated: what a rule names is in it whether or not the rule would run on this device.
struct RuleSetSummary {
    /// A tag of the tree file, and the line of its first element.
    struct Tag {
        std::string name;
        int line = 0;
    };

    /// False for a file that is missing or no well-formed XML; it then adds nothing.
    bool isTreeFileRead = false;
    bool isRuleFileRead = false;

    /// Each once, in file order; those of all trees in the file.
    std::vector<Tag> tags;

    // All below is what stands under the one tag that was asked for, each once.

    /// Paths of node files, and of folders that are searched for databases, as the rules name them, in file order.
    std::vector<std::string> nodeFiles;
    std::vector<std::string> searchedFolders;
    /// Detection codes of the code rules, in file order.
    std::vector<std::string> detectCodes;
    /// The longest look-back of all rules and derived tables, in days; 0 without any, nothing when one is so long that
    /// it has no bound.
    std::optional<std::int64_t> longestWindow = 0;
    /// The ids under which recorded repairs count for events, sorted; with "_" and the operation where there is one.
    std::vector<std::string> repairIds;
};

/// Paths of the two files of a rule set in `folder`; `prefix`, unless empty, and "_" stand before their names.
ARBORIST_EXPORT std::string TreeFilePath(const std::string& folder, const std::string& prefix);
ARBORIST_EXPORT std::string RuleFilePath(const std::string& folder, const std::string& prefix);

/// Where a detection reads `path`, as a rule file names it, on a device whose root directory is `root`
/// (Settings::DEVICE_ROOT_DIR). Neither ".." nor a symbolic link leads out of that root, or for a relative path out of the
/// working directory. With an empty `root`, which stands for this machine, `path` itself; empty for links in a circle.
ARBORIST_EXPORT std::string PathOnDevice(const std::string& root, const std::string& path);

/// Reads both files of a rule set. Raises nothing, and logs only a repair whose operation can't be read.
ARBORIST_EXPORT RuleSetSummary SummariseRuleSet(
    const std::string& folder, const std::string& prefix, const std::string& treeTag);

#endif
