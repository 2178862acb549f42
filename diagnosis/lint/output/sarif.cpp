#include <set>

#include "diagnosis/lint/output/formats.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis::lint {

namespace {

const char* LevelOf(Severity severity)
{
    return severity == Severity::ERROR ? "error" : severity == Severity::WARNING ? "warning" : "note";
}

// A relative or absolute path as a URI reference.
std::string UriOf(const std::string& path)
{
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    static constexpr std::string_view PLAIN = "-._~/";
    std::string uri = path.rfind('/', 0) == 0 ? "file://" : "";
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isPlain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z')
            || PLAIN.find(character) != std::string_view::npos;
        uri += isPlain ? std::string(1, character) : std::string({'%', DIGITS[byte / 16], DIGITS[byte % 16]});
    }
    return uri;
}

void AppendMessage(const char* key, const std::string& text, JsonWriter& json)
{
    json.Key(key).BeginObject().Text("text", text).EndObject();
}

void AppendRule(const Check& check, JsonWriter& json)
{
    json.BeginObject().Text("id", check.id);
    AppendMessage("shortDescription", check.title, json);
    AppendMessage("fullDescription", std::string(check.finds) + " At run time: " + check.atRunTime + ".", json);
    json.Key("defaultConfiguration").BeginObject().Text("level", LevelOf(check.severity)).EndObject();
    json.EndObject();
}

void AppendRules(const LintRun& run, JsonWriter& json)
{
    std::set<std::string_view> told;
    json.Key("rules").BeginArray();
    for (const Finding& finding : run.findings) {
        if (told.insert(finding.check->id).second) {
            AppendRule(*finding.check, json);
        }
    }
    json.EndArray();
}

void AppendLocation(const Finding& finding, JsonWriter& json)
{
    json.Key("locations").BeginArray().BeginObject().Key("physicalLocation").BeginObject();
    json.Key("artifactLocation").BeginObject().Text("uri", UriOf(finding.file)).EndObject();
    if (finding.line > 0) {
        json.Key("region").BeginObject().Number("startLine", finding.line);
        if (finding.column > 0) {
            json.Number("startColumn", finding.column);
            json.Number("endColumn", finding.column + finding.columns);
        }
        json.EndObject();
    }
    json.EndObject();
    json.Key("logicalLocations").BeginArray().BeginObject().Text("fullyQualifiedName", finding.element).EndObject();
    json.EndArray().EndObject().EndArray();
}

void AppendResult(const Finding& finding, JsonWriter& json)
{
    json.BeginObject().Text("ruleId", finding.check->id).Text("level", LevelOf(finding.check->severity));
    AppendMessage("message", finding.message + (finding.help.empty() ? "" : "; " + finding.help), json);
    AppendLocation(finding, json);
    json.Key("partialFingerprints").BeginObject().Text("arboristLint/v1", finding.fingerprint).EndObject();
    json.EndObject();
}

} // namespace

std::string RunSarif(const LintRun& run)
{
    JsonWriter json;
    json.BeginObject().Text("version", "2.1.0").Key("runs").BeginArray().BeginObject();
    json.Key("tool").BeginObject().Key("driver").BeginObject();
    json.Text("name", "arborist lint").Text("version", ARBORIST_VERSION);
    AppendRules(run, json);
    json.EndObject().EndObject();
    json.Text("columnKind", "unicodeCodePoints").Key("results").BeginArray();
    for (const Finding& finding : run.findings) {
        AppendResult(finding, json);
    }
    json.EndArray().EndObject().EndArray();
    return json.EndObject().Line() + "\n";
}

} // namespace diagnosis::lint
