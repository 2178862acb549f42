#ifndef ARBORIST_DIAGNOSIS_RESULTS_RULE_TEXT_H
#define ARBORIST_DIAGNOSIS_RESULTS_RULE_TEXT_H

#include <string>
#include <vector>

#include "arborist/frame/evidence.h"

namespace diagnosis {

/// What a rule looked at, one line a thing, indented by two blanks where it belongs to the line before. Long texts of
/// strangers are cut short; the JSON has them whole.
std::vector<std::string> RuleLines(const Evidence::Rule& rule);

/// The most telling of these in one line: the window that came closest, the comparison that decided. Empty when the
/// reason says it all.
std::string RuleSummary(const Evidence::Rule& rule);

} // namespace diagnosis

#endif
