#ifndef ARBORIST_DIAGNOSIS_REDACTION_AFFECTED_RULES_H
#define ARBORIST_DIAGNOSIS_REDACTION_AFFECTED_RULES_H

#include <vector>

#include "diagnosis/redaction/redaction_report.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis {

/// The rules of a rule set that read what a redaction replaced, in the order of the rule file, with what they read. All others
/// answer as before. Rather names a rule too many: SQL is searched for the words of names.
std::vector<AffectedRule> AffectedRules(const rule_source::RuleSet& rules, const RedactionReport& report);

} // namespace diagnosis

#endif
