#ifndef ARBORIST_DIAGNOSIS_RESULTS_RULE_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_RULE_JSON_H

#include "diagnosis/evidence/recorded_tree.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

/// Writes a rule with its evidence as an object. Leaves out members that are empty for its family or reason.
void WriteRule(JsonWriter& json, const PlacedRule& placed);

} // namespace diagnosis

#endif
