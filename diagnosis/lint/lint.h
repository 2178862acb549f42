#ifndef ARBORIST_DIAGNOSIS_LINT_LINT_H
#define ARBORIST_DIAGNOSIS_LINT_LINT_H

#include <set>
#include <string>
#include <vector>

#include "diagnosis/lint/base/finding.h"
#include "diagnosis/lint/base/placement.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::lint {

/// Which checks run, and on what.
struct LintOptions {
    /// Tags to look at; empty for all that the files have.
    std::vector<std::string> tags;
    std::string prefix;
    /// Ids of checks that do not run.
    std::set<std::string> disabled;
    /// Ids of the checks that run alone; empty for all.
    std::set<std::string> only;
    /// Profiles of devices, without which checks of class DEVICE do not run.
    std::vector<DeviceProfile> devices;
    /// Events of an event log, and a folder with the files of a device: without both, checks of class HOST don't run.
    const EventCounts* counts = nullptr;
    std::string deviceRoot;
    FindingDetails details = {};
};

/// What came of one rule set.
struct LintReport {
    /// In order of place.
    std::vector<Finding> findings;
    /// False when a file is missing or no well-formed XML: much was not looked at.
    bool isReadable = true;
};

/// Checks the rule set of a folder. Kept for the tests; the command reads the files itself and calls LintFiles.
LintReport LintFolder(const std::string& folder, const LintOptions& options);

/// Checks one rule set under its tag; the tags of the options don't count.
LintReport LintRuleSet(const rule_source::RuleSet& rules, const LintOptions& options);

/// Checks files that were read already. They are only needed until the call returns.
LintReport LintFiles(const rule_source::RuleSetFiles& files, const LintOptions& options);

} // namespace diagnosis::lint

#endif
