#ifndef ARBORIST_DIAGNOSIS_LINT_READING_COMMAND_RULES_H
#define ARBORIST_DIAGNOSIS_LINT_READING_COMMAND_RULES_H

#include "diagnosis/lint/reading/kept_rules.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::lint {

/// Whether the engine adds a time limit to its query: it does for queries on derived tables, not for those on copies of
/// databases.
inline bool IsLimited(const rule_source::CommandRule& rule)
{
    return !rule.referenceDefDb;
}

/// Whether the values of its query are scaled to thirty days.
inline bool IsNormalizing(const rule_source::CommandRule& rule)
{
    return rule.sqlConditionType == "normalization";
}

} // namespace diagnosis::lint

#endif
