#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPAIR_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPAIR_JSON_H

#include <string>
#include <vector>

#include "diagnosis/bundle/repair_records.h"

namespace diagnosis {

/// Repair records as JSON Lines: one object for each, every line ended.
std::string RepairLines(const std::vector<RepairRecord>& records);

} // namespace diagnosis

#endif
