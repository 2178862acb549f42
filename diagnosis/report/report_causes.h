#ifndef ARBORIST_DIAGNOSIS_REPORT_REPORT_CAUSES_H
#define ARBORIST_DIAGNOSIS_REPORT_REPORT_CAUSES_H

#include <string>

#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis {

/// An HTML list with a card for each distinct root cause of a tree: its ids, its cut set with the paths to the top
/// event, and its evidence; then the events that observable events cut off.
std::string CauseCards(const TreeReport& report);

/// The rules of an event with their verdicts, one line each, as HTML; empty for an event without rules.
std::string RuleVerdicts(const Evidence::Event& evidence);

} // namespace diagnosis

#endif
