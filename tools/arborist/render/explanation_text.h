#ifndef ARBORIST_TOOLS_RENDER_EXPLANATION_TEXT_H
#define ARBORIST_TOOLS_RENDER_EXPLANATION_TEXT_H

#include <string>

#include "diagnosis/analysis/explanation_view.h"
#include "diagnosis/detection/detection.h"

namespace diagnosis::command {

/// The explanation of a report as a person reads it: each tree with its events, their rules and what these looked at,
/// then root causes, what was cut off, near misses and minimal cut sets, as far as the view asks. Ends with a line end.
std::string ExplanationText(const DetectionReport& report, const ExplanationView& view, bool isColoured);

} // namespace diagnosis::command

#endif
