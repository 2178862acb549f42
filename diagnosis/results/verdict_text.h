#ifndef ARBORIST_DIAGNOSIS_RESULTS_VERDICT_TEXT_H
#define ARBORIST_DIAGNOSIS_RESULTS_VERDICT_TEXT_H

#include <string>

#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis {

/// "no fault", or "no fault, UNDECIDED: 3 of 44 checks open (2 no_data, 1 error)". For a fault the text to append to
/// the number of root causes: ", 3 of 44 checks open (3 no_data)", or nothing.
std::string VerdictWords(const Evidence::TreeVerdict& verdict);

/// "A, rule r: no_data, node_unreadable (/sys/temp)", and ", taken as TRUE" for what counts as true all the same.
std::string OpenText(const Evidence::OpenCheck& open);

/// What an open check lacks, for "would decide" and "is missing": "the event log", "the node file /sys/temp".
std::string MissingText(Evidence::Reason reason, const std::string& detail);

/// "6 trees: 1 fault, 4 no fault, 1 undecided".
std::string TreesText(const TreeReports& trees);

} // namespace diagnosis

#endif
