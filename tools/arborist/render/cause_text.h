#ifndef ARBORIST_TOOLS_RENDER_CAUSE_TEXT_H
#define ARBORIST_TOOLS_RENDER_CAUSE_TEXT_H

#include <string>

#include "diagnosis/analysis/explanation_view.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

/// The distinct root causes of a tree that the view shows, each with the paths of its members, the rules that fired for
/// them, and its ids. Every line has a line end.
std::string CausesText(const TreeReport& report, const ExplanationView& view, Colour colour);

/// The same in one line for each root cause.
std::string BriefCausesText(const TreeReport& report, const ExplanationView& view, Colour colour);

} // namespace diagnosis::command

#endif
