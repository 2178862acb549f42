#ifndef ARBORIST_TOOLS_RENDER_ANALYSIS_TEXT_H
#define ARBORIST_TOOLS_RENDER_ANALYSIS_TEXT_H

#include <string>

#include "diagnosis/analysis/explanation_view.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

/// The near misses, and the minimal cut sets in evidence with the shares of events and the repairs, as far as the view
/// requests them. Empty if it requests neither; every line has a line end.
std::string AnalysisText(const RecordedTree& tree, const ExplanationView& view, Colour colour);

} // namespace diagnosis::command

#endif
