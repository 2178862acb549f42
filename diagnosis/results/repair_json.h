#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPAIR_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPAIR_JSON_H

#include <string>

#include "diagnosis/bundle/repair_records.h"

namespace diagnosis {

/// A repair record as one line of JSON, without the line end.
std::string RepairJson(const RepairRecord& record);

} // namespace diagnosis

#endif
