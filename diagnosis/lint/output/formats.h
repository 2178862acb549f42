#ifndef ARBORIST_DIAGNOSIS_LINT_OUTPUT_FORMATS_H
#define ARBORIST_DIAGNOSIS_LINT_OUTPUT_FORMATS_H

#include <string>
#include <vector>

#include "diagnosis/lint/base/finding.h"

namespace diagnosis::lint {

/// The results of all rule sets of one run.
struct LintRun {
    /// The files that were linted.
    std::vector<std::string> files;
    std::vector<Finding> findings;
    /// Number of findings in the baseline, which are not reported.
    std::size_t known = 0;
    /// Number of findings that --fix has mended.
    std::size_t fixed = 0;

    std::size_t Count(Severity severity) const;
};

/// "2 errors, 1 warning, 3 in the baseline, 1 fixed"; "no findings" if there are none.
std::string CountsText(const LintRun& run);

/// The formats below are complete, with their last line end, and valid without findings, too.

/// One JSON object, as docs/lint.md describes it.
std::string RunJson(const LintRun& run);
/// A line for each finding, in a form that editors read: `file:line:column: warning: text [A602]`.
std::string RunShort(const LintRun& run);
/// Annotations of GitHub's workflows.
std::string RunGithub(const LintRun& run);
/// A code quality report of GitLab.
std::string RunGitlab(const LintRun& run);
/// Static analysis results interchange format, 2.1.0.
std::string RunSarif(const LintRun& run);
/// JUnit's XML: a suite for each file, a failed case for each finding, and a case that passes for a file without.
std::string RunJunit(const LintRun& run);

} // namespace diagnosis::lint

#endif
