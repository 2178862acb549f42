#ifndef ARBORIST_DIAGNOSIS_RULE_SET_NEW_RULE_SET_H
#define ARBORIST_DIAGNOSIS_RULE_SET_NEW_RULE_SET_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis::rule_set {

/// Fills a folder with a small rule set, its test, and a bundle with an event log and node files, in which a detection
/// finds a fault. Creates the folder if there is none, and fails without writing anything if it is not empty. Sets `paths`
/// to the files, each below the folder. A failure on the way leaves the files that were written.
std::optional<Failure> MakeRuleSet(const std::string& folder, std::vector<std::string>& paths);

} // namespace diagnosis::rule_set

#endif
