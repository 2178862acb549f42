#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_RULE_SET_MEMORY_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_RULE_SET_MEMORY_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <tuple>

#include "diagnosis/evidence/rule_set_warnings.h"

namespace diagnosis {

/// Checks a rule set under a tag.
std::shared_ptr<const RuleSetWarnings> CheckRuleSet(const rule_source::RuleSetPaths& paths, const std::string& tag);

/// Checks rule sets and remembers what was found, so that many bundles with equal rule sets cost one check. Rule sets
/// are compared by a hash of their files. A collision only gives a bundle the warnings of another rule set; results
/// don't depend on it.
class RuleSetMemory {
public:
    std::shared_ptr<const RuleSetWarnings> Check(const rule_source::RuleSetPaths& paths, const std::string& tag);

    /// Checks every rule set of a folder under each of its tags, until the memory is full. For a process that is about to
    /// fork workers, which then share what was found.
    void CheckFolder(const std::string& folder);

    /// How many rule sets are remembered, each under one tag.
    std::size_t Count() const { return mKnown.size(); }

private:
    /// At this many entries the memory is cleared, as a batch of foreign bundles may have a rule set for each.
    static constexpr std::size_t LARGEST_NUMBER = 64;

    /// The paths, too, as they stand in warnings.
    using Key = std::tuple<std::string, std::string, std::string, std::size_t, std::size_t>;

    void CheckTags(const rule_source::RuleSetPaths& paths);

    std::map<Key, std::shared_ptr<const RuleSetWarnings>> mKnown;
};

} // namespace diagnosis

#endif
