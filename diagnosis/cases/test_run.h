#ifndef ARBORIST_DIAGNOSIS_CASES_TEST_RUN_H
#define ARBORIST_DIAGNOSIS_CASES_TEST_RUN_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/cases/case_runner.h"
#include "diagnosis/cases/coverage.h"
#include "diagnosis/problem.h"

namespace diagnosis::cases {

struct TestOptions {
    /// Runs only cases whose name contains this text.
    std::string filter;
    /// Folder of a rule set that replaces those of all cases; empty for none.
    std::string rules;
    /// Runs only cases of the rule set in this folder; empty for all.
    std::string onlyRules;
    bool withCoverage = false;
    /// Called after each case, if set.
    std::function<void(const CaseOutcome& outcome)> onCase;
};

/// The outcome of all cases.
struct TestRun {
    /// In the order of the files' names.
    std::vector<CaseOutcome> cases;
    /// Files that can't be used, and paths without a case file.
    std::vector<Failure> failures;
    /// What the cases have shown of each rule set; empty unless requested.
    std::vector<RuleSetCoverage> coverage;

    std::size_t Passed() const;
    std::size_t Unreviewed() const;
    /// FAULT_FOUND if a case failed or there is none; RULE_SET, INPUT or INTERNAL if a case or file can't be used.
    ExitStatus Status() const;
};

/// Runs the cases of files and of all case files below folders, each file once. It takes the library's log meanwhile and
/// then restores the library's own logger.
TestRun RunTests(const std::vector<std::string>& paths, const TestOptions& options);

/// The case files that are probably about the rule set in a folder: those anywhere below the folder that contains it, where
/// projects keep their tests, near ones first. Looks into no hidden folder, follows no link, and looks at no more than
/// `most` files and folders.
struct NearbyCases {
    std::vector<std::string> files;
    /// The folder that was searched.
    std::string folder;
    /// False if there was more to look at.
    bool isComplete = true;
};
NearbyCases FindCasesNear(const std::string& folder, std::size_t most = 20'000);

/// Whether the rule set in `changed` gives other answers than the one in `folder` to its cases, which are searched in
/// `paths`: the name of the first case, with its file, that ends otherwise, or nothing. Failed cases count as well: they
/// must fail in the same way. For a tool that changes a rule set and wants to know, before it writes, whether its tests
/// notice.
std::optional<std::string> FirstOtherAnswer(
    const std::vector<std::string>& paths, const std::string& folder, const std::string& changed);

} // namespace diagnosis::cases

#endif
