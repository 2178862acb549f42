#ifndef ARBORIST_DIAGNOSIS_REDACTION_AFFECTED_RULES_H
#define ARBORIST_DIAGNOSIS_REDACTION_AFFECTED_RULES_H

#include <vector>

#include "diagnosis/redaction/redaction_report.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis {

/// The rules of a rule set that read what a redaction replaced, in the order of the rule file, with what they read. All
/// others answer as before. May list a rule that reads none of it, as SQL is only searched for the names.
std::vector<AffectedRule> AffectedRules(const rule_source::RuleSet& rules, const RedactionReport& report);

} // namespace diagnosis

#endif
