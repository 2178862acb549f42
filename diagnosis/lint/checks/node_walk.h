#ifndef ARBORIST_DIAGNOSIS_LINT_CHECKS_NODE_WALK_H
#define ARBORIST_DIAGNOSIS_LINT_CHECKS_NODE_WALK_H

#include <string_view>
#include <unordered_set>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/subject.h"

namespace diagnosis::lint {

/// Calls `visit(rule)` for each node rule that is kept.
template <typename Visit>
void ForEachNodeRule(const Subject& subject, Visit visit)
{
    for (const rule_source::NodeRule& rule : subject.rules.rules.nodeRules) {
        if (rule.isKept) {
            visit(rule);
        }
    }
}

/// Whether the engine works out its formula.
inline bool HasFormula(const rule_source::NodeRule& rule)
{
    return !rule.expressionType.empty() && !rule.ret.empty() && !rule.express.empty();
}

/// The keys of its parameters, to find the one that a name was meant to be. The rule must outlive it.
NearNames KeysOf(const rule_source::NodeRule& rule);
std::unordered_set<std::string_view> ParamKeys(const rule_source::NodeRule& rule);
/// The keys that take the values of its node files.
std::unordered_set<std::string_view> NodeKeys(const rule_source::NodeRule& rule);

} // namespace diagnosis::lint

#endif
