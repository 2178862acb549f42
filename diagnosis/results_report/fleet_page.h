#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_FLEET_PAGE_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_FLEET_PAGE_H

#include <string>

#include "diagnosis/results_report/fleet.h"

namespace diagnosis {

/// All figures as one self-contained HTML page in the style of reports, without network access or scripts. Escapes all
/// texts of rule sets, bundles and devices.
std::string FleetPage(const Fleet& fleet);

} // namespace diagnosis

#endif
