#ifndef ARBORIST_DIAGNOSIS_RESULTS_VERDICT_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_VERDICT_JSON_H

#include "arborist/frame/tree_verdict.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

/// The members of a tree that say what its answer rests on: "verdict", "complete", "checks", "open", "possibleCauses"
/// and "possibleCausesTruncated".
void WriteVerdict(JsonWriter& json, const Evidence::TreeVerdict& verdict);

} // namespace diagnosis

#endif
