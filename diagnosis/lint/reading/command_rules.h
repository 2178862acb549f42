#ifndef ARBORIST_DIAGNOSIS_LINT_READING_COMMAND_RULES_H
#define ARBORIST_DIAGNOSIS_LINT_READING_COMMAND_RULES_H

#include "diagnosis/lint/reading/kept_rules.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::lint {

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
