#ifndef ARBORIST_DIAGNOSIS_RULE_SET_RULE_FACTS_H
#define ARBORIST_DIAGNOSIS_RULE_SET_RULE_FACTS_H

#include "diagnosis/rule_set/fact_list.h"
#include "diagnosis/rule_source/rules.h"

namespace diagnosis::rule_set {

/// Adds what the engine reads of a rule: its filters, and what its family has.
void AddRuleFacts(const rule_source::Rule& rule, FactList& facts);

} // namespace diagnosis::rule_set

#endif
