#ifndef ARBORIST_FRAME_RULE_SET_SUMMARY_H
#define ARBORIST_FRAME_RULE_SET_SUMMARY_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "arborist/arborist_export.h"

/// The names in a rule set, for a host that collects the data of a detection or checks its arguments. Evaluates
/// nothing: includes the names of every rule, whether or not it would run on this device.
struct RuleSetSummary {
    /// A tag of the tree file, and the line of its first element.
    struct Tag {
        std::string name; ///< as the element is called
        int line = 0;     ///< from 1
    };

    /// False for a file that is missing or no well-formed XML; such a file adds no names.
    ///@{
    bool isTreeFileRead = false;
    bool isRuleFileRead = false;
    ///@}

    /// The tags of all trees in the file, each once, in file order.
    std::vector<Tag> tags;

    // The members below cover the requested tag only; each entry is listed once.

    /// Paths of node files, and of folders that are searched for databases, as the rules name them, in file order.
    ///@{
    std::vector<std::string> nodeFiles;
    std::vector<std::string> searchedFolders;
    ///@}
    /// Detection codes of the code rules, in file order.
    std::vector<std::string> detectCodes;
    /// The longest look-back of all rules and derived tables, in days; 0 if none looks back, not set if one has no limit.
    std::optional<std::int64_t> longestWindow = 0;
    /// The ids under which recorded repairs count for events, sorted; with "_" and the operation if the repair has one.
    std::vector<std::string> repairIds;
};

/// The paths of the two files of a rule set in `folder`. Unless `prefix` is empty, it and "_" precede their names.
ARBORIST_EXPORT std::string TreeFilePath(const std::string& folder, const std::string& prefix);
ARBORIST_EXPORT std::string RuleFilePath(const std::string& folder, const std::string& prefix);

/// The path at which a detection reads `path` of a rule file; `root` is the root directory of the device, as in
/// Settings::DEVICE_ROOT_DIR, or empty for this machine: then `path` itself. Neither ".." nor a symbolic link leads out of
/// `root`, or out of the working directory if `path` is relative. Empty for links in a circle.
ARBORIST_EXPORT std::string PathOnDevice(const std::string& root, const std::string& path);

/// The line, from 1, of the first element with more than 256 attributes; 0 if there is none, or if the text has at most
/// 16 KiB. The library doesn't read a file with such an element: the XML reader compares each attribute with all before
/// it, so that the time would grow with the square of their number.
ARBORIST_EXPORT int LineOfTooManyAttributes(std::string_view xml);

/// Whether a detection takes `pattern` as the pattern of the paths of an external database (`dbName`): a regular expression
/// in the grammar of ECMAScript with at most 4096 characters, whose automaton has at most some 1000 states; "{n}" makes
/// n times the states of what it repeats. A detection ends with std::regex_error at a pattern that it doesn't take.
ARBORIST_EXPORT bool IsFileNamePattern(const std::string& pattern);

/// Reads both files of a rule set. Throws nothing, and logs only a repair whose operation can't be read.
ARBORIST_EXPORT RuleSetSummary SummariseRuleSet(
    const std::string& folder, const std::string& prefix, const std::string& treeTag);

#endif
