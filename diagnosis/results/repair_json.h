#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPAIR_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPAIR_JSON_H

#include <string>
#include <vector>

#include "diagnosis/bundle/repair_records.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

/// Writes the members of a repair record.
void WriteRepairRecord(JsonWriter& json, const RepairRecord& record);

/// Repair records as JSON Lines: one object for each, every line ended.
std::string RepairLines(const std::vector<RepairRecord>& records);

} // namespace diagnosis

#endif
