#ifndef ARBORIST_DIAGNOSIS_RESULTS_EXPLAINED_REPORT_H
#define ARBORIST_DIAGNOSIS_RESULTS_EXPLAINED_REPORT_H

#include "diagnosis/analysis/explanation_view.h"
#include "diagnosis/detection/detection.h"

namespace diagnosis {

/// Runs one detection with its explanation. Fails, without trees, also if the view names an id or a rule that the trees
/// lack.
DetectionReport RunExplanation(const BundlePath& bundle, DetectionOptions options, const ExplanationView& view);

} // namespace diagnosis

#endif
