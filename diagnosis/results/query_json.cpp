#include "diagnosis/results/query_json.h"

#include "diagnosis/results/detection_json.h"

namespace diagnosis {

std::string QueryJson(const QueryReport& report)
{
    JsonWriter json;
    json.BeginObject();
    WriteHead(json, "arborist.query.1", report.bundle, !report.failure, report.warnings);
    json.Text("code", report.code).Bool("wouldRun", report.wouldRun);
    json.Text("faultDescription", report.faultDescription).Text("suggestion", report.suggestion);
    json.Text("repair", report.repair);
    if (report.failure) {
        WriteError(json, *report.failure);
    }
    return json.EndObject().Line();
}

} // namespace diagnosis
