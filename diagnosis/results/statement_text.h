#ifndef ARBORIST_DIAGNOSIS_RESULTS_STATEMENT_TEXT_H
#define ARBORIST_DIAGNOSIS_RESULTS_STATEMENT_TEXT_H

#include <string>
#include <vector>

#include "arborist/frame/evidence.h"

namespace diagnosis {

/// A comparison with its parts and whether it holds.
std::string ComparisonText(const Evidence::Comparison& comparison);
/// If a condition was met, the true comparisons at the end of the list; otherwise the last one, which failed.
std::string Deciding(const std::vector<Evidence::Comparison>& comparisons);
/// A statement of a command rule: database, outcome, SQL, interval, columns and comparisons; and its reason, unless it
/// is that of the rule.
void AppendStatement(
    const Evidence::Statement& statement, Evidence::Reason reasonOfRule, std::vector<std::string>& lines);
/// In how many copies of a database a rule held, and why there are none.
std::string HitsText(const Evidence::Hits& hits);

} // namespace diagnosis

#endif
