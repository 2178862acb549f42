#ifndef ARBORIST_DIAGNOSIS_RESULTS_RESULTS_DIFF_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_RESULTS_DIFF_JSON_H

#include <string>

#include "diagnosis/problem.h"
#include "diagnosis/results_db/results_diff.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

/// Where two results differ as one JSON object on one line: docs/results-diff.schema.json.
std::string ResultsDiffJson(const results_db::ResultsDiff& diff);
/// Why two results can't be compared.
std::string ResultsDiffFailureJson(const Failure& failure);

/// Writes the members of such an object behind "schema", for objects that have more.
void WriteResultsDiff(JsonWriter& json, const results_db::ResultsDiff& diff);

} // namespace diagnosis

#endif
