#ifndef ARBORIST_TOOLS_RENDER_COMPARE_TEXT_H
#define ARBORIST_TOOLS_RENDER_COMPARE_TEXT_H

#include <string>
#include <vector>

#include "diagnosis/results_db/results_diff.h"
#include "diagnosis/rule_set/difference.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

/// A comparison of two rule sets: what differs in their meaning, what in their results, and in the time they took.
std::string CompareText(
    const std::vector<rule_set::Change>& changes, const results_db::ResultsDiff& diff, const Colour& colour);

} // namespace diagnosis::command

#endif
