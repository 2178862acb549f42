#ifndef ARBORIST_DIAGNOSIS_RULE_SET_COMMON_PART_FACTS_H
#define ARBORIST_DIAGNOSIS_RULE_SET_COMMON_PART_FACTS_H

#include "diagnosis/rule_set/fact_list.h"
#include "diagnosis/rule_source/common_part.h"

namespace diagnosis::rule_set {

/// Adds what the engine reads of the data that rules share.
void AddBeanFacts(const rule_source::ThresholdBean& bean, FactList& facts);
void AddDatabaseFacts(const rule_source::TableBean& table, FactList& facts);

} // namespace diagnosis::rule_set

#endif
