#include <map>

#include "diagnosis/lint/output/formats.h"
#include "diagnosis/text/markup.h"

namespace diagnosis::lint {

namespace {

std::string CaseOf(const Finding& finding)
{
    const std::string place = Markup(finding.file) + ":" + std::to_string(finding.line);
    return "    <testcase classname=\"" + Markup(finding.check->id) + "\" name=\"" + place + " "
        + Markup(finding.message) + "\">\n      <failure type=\"" + SeverityWord(finding.check->severity)
        + "\" message=\"" + Markup(finding.message) + "\">" + place + ": " + Markup(finding.check->title)
        + (finding.help.empty() ? "" : "; " + Markup(finding.help)) + "</failure>\n    </testcase>\n";
}

std::string SuiteOf(const std::string& file, const std::vector<const Finding*>& findings)
{
    const std::string failures = std::to_string(findings.size());
    std::string suite = "  <testsuite name=\"" + Markup(file) + "\" tests=\""
        + (findings.empty() ? "1" : failures) + "\" failures=\"" + failures + "\">\n";
    if (findings.empty()) {
        suite += "    <testcase classname=\"lint\" name=\"" + Markup(file) + "\"/>\n";
    }
    for (const Finding* finding : findings) {
        suite += CaseOf(*finding);
    }
    return suite + "  </testsuite>\n";
}

} // namespace

std::string RunJunit(const LintRun& run)
{
    std::map<std::string, std::vector<const Finding*>> byFile;
    for (const std::string& file : run.files) {
        byFile[file];
    }
    for (const Finding& finding : run.findings) {
        byFile[finding.file].push_back(&finding);
    }
    std::size_t tests = 0;
    std::string suites;
    for (const auto& [file, findings] : byFile) {
        tests += findings.empty() ? 1 : findings.size();
        suites += SuiteOf(file, findings);
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"arborist lint\" tests=\""
        + std::to_string(tests) + "\" failures=\"" + std::to_string(run.findings.size()) + "\">\n" + suites
        + "</testsuites>\n";
}

} // namespace diagnosis::lint
