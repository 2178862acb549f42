#ifndef ARBORIST_TOOLS_RENDER_SWEEP_TEXT_H
#define ARBORIST_TOOLS_RENDER_SWEEP_TEXT_H

#include <string>

#include "diagnosis/sweep/sweep.h"

namespace diagnosis::command {

/// A table of trees, root causes and rules: when each was first true, for how long and how often, and how long it was
/// not judged.
std::string SweepText(const SweepReport& report);

} // namespace diagnosis::command

#endif
