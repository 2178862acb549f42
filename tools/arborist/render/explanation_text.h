#ifndef ARBORIST_TOOLS_RENDER_EXPLANATION_TEXT_H
#define ARBORIST_TOOLS_RENDER_EXPLANATION_TEXT_H

#include <string>

#include "diagnosis/analysis/explanation_view.h"
#include "diagnosis/detection/detection.h"

namespace diagnosis::command {

/// The explanation of a report as text: each tree with its events, their rules and the evidence; then root causes,
/// cut-off events, near misses and minimal cut sets, as far as the view requests them. Ends with a line end.
std::string ExplanationText(const DetectionReport& report, const ExplanationView& view, bool isColoured);

} // namespace diagnosis::command

#endif
