#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_REPAIR_FIGURES_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_REPAIR_FIGURES_H

#include <cstdint>

#include "diagnosis/results_report/cause_figures.h"
#include "diagnosis/results_report/fleet.h"
#include "diagnosis/sqlite/questions.h"

namespace diagnosis {

/// Fills in the effect of repairs on devices that are followed for `withinDays` days. Reads bundles device by device in
/// order of time, and keeps those of one device in memory.
void ReadRepairFigures(
    Questions& questions, const CauseNumbers& numbers, std::int64_t withinDays, RepairFigures& figures);

} // namespace diagnosis

#endif
