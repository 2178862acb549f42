#include "diagnosis/results/repair_json.h"

#include "diagnosis/text/json_writer.h"

namespace diagnosis {

std::string RepairLines(const std::vector<RepairRecord>& records)
{
    std::string lines;
    for (const RepairRecord& record : records) {
        JsonWriter json;
        lines += json.BeginObject().Text("id", record.id).Text("date", record.date).EndObject().Line() + "\n";
    }
    return lines;
}

} // namespace diagnosis
