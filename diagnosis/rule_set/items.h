#ifndef ARBORIST_DIAGNOSIS_RULE_SET_ITEMS_H
#define ARBORIST_DIAGNOSIS_RULE_SET_ITEMS_H

#include <vector>

#include "diagnosis/rule_set/item.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::rule_set {

/// Everything that the engine reads for one tag, as items with facts. Two rule sets with equal items mean the same: what
/// the engine skips, replaces or strips is in none. In order of kind, and of file in each kind.
std::vector<Item> ItemsOf(const rule_source::RuleSet& rules);

/// "alarm", "command", "code", "node".
const char* FamilyWord(rule_source::Family family);
/// "intermediate", "basic", "undeveloped".
const char* EventWord(rule_source::EventKind kind);
/// The names of an alternative: "a", or "a and b" for a group.
std::string AlternativeText(const rule_source::BindingAlternative& alternative);

} // namespace diagnosis::rule_set

#endif
