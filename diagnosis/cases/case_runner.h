#ifndef ARBORIST_DIAGNOSIS_CASES_CASE_RUNNER_H
#define ARBORIST_DIAGNOSIS_CASES_CASE_RUNNER_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/cases/case_stage.h"
#include "diagnosis/cases/comparison.h"
#include "diagnosis/cases/rule_sets.h"
#include "diagnosis/cases/test_case.h"
#include "diagnosis/detection/detection.h"
#include "diagnosis/problem.h"

namespace diagnosis::cases {

/// How one case ended.
struct CaseOutcome {
    std::string file;
    int line = 0;
    std::string name;
    bool isReviewed = true;
    /// Set if the case could not be run.
    std::optional<Failure> failure;
    std::vector<Difference> differences;

    bool HasPassed() const { return !failure && differences.empty(); }
};

/// Runs cases one after the other. As long as it exists, it takes the library's log; its end restores the library's own
/// logger. One at a time.
class CaseRunner {
public:
    /// A `rules` folder that is not empty replaces the rule sets of all cases; it must be absolute.
    explicit CaseRunner(std::string rules);
    ~CaseRunner();
    CaseRunner(const CaseRunner&) = delete;
    CaseRunner& operator=(const CaseRunner&) = delete;

    CaseOutcome Run(const TestCase& testCase);

    /// The rule set of the last case, and its report, which has an explanation unless it failed.
    const RuleSets::Key& LastRuleSet() const { return mRuleSet; }
    const DetectionReport& LastReport() const { return mReport; }
    RuleSets& GetRuleSets() { return mRuleSets; }

private:
    struct LogLines;

    std::optional<Failure> Describe(const TestCase& testCase, Bundle& description);
    std::optional<Failure> Answer(const TestCase& testCase, Bundle& description);

    std::string mRules;
    RuleSets mRuleSets;
    CaseStage mStage;
    std::shared_ptr<LogLines> mLog;
    RuleSets::Key mRuleSet;
    DetectionReport mReport;
};

} // namespace diagnosis::cases

#endif
