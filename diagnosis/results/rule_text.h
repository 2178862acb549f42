#ifndef ARBORIST_DIAGNOSIS_RESULTS_RULE_TEXT_H
#define ARBORIST_DIAGNOSIS_RESULTS_RULE_TEXT_H

#include <string>
#include <vector>

#include "arborist/frame/evidence.h"

namespace diagnosis {

/// The evidence of a rule in lines; a line that belongs to the one before is indented by two blanks. Long foreign texts
/// are truncated; the JSON has them in full.
std::vector<std::string> RuleLines(const Evidence::Rule& rule);

/// The most significant of these in one line: the window that came closest, the comparison that decided. Empty if the
/// reason is enough.
std::string RuleSummary(const Evidence::Rule& rule);

} // namespace diagnosis

#endif
