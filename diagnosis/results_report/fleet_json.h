#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_FLEET_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_FLEET_JSON_H

#include <string>

#include "diagnosis/results_report/fleet.h"

namespace diagnosis {

/// All figures as one line of JSON, schema "arborist.results_report.1", without the line end. Every key is always there;
/// later versions only add some.
std::string FleetJson(const Fleet& fleet);

} // namespace diagnosis

#endif
