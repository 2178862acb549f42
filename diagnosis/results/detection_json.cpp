#include "diagnosis/results/detection_json.h"

#include "diagnosis/results/event_json.h"
#include "diagnosis/results/explanation_json.h"
#include "diagnosis/results/repair_json.h"
#include "diagnosis/results/verdict_json.h"

namespace diagnosis {

namespace {

void WriteRootCauses(JsonWriter& json, const TreeReport& report)
{
    json.Key("rootCauses").BeginArray();
    for (const RecordedCause& cause : report.tree.causes) {
        if (cause.result != nullptr) {
            json.BeginObject();
            WriteRootCauseTexts(json, *cause.result);
            json.Key("cutSet").Texts(cause.cutSet).EndObject();
        }
    }
    json.EndArray();
}

// What makes the line comparable with others, and what was done to the device.
void WriteProvenance(JsonWriter& json, const DetectionReport& report)
{
    json.Text("device", report.device).Text("engine", ARBORIST_VERSION).Text("ruleSet", report.ruleSet);
    json.Text("now", report.moment).Seconds("seconds", report.seconds).Key("repaired").BeginArray();
    for (const RepairRecord& record : report.repaired) {
        json.BeginObject();
        WriteRepairRecord(json, record);
        json.EndObject();
    }
    json.EndArray();
}

void WriteTree(JsonWriter& json, const TreeReport& report, bool withEvents)
{
    const FaultTreeResult& result = *report.result;
    json.BeginObject().Text("treeId", result.mTreeId).Text("version", result.mVersion);
    json.Bool("isFault", result.mIsFault);
    WriteRootCauses(json, report);
    WriteVerdict(json, report.verdict);
    const std::vector<RecordedEvent>& events = report.tree.events;
    if (withEvents && !events.empty()) {
        json.Key("tree");
        WritePreOrder(json, events, [&](std::size_t place) { WriteFoldedEvent(json, events[place]); });
    }
    json.EndObject();
}

} // namespace

void WriteRootCauseTexts(JsonWriter& json, const FaultTreeResult::RootCauseResult& cause)
{
    json.Text("id", cause.mNode->mId).Text("name", cause.mNode->mName).Text("userDefined", cause.mNode->mUserDefined);
    json.Text("faultDescription", cause.mFaultDescription);
    json.Key("suggestions").Texts(cause.mSuggestions);
    json.Key("repairs").BeginArray();
    for (const FaultTreeResult::RepairInfo& repair : cause.mRepairInfos) {
        json.BeginObject().Text("id", repair.mId).Text("extra", repair.mExtra);
        json.Text("operation", repair.GetOperation()).EndObject();
    }
    json.EndArray();
}

void WriteRemark(JsonWriter& json, const std::string& code, const Remark& remark)
{
    json.Text("code", code).Text("message", remark.message).Text("id", remark.id).Text("rule", remark.rule);
    json.Text("event", remark.event).Text("file", remark.file).Number("line", remark.line);
}

void WriteWarnings(JsonWriter& json, const std::vector<Warning>& warnings)
{
    json.BeginArray();
    for (const Warning& warning : warnings) {
        json.BeginObject();
        WriteRemark(json, CodeWord(warning.code), warning);
        json.EndObject();
    }
    json.EndArray();
}

void WriteHead(JsonWriter& json, const std::string& schema, const std::string& bundle, bool isOk,
    const std::vector<Warning>& warnings)
{
    json.Text("schema", schema).Text("bundle", bundle).Bool("ok", isOk).Key("warnings");
    WriteWarnings(json, warnings);
}

void WriteError(JsonWriter& json, const Failure& failure)
{
    json.Key("error").BeginObject().Text("code", CodeWord(failure.code)).Text("message", failure.message).EndObject();
}

std::string DetectionJson(const DetectionReport& report)
{
    JsonWriter json;
    json.BeginObject();
    WriteHead(json, "arborist.detect.1", report.bundle, !report.failure, report.warnings);
    json.Key("results").BeginArray();
    for (const TreeReport& tree : report.trees) {
        WriteTree(json, tree, report.withTrees);
    }
    json.EndArray();
    if (report.withExplanation && !report.failure) {
        json.Key("explanation");
        WriteExplainedTrees(json, report.trees, {});
    }
    const std::optional<Failure>& failure = report.failure;
    json.Key("error").BeginObject().Text("code", failure ? CodeWord(failure->code) : "");
    json.Text("message", failure ? failure->message : "");
    json.Bool("retry", failure && IsWorthARetry(failure->code)).EndObject();
    WriteProvenance(json, report);
    return json.EndObject().Line();
}

} // namespace diagnosis
