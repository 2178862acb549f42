#ifndef ARBORIST_DIAGNOSIS_RULE_SET_READ_RULE_SET_H
#define ARBORIST_DIAGNOSIS_RULE_SET_READ_RULE_SET_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::rule_set {

/// A rule set to read, as a command line names it.
struct Selection {
    std::string folder;
    /// Unless empty it precedes the names of both files, with "_".
    std::string prefix;
    /// The only tag to look at; empty for all of the tree file.
    std::string tag;
};

/// Both files of a rule set, and what the engine reads from them for each tag.
struct ReadRuleSet {
    std::string folder;
    rule_source::RuleSetFiles files;
    /// In order of appearance in the tree file.
    std::vector<std::unique_ptr<rule_source::RuleSet>> tags;

    /// Null for a tag that was not read.
    const rule_source::RuleSet* Find(const std::string& tag) const;
};

/// Reads a rule set into `target`, which must outlive everything that refers to its elements and can't be moved. Fails
/// if a file can't be read, or if the tree file has no tag, or not the one that was asked for.
std::optional<Failure> ReadInto(const Selection& selection, ReadRuleSet& target);

} // namespace diagnosis::rule_set

#endif
