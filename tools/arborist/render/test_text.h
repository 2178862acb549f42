#ifndef ARBORIST_TOOLS_RENDER_TEST_TEXT_H
#define ARBORIST_TOOLS_RENDER_TEST_TEXT_H

#include <string>

#include "diagnosis/cases/test_run.h"

namespace diagnosis::command {

/// "PASS file: name", or "FAIL file:line: name" with what differs.
std::string CaseText(const cases::CaseOutcome& outcome, bool isColoured);

/// "12 cases: 11 passed, 1 failed, 2 not reviewed".
std::string TestCountsText(const cases::TestRun& run);

/// What the cases have shown of a rule set: the part of the outcomes, by kind, and a line "file:line: subject: never
/// held" for each thing that lacks one.
std::string CoverageText(const cases::RuleSetCoverage& coverage);

} // namespace diagnosis::command

#endif
