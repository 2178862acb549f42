#include "diagnosis/results/repair_json.h"

#include "diagnosis/text/json_writer.h"

namespace diagnosis {

std::string RepairJson(const RepairRecord& record)
{
    JsonWriter json;
    return json.BeginObject().Text("id", record.id).Text("date", record.date).EndObject().Line();
}

} // namespace diagnosis
