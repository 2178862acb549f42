#ifndef ARBORIST_DIAGNOSIS_LINT_CHECKS_COMMAND_WALK_H
#define ARBORIST_DIAGNOSIS_LINT_CHECKS_COMMAND_WALK_H

#include "diagnosis/lint/base/subject.h"

namespace diagnosis::lint {

/// Calls `visit(rule)` for each command rule that is kept.
template <typename Visit>
void ForEachCommandRule(const Subject& subject, Visit visit)
{
    for (const rule_source::CommandRule& rule : subject.rules.rules.commandRules) {
        if (rule.isKept) {
            visit(rule);
        }
    }
}

/// Whether the engine puts a time limit behind its query: it reads derived tables, and no copies of databases.
inline bool IsLimited(const rule_source::CommandRule& rule)
{
    return !rule.referenceDefDb;
}

/// Whether its query scales what it reads to thirty days.
inline bool IsNormalizing(const rule_source::CommandRule& rule)
{
    return rule.sqlConditionType == "normalization";
}

} // namespace diagnosis::lint

#endif
