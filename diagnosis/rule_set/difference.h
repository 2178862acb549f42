#ifndef ARBORIST_DIAGNOSIS_RULE_SET_DIFFERENCE_H
#define ARBORIST_DIAGNOSIS_RULE_SET_DIFFERENCE_H

#include <string>
#include <vector>

#include "diagnosis/rule_set/item.h"
#include "diagnosis/rule_set/read_rule_set.h"

namespace diagnosis::rule_set {

/// One difference in what two rule sets mean.
struct Change {
    enum class What { ADDED, GONE, CHANGED };

    What what = What::CHANGED;
    std::string tag;
    ItemKind kind = ItemKind::TAG;
    /// The item.
    std::string name;
    /// The fact of the item that changed; empty if the item as a whole was added or is gone.
    std::string key;
    /// The values of a fact; empty where the rule set has none.
    std::string before;
    std::string after;
    /// Where the fact or item is in each rule set; without line where it is not.
    Place beforePlace;
    Place afterPlace;
};

/// "added", "gone", "changed".
const char* ChangeWord(Change::What what);

/// All differences in what the engine reads, in order of tag and kind; none for rule sets that mean the same. What lies
/// below a tag, a tree or an event that only one of them has is not listed.
std::vector<Change> DifferencesOf(const ReadRuleSet& before, const ReadRuleSet& after);

} // namespace diagnosis::rule_set

#endif
