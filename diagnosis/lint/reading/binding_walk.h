#ifndef ARBORIST_DIAGNOSIS_LINT_READING_BINDING_WALK_H
#define ARBORIST_DIAGNOSIS_LINT_READING_BINDING_WALK_H

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::lint {

/// Separates the names of a group.
inline constexpr char RULE_NAME_COMMA = ',';

/// True if the section has an element of the tag. A missing one is a finding of its own, so that names are not reported
/// then.
inline bool HasSection(const rule_source::RuleSet& rules, rule_source::SectionKind kind)
{
    return rules.hasRules && rules.SectionOf(kind).tag;
}

/// Calls `visit(binding, alternative)` for each alternative of the entries that count, including those that the engine
/// drops.
template <typename Visit>
void ForEachAlternative(const rule_source::RuleSet& rules, Visit visit)
{
    for (const rule_source::Binding& binding : rules.bindings.all) {
        if (binding.isKept && !binding.isReplaced) {
            for (const rule_source::BindingAlternative& alternative : binding.alternatives) {
                visit(binding, alternative);
            }
        }
    }
}

/// Calls `visit(binding, name)` for each name of a rule that the engine reads.
template <typename Visit>
void ForEachRuleName(const rule_source::RuleSet& rules, Visit visit)
{
    ForEachAlternative(rules,
        [&visit](const rule_source::Binding& binding, const rule_source::BindingAlternative& alternative) {
            for (const rule_source::RuleName& name : alternative.names) {
                visit(binding, name);
            }
        });
}

/// The ids of all events of the trees.
void AddEventIds(const rule_source::RuleSet& rules, NearNames& names);

/// The text without the white space at its ends.
std::string_view Trimmed(std::string_view text);
bool IsPadded(std::string_view text);

} // namespace diagnosis::lint

#endif
