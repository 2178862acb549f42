#include <algorithm>

#include "diagnosis/lint/output/formats.h"
#include "diagnosis/text/printable.h"

namespace diagnosis::lint {

std::string RunShort(const LintRun& run)
{
    std::string text;
    for (const Finding& finding : run.findings) {
        text += Printable(finding.file) + ":" + std::to_string(std::max(1, finding.line)) + ":"
            + std::to_string(std::max(1, finding.column)) + ": " + SeverityWord(finding.check->severity) + ": "
            + Printable(finding.message) + " [" + finding.check->id + "]\n";
    }
    return text;
}

} // namespace diagnosis::lint
