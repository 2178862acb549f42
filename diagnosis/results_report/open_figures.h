#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_OPEN_FIGURES_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_OPEN_FIGURES_H

#include "diagnosis/results_report/fleet.h"
#include "diagnosis/sqlite/questions.h"

namespace diagnosis {

/// Fills in the open checks by reason and by what they lack. As for "explain --next", all checks of a tree that lack the
/// event log, or tables that are derived from it, lack the same where the log is missing. Memory grows with the number of
/// different open checks, by some forty bytes each.
void ReadOpenFigures(Questions& questions, OpenChecks& open);

} // namespace diagnosis

#endif
