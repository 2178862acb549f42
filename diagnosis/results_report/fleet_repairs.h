#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_FLEET_REPAIRS_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_FLEET_REPAIRS_H

#include <string>

#include "diagnosis/results_report/fleet.h"

namespace diagnosis {

/// The section about repairs as HTML: how often the fault came again with each of them and without it, and what these
/// figures can't say.
std::string RepairSection(const RepairFigures& repairs);

} // namespace diagnosis

#endif
