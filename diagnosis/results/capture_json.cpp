#include "diagnosis/results/capture_json.h"

#include "diagnosis/results/detection_json.h"

namespace diagnosis {

namespace {

void WriteRows(JsonWriter& json, const RedactedRows& where)
{
    json.Count("rows", where.rows).Key("events").BeginArray();
    for (const std::int64_t event : where.events) {
        json.Number(event);
    }
    json.EndArray().Bool("otherEvents", where.hasOtherEvents);
}

void WriteRedaction(JsonWriter& json, const RedactionReport& report)
{
    json.Key("redacted").BeginObject();
    json.Key("bundleKeys").Texts(report.bundleKeys);
    json.Key("nodeFiles").Texts(report.nodeFiles);
    json.Key("members").BeginArray();
    for (const RedactedMember& member : report.members) {
        json.BeginObject().Text("name", member.name);
        WriteRows(json, member.where);
        json.EndObject();
    }
    json.EndArray().Key("wholeTexts").BeginObject();
    WriteRows(json, report.wholeTexts);
    json.EndObject();
    json.Key("leftOut").Texts(report.leftOut);
    json.Key("notThere").Texts(report.notThere);
    json.Key("keptFolders").Texts(report.keptFolders);
    json.Key("rules").BeginArray();
    for (const AffectedRule& rule : report.rules) {
        json.BeginObject().Text("rule", rule.rule).Key("reads").Texts(rule.reads).EndObject();
    }
    json.EndArray().EndObject();
}

} // namespace

std::string CaptureJson(const std::string& bundle, const std::string& target, const CaptureReport& report)
{
    JsonWriter json;
    json.BeginObject();
    WriteHead(json, "arborist.pack.1", bundle, !report.failure, report.warnings);
    json.Text("output", target).Count("files", report.files).Count("bytes", report.bytes).Key("names").Texts(report.names);
    if (report.redaction) {
        WriteRedaction(json, *report.redaction);
    }
    if (report.failure) {
        WriteError(json, *report.failure);
    }
    return json.EndObject().Line();
}

} // namespace diagnosis
