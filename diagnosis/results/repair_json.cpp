#include "diagnosis/results/repair_json.h"

namespace diagnosis {

void WriteRepairRecord(JsonWriter& json, const RepairRecord& record)
{
    json.Text("id", record.id).Text("date", record.date);
}

std::string RepairLines(const std::vector<RepairRecord>& records)
{
    std::string lines;
    for (const RepairRecord& record : records) {
        JsonWriter json;
        json.BeginObject();
        WriteRepairRecord(json, record);
        lines += json.EndObject().Line() + "\n";
    }
    return lines;
}

} // namespace diagnosis
