#include "tools/arborist/render/bundle_report.h"

#include <algorithm>

#include "tools/arborist/bundle/moment.h"
#include "tools/arborist/render/detection_json.h"
#include "tools/arborist/render/log_report.h"
#include "tools/arborist/text/printable.h"

namespace command {

namespace {

using FileKind = DetectionObserver::RuleSetFile::Kind;
using State = BundleFinding::State;

using Attribute = std::pair<const char*, std::string>;

std::vector<Attribute> Attributes(const DeviceDetails& device)
{
    return {{"DeviceType", device.GetDeviceType()}, {"Product", device.GetProduct()},
        {"Platform", device.GetPlatform()}, {"CpuName", device.GetCpuName()}, {"RamSize", device.GetRamSize()},
        {"Resolution", device.GetResolution()}, {"BatteryCapacity", device.GetBatteryCapacity()}};
}

std::string Line(const std::string& label, const std::string& text)
{
    constexpr std::size_t WIDTH = 18;
    return "  " + label + std::string(label.size() < WIDTH ? WIDTH - label.size() : 1, ' ') + Printable(text) + "\n";
}

std::string Count(std::size_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::size_t CountThere(const std::vector<NamedPath>& paths)
{
    return static_cast<std::size_t>(std::count_if(paths.begin(), paths.end(),
        [](const NamedPath& path) { return path.isThere; }));
}

std::size_t RuleSetCount(const BundleContents& contents, FileKind kind)
{
    for (const RecordedFile& file : contents.ruleFiles) {
        if (file.kind == kind) {
            return file.count;
        }
    }
    return 0;
}

std::string RulesText(const BundleContents& contents)
{
    return contents.ruleSetFailure ? contents.ruleSetFailure->message
                                   : Count(RuleSetCount(contents, FileKind::TREES), "tree") + ", "
            + Count(RuleSetCount(contents, FileKind::RULES), "rule") + " under the tag "
            + contents.description.treeTag;
}

std::string LogLine(const BundleContents& contents)
{
    if (!contents.hasLog) {
        return "none";
    }
    return contents.logFailure ? contents.logFailure->message
                               : Count(contents.log.rows, "row") + ", " + SpanText(contents.log.span);
}

std::string PathsText(const std::string& label, const std::vector<NamedPath>& paths)
{
    std::string text = Line(label, std::to_string(paths.size()) + " named, " + std::to_string(CountThere(paths))
        + " there");
    for (const NamedPath& path : paths) {
        text += path.isThere ? "" : Line("", "missing: " + path.path);
    }
    return text;
}

std::string MomentText(const BundleContents& contents)
{
    const Bundle& bundle = contents.description;
    return bundle.now.empty() ? "the real time"
                              : bundle.now + (bundle.tz.empty() ? ", zone of this machine" : ", zone " + bundle.tz);
}

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

JsonWriter& WriteNumber(JsonWriter& json, const char* key, std::size_t number)
{
    return json.Key(key).Number(static_cast<std::int64_t>(number));
}

void WriteDescription(JsonWriter& json, const BundleContents& contents)
{
    const Bundle& bundle = contents.description;
    json.Text("kind", contents.isZip ? "zip" : "folder").Key("detectScene").Number(bundle.detectScene);
    json.Text("treeTag", bundle.treeTag).Text("now", bundle.now).Text("tz", bundle.tz);
    json.Key("device").BeginObject();
    for (const auto& [key, value] : Attributes(bundle.device)) {
        json.Text(key, value);
    }
    json.EndObject().Key("settings").BeginObject();
    for (const auto& [key, value] : bundle.settings) {
        json.Text(key, value);
    }
    json.EndObject();
    WriteNumber(json, "codeAnswers", bundle.codeAnswers.size());
}

void WriteContents(JsonWriter& json, const BundleContents& contents)
{
    json.Key("rules").BeginObject().Text("folder", contents.description.ruleFileDir);
    WriteNumber(json, "trees", RuleSetCount(contents, FileKind::TREES));
    WriteNumber(json, "rules", RuleSetCount(contents, FileKind::RULES));
    WriteOptionalError(json, contents.ruleSetFailure);
    json.EndObject().Key("log").BeginObject().Bool("exists", contents.hasLog);
    WriteNumber(json, "rows", contents.log.rows);
    WriteOptionalError(json, contents.logFailure);
    json.EndObject().Key("repairs").BeginObject();
    WriteNumber(json, "rows", contents.repairRecords);
    WriteOptionalError(json, contents.repairFailure);
    json.EndObject();
    WritePaths(json, "nodeFiles", contents.nodeFiles);
    WritePaths(json, "searchedFolders", contents.searchedFolders);
}

const char* Word(State state)
{
    return state == State::SOUND ? "ok" : state == State::MISSING ? "missing" : "broken";
}

} // namespace

std::string BundleText(const BundleContents& contents)
{
    const std::string head = Printable(contents.bundle) + (contents.isZip ? " (zip)\n" : " (folder)\n");
    if (contents.failure) {
        return Printable(contents.bundle) + "\n  NO BUNDLE\n";
    }
    std::string device;
    for (const auto& [key, value] : Attributes(contents.description.device)) {
        device += value.empty() ? "" : (device.empty() ? "" : ", ") + (key + (" " + value));
    }
    std::string settings;
    for (const auto& [key, value] : contents.description.settings) {
        settings += value.empty() ? "" : Line(settings.empty() ? "settings" : "", key + (" " + value));
    }
    return head + Line("rules", RulesText(contents)) + Line("scene", std::to_string(contents.description.detectScene))
        + Line("moment", MomentText(contents)) + Line("device", device.empty() ? "not known" : device) + settings
        + Line("event log", LogLine(contents))
        + Line("repair records", contents.repairFailure ? contents.repairFailure->message
                                                        : std::to_string(contents.repairRecords))
        + PathsText("node files", contents.nodeFiles) + PathsText("searched folders", contents.searchedFolders)
        + Line("code answers", std::to_string(contents.description.codeAnswers.size()));
}

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

std::string CheckText(const std::string& bundle, const std::vector<BundleFinding>& findings)
{
    std::string text = Printable(bundle) + "\n";
    for (const BundleFinding& finding : findings) {
        text += Line(Word(finding.state), finding.message + (finding.code.empty() ? "" : " [" + finding.code + "]"));
    }
    return text;
}

std::string CheckJson(const std::string& bundle, bool isOk, const std::vector<BundleFinding>& findings)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.verify.1").Text("bundle", bundle).Bool("ok", isOk);
    json.Key("findings").BeginArray();
    for (const BundleFinding& finding : findings) {
        json.BeginObject().Text("state", Word(finding.state)).Text("code", finding.code);
        json.Text("message", finding.message).EndObject();
    }
    return json.EndArray().EndObject().Line();
}

} // namespace command
