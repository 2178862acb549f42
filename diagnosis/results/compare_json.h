#ifndef ARBORIST_DIAGNOSIS_RESULTS_COMPARE_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_COMPARE_JSON_H

#include <string>
#include <vector>

#include "diagnosis/problem.h"
#include "diagnosis/results_db/results_diff.h"
#include "diagnosis/rule_set/difference.h"

namespace diagnosis {

/// A comparison of two rule sets as one line of JSON, schema "arborist.compare.1", without the line end: what "rules diff"
/// and what "results diff" give.
std::string CompareJson(const rule_set::ReadRuleSet& before, const rule_set::ReadRuleSet& after,
    const std::vector<rule_set::Change>& changes, const results_db::ResultsDiff& diff);
/// An object of the same schema that says why there is no comparison.
std::string CompareFailureJson(const Failure& failure);

} // namespace diagnosis

#endif
