#ifndef ARBORIST_DIAGNOSIS_RESULTS_EXPLANATION_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_EXPLANATION_JSON_H

#include <string>

#include "diagnosis/analysis/explanation_view.h"
#include "diagnosis/detection/detection.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

/// The explanation of a report as one line of JSON, schema "arborist.explain.1", without the line end. docs/explain.md
/// describes every member. Later versions only add members.
std::string ExplanationJson(const DetectionReport& report, const ExplanationView& view);

/// Writes the list of explained trees, for other reports that include it.
void WriteExplainedTrees(JsonWriter& json, const TreeReports& trees, const ExplanationView& view);

} // namespace diagnosis

#endif
