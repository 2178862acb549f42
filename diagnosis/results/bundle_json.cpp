#include "diagnosis/results/bundle_json.h"

#include "diagnosis/results/detection_json.h"

namespace diagnosis {

namespace {

using FileKind = Evidence::RuleSetFileType;

void WritePaths(JsonWriter& json, const char* key, const std::vector<NamedPath>& paths)
{
    json.Key(key).BeginArray();
    for (const NamedPath& path : paths) {
        json.BeginObject().Text("path", path.path).Bool("exists", path.isThere).EndObject();
    }
    json.EndArray();
}

void WriteOptionalError(JsonWriter& json, const std::optional<Failure>& failure)
{
    if (failure) {
        WriteError(json, *failure);
    }
}

void WriteDescription(JsonWriter& json, const BundleContents& contents)
{
    const Bundle& bundle = contents.description;
    json.Text("kind", contents.isZip ? "zip" : "folder").Number("detectScene", bundle.detectScene);
    json.Text("treeTag", bundle.treeTag).Text("now", bundle.now).Text("tz", bundle.tz);
    json.Key("device").BeginObject();
    for (const auto& [key, value] : DeviceAttributes(bundle.device)) {
        json.Text(key, value);
    }
    json.EndObject().Bool("hasDeviceId", !bundle.deviceId.empty()).Key("settings").BeginObject();
    for (const auto& [key, value] : bundle.settings) {
        json.Text(key, value);
    }
    json.EndObject();
    json.Count("codeAnswers", bundle.codeAnswers.size());
}

void WriteContents(JsonWriter& json, const BundleContents& contents)
{
    json.Key("rules").BeginObject().Text("folder", contents.description.ruleFileDir);
    json.Count("trees", RuleSetCount(contents, FileKind::TREES));
    json.Count("rules", RuleSetCount(contents, FileKind::RULES));
    WriteOptionalError(json, contents.ruleSetFailure);
    json.EndObject().Key("log").BeginObject().Bool("exists", contents.hasLog);
    json.Count("rows", contents.log.rows);
    WriteOptionalError(json, contents.logFailure);
    json.EndObject().Key("repairs").BeginObject();
    json.Count("rows", contents.repairRecords);
    WriteOptionalError(json, contents.repairFailure);
    json.EndObject();
    WritePaths(json, "nodeFiles", contents.nodeFiles);
    WritePaths(json, "searchedFolders", contents.searchedFolders);
}

} // namespace

std::string BundleJson(const BundleContents& contents)
{
    JsonWriter json;
    json.BeginObject();
    WriteHead(json, "arborist.bundle.1", contents.bundle, !contents.failure, contents.warnings);
    if (contents.failure) {
        WriteError(json, *contents.failure);
    } else {
        WriteDescription(json, contents);
        WriteContents(json, contents);
    }
    return json.EndObject().Line();
}

std::string CheckJson(const std::string& bundle, bool isOk, const std::vector<BundleFinding>& findings)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.verify.1").Text("bundle", bundle).Bool("ok", isOk);
    json.Key("findings").BeginArray();
    for (const BundleFinding& finding : findings) {
        json.BeginObject().Text("state", StateWord(finding.state));
        WriteRemark(json, finding.code, finding.what);
        json.EndObject();
    }
    return json.EndArray().EndObject().Line();
}

} // namespace diagnosis
