#include "tools/arborist/render/query_report.h"

#include "tools/arborist/render/detection_json.h"
#include "tools/arborist/text/printable.h"

namespace command {

namespace {

std::string Line(const char* label, const std::string& id)
{
    return std::string("  ") + label + (id.empty() ? "none" : Printable(id)) + "\n";
}

} // namespace

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

std::string QueryText(const QueryReport& report)
{
    const std::string head = Printable(report.bundle) + ": " + Printable(report.code) + "\n";
    if (report.failure) {
        return head + "  NOT ANSWERED\n";
    }
    return head + Line("would run    ", report.wouldRun ? "yes" : "no") + Line("description  ", report.faultDescription)
        + Line("suggestion   ", report.suggestion) + Line("repair       ", report.repair);
}

} // namespace command
