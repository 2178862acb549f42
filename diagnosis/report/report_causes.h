#ifndef ARBORIST_DIAGNOSIS_REPORT_REPORT_CAUSES_H
#define ARBORIST_DIAGNOSIS_REPORT_REPORT_CAUSES_H

#include <string>

#include "arborist/frame/fault_tree_result.h"
#include "diagnosis/evidence/explanation.h"

namespace diagnosis {

/// An HTML list with a card for each distinct root cause of a tree: its ids, its cut set with the paths to the top
/// event, and its evidence; then the events that observable events cut off. `result` is the result of the same tree.
std::string CauseCards(const ExplainedTree& tree, const FaultTreeResult& result);

/// The rules of an event with their verdicts, one line each, as HTML; empty for an event without rules.
std::string RuleVerdicts(const Evidence::Event& evidence);

} // namespace diagnosis

#endif
