#include "diagnosis/results/detection_json.h"

#include "diagnosis/results/explanation_json.h"
#include "diagnosis/results/verdict_json.h"

namespace diagnosis {

namespace {

void WriteRootCause(JsonWriter& json, const FaultTreeResult::RootCauseResult& cause)
{
    json.BeginObject();
    WriteRootCauseTexts(json, cause);
    json.EndObject();
}

// The events are in pre-order: an event that is deeper than the one before is its child.
void WriteTree(JsonWriter& json, const std::vector<Evidence::FoldedEvent>& events)
{
    using Kind = Evidence::EventType;
    std::size_t open = 0;
    for (const Evidence::FoldedEvent& event : events) {
        for (; open > event.depth; --open) {
            json.EndArray().EndObject();
        }
        json.BeginObject().Text("id", event.id).Text("name", event.name).Text("kind", Evidence::TypeText(event.type));
        json.Text("gate", Evidence::GateText(event.gate)).Text("status", Evidence::StateText(event.status));
        json.Bool("observable", event.type == Kind::INTERMEDIATE && event.observable);
        json.Text("check", Evidence::CheckText(event.check)).Bool("restsOnDefault", event.RestsOnDefault());
        json.Key("children").BeginArray();
        ++open;
    }
    for (; open > 0; --open) {
        json.EndArray().EndObject();
    }
}

void WriteResult(JsonWriter& json, const FaultTreeResult& result, const Evidence::TreeVerdict& verdict,
    const RecordedTree* tree)
{
    json.BeginObject().Text("treeId", result.mTreeId).Text("version", result.mVersion);
    json.Bool("isFault", result.mIsFault).Key("rootCauses").BeginArray();
    for (const auto& cause : result.mRootCauseResults) {
        WriteRootCause(json, *cause);
    }
    json.EndArray();
    WriteVerdict(json, verdict);
    if (tree != nullptr && !tree->events.empty()) {
        json.Key("tree");
        WriteTree(json, tree->events);
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

void WriteWarning(JsonWriter& json, const Warning& warning)
{
    json.Text("code", warning.code).Text("message", warning.message);
    const std::pair<const char*, const std::string&> texts[] = {
        {"id", warning.id}, {"rule", warning.rule}, {"event", warning.event}, {"file", warning.file}};
    for (const auto& [key, text] : texts) {
        if (!text.empty()) {
            json.Text(key, text);
        }
    }
    if (!warning.file.empty()) {
        json.Key("line").Number(warning.line);
    }
}

void WriteHead(JsonWriter& json, const std::string& schema, const std::string& bundle, bool isOk,
    const std::vector<Warning>& warnings)
{
    json.Text("schema", schema).Text("bundle", bundle).Bool("ok", isOk).Key("warnings").BeginArray();
    for (const Warning& warning : warnings) {
        json.BeginObject();
        WriteWarning(json, warning);
        json.EndObject();
    }
    json.EndArray();
}

void WriteError(JsonWriter& json, const Failure& failure)
{
    json.Key("error").BeginObject().Text("code", failure.code).Text("message", failure.message).EndObject();
}

std::string DetectionJson(const DetectionReport& report)
{
    JsonWriter json;
    json.BeginObject();
    WriteHead(json, "arborist.detect.1", report.bundle, !report.failure, report.warnings);
    json.Key("results").BeginArray();
    for (std::size_t i = 0; i < report.results.size(); ++i) {
        WriteResult(json, *report.results[i], report.verdicts[i], i < report.trees.size() ? &report.trees[i] : nullptr);
    }
    json.EndArray();
    if (report.explanation != nullptr) {
        json.Key("explanation");
        WriteExplainedTrees(json, report, {});
    }
    if (report.failure) {
        WriteError(json, *report.failure);
    }
    return json.EndObject().Line();
}

} // namespace diagnosis
