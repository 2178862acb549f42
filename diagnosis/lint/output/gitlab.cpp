#include <algorithm>

#include "diagnosis/lint/output/formats.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis::lint {

namespace {

const char* SeverityOf(const Finding& finding)
{
    const Severity severity = finding.check->severity;
    return severity == Severity::ERROR ? "major" : severity == Severity::WARNING ? "minor" : "info";
}

} // namespace

std::string RunGitlab(const LintRun& run)
{
    JsonWriter json;
    json.BeginArray();
    for (const Finding& finding : run.findings) {
        json.BeginObject().Text("description", finding.message).Text("check_name", finding.check->id);
        json.Text("fingerprint", finding.fingerprint).Text("severity", SeverityOf(finding));
        json.Key("location").BeginObject().Text("path", finding.file);
        json.Key("lines").BeginObject().Number("begin", std::max(1, finding.line)).EndObject();
        json.EndObject().EndObject();
    }
    return json.EndArray().Line() + "\n";
}

} // namespace diagnosis::lint
