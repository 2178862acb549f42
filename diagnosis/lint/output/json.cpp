#include "diagnosis/lint/output/formats.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis::lint {

namespace {

void AppendFinding(const Finding& finding, JsonWriter& json)
{
    json.BeginObject();
    json.Text("id", finding.check->id).Text("severity", SeverityWord(finding.check->severity));
    json.Text("title", finding.check->title);
    json.Text("file", finding.file).Number("line", finding.line);
    if (finding.column > 0) {
        json.Number("column", finding.column).Number("columns", finding.columns);
    }
    json.Text("element", finding.element).Text("message", finding.message);
    if (!finding.help.empty()) {
        json.Text("help", finding.help);
    }
    json.Text("atRunTime", finding.check->atRunTime);
    json.Text("fix", finding.edits.empty() ? "none" : finding.edits.front().isSafe ? "safe" : "unsafe");
    json.Text("fingerprint", finding.fingerprint);
    json.EndObject();
}

} // namespace

std::string RunJson(const LintRun& run)
{
    JsonWriter json;
    json.BeginObject().Key("files").Texts(run.files);
    json.Key("findings").BeginArray();
    for (const Finding& finding : run.findings) {
        AppendFinding(finding, json);
    }
    json.EndArray();
    json.Count("errors", run.Count(Severity::ERROR));
    json.Count("warnings", run.Count(Severity::WARNING));
    json.Count("infos", run.Count(Severity::INFO));
    json.Count("known", run.known);
    json.Count("fixed", run.fixed);
    return json.EndObject().Line() + "\n";
}

} // namespace diagnosis::lint
