#ifndef ARBORIST_TOOLS_RENDER_ANALYSIS_TEXT_H
#define ARBORIST_TOOLS_RENDER_ANALYSIS_TEXT_H

#include <string>

#include "diagnosis/analysis/explanation_view.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

/// What the view asks for by options of their own: near misses, and the minimal cut sets in evidence with the shares of
/// the events and the repairs. Empty when it asks for neither; every line ends in a line end.
std::string AnalysisText(const ExplainedTree& tree, const ExplanationView& view, Colour colour);

} // namespace diagnosis::command

#endif
