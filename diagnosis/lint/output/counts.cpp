#include <algorithm>

#include "diagnosis/lint/output/formats.h"

namespace diagnosis::lint {

namespace {

void Append(std::size_t count, const char* one, const char* more, std::string& text)
{
    if (count > 0) {
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + (count == 1 ? one : more);
    }
}

} // namespace

std::size_t LintRun::Count(Severity severity) const
{
    return static_cast<std::size_t>(std::count_if(findings.begin(), findings.end(),
        [severity](const Finding& finding) { return finding.check->severity == severity; }));
}

std::string CountsText(const LintRun& run)
{
    std::string text;
    Append(run.Count(Severity::ERROR), "error", "errors", text);
    Append(run.Count(Severity::WARNING), "warning", "warnings", text);
    Append(run.Count(Severity::INFO), "info", "infos", text);
    if (text.empty()) {
        text = "no findings";
    }
    Append(run.known, "in the baseline", "in the baseline", text);
    Append(run.fixed, "fixed", "fixed", text);
    return text;
}

} // namespace diagnosis::lint
