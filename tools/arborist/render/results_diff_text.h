#ifndef ARBORIST_TOOLS_RENDER_RESULTS_DIFF_TEXT_H
#define ARBORIST_TOOLS_RENDER_RESULTS_DIFF_TEXT_H

#include <string>

#include "diagnosis/results_db/results_diff.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

/// Where two results differ: both sides, the verdicts, the root causes, examples. Ends with a line end.
std::string ResultsDiffText(const results_db::ResultsDiff& diff, const Colour& colour);

} // namespace diagnosis::command

#endif
