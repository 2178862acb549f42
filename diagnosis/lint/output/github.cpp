#include "diagnosis/lint/output/formats.h"
#include "diagnosis/text/printable.h"

namespace diagnosis::lint {

namespace {

// Escapes line ends and, in a property, commas and colons, at which it would end.
std::string Escaped(const std::string& text, bool isProperty)
{
    std::string escaped;
    for (const char character : Printable(text)) {
        if (character == '%') {
            escaped += "%25";
        } else if (isProperty && character == ':') {
            escaped += "%3A";
        } else if (isProperty && character == ',') {
            escaped += "%2C";
        } else {
            escaped += character;
        }
    }
    return escaped;
}

const char* CommandOf(Severity severity)
{
    return severity == Severity::ERROR ? "error" : severity == Severity::WARNING ? "warning" : "notice";
}

} // namespace

std::string RunGithub(const LintRun& run)
{
    std::string text;
    for (const Finding& finding : run.findings) {
        text += std::string("::") + CommandOf(finding.check->severity) + " file=" + Escaped(finding.file, true);
        text += finding.line > 0 ? ",line=" + std::to_string(finding.line) : "";
        text += finding.column > 0 ? ",col=" + std::to_string(finding.column) + ",endColumn="
                + std::to_string(finding.column + finding.columns)
                                   : "";
        text += ",title=" + Escaped(std::string(finding.check->id) + " " + finding.check->title, true)
            + "::" + Escaped(finding.message + (finding.help.empty() ? "" : "; " + finding.help), false) + "\n";
    }
    return text;
}

} // namespace diagnosis::lint
