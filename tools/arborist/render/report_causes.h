#ifndef ARBORIST_TOOLS_RENDER_REPORT_CAUSES_H
#define ARBORIST_TOOLS_RENDER_REPORT_CAUSES_H

#include <string>
#include <vector>

#include "tools/arborist/detection/evidence_recorder.h"
#include "tools/arborist/drawing/drawn_tree.h"

namespace command {

/// The root causes of a tree without repetition, in the order of deduction.
std::vector<const FaultTreeResult::RootCauseResult*> DistinctCauses(const FaultTreeResult& result);

/// A list with a card of HTML for each distinct root cause: its ids, cut sets, ways to the top and evidence.
std::string CauseCards(const DrawnTree& tree, const FaultTreeResult& result, const TreeEvidence& evidence);

} // namespace command

#endif
