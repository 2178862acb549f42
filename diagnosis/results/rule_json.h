#ifndef ARBORIST_DIAGNOSIS_RESULTS_RULE_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_RULE_JSON_H

#include "diagnosis/evidence/explanation.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

/// A rule with all that it looked at, as an object. Members that the family or the reason leaves empty are not written.
void WriteRule(JsonWriter& json, const PlacedRule& placed);

} // namespace diagnosis

#endif
