#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_OPEN_FIGURES_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_OPEN_FIGURES_H

#include "diagnosis/results_report/fleet.h"
#include "diagnosis/sqlite/questions.h"

namespace diagnosis {

/// Fills in the open checks by reason and by what they lack. Where the event log is missing, all checks of a tree that need
/// it or a table derived from it lack the same thing, as for "explain --next". Needs some forty bytes for each different
/// open check.
void ReadOpenFigures(Questions& questions, OpenChecks& open);

} // namespace diagnosis

#endif
