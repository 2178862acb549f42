#ifndef ARBORIST_TOOLS_RENDER_CAUSE_TEXT_H
#define ARBORIST_TOOLS_RENDER_CAUSE_TEXT_H

#include <string>

#include "arborist/frame/fault_tree_result.h"
#include "diagnosis/analysis/explanation_view.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

/// The distinct root causes of a tree that the view shows, each with the paths of its members, the rules that fired for
/// them, and the ids of `result` (null if there is none). Every line has a line end.
std::string CausesText(const ExplainedTree& tree, const FaultTreeResult* result, const ExplanationView& view,
    Colour colour);

/// The same in one line for each root cause.
std::string BriefCausesText(const ExplainedTree& tree, const FaultTreeResult* result, const ExplanationView& view,
    Colour colour);

} // namespace diagnosis::command

#endif
