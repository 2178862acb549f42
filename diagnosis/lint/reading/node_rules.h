#ifndef ARBORIST_DIAGNOSIS_LINT_READING_NODE_RULES_H
#define ARBORIST_DIAGNOSIS_LINT_READING_NODE_RULES_H

#include <string_view>
#include <unordered_set>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/reading/kept_rules.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::lint {

/// Whether the engine calculates its formula.
inline bool HasFormula(const rule_source::NodeRule& rule)
{
    return !rule.expressionType.empty() && !rule.ret.empty() && !rule.express.empty();
}

/// The keys of its parameters, for finding the one that a name was meant to be. The rule must outlive the result.
NearNames KeysOf(const rule_source::NodeRule& rule);
std::unordered_set<std::string_view> ParamKeys(const rule_source::NodeRule& rule);
/// The keys that receive the values of its node files.
std::unordered_set<std::string_view> NodeKeys(const rule_source::NodeRule& rule);

} // namespace diagnosis::lint

#endif
