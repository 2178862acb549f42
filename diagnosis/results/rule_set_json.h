#ifndef ARBORIST_DIAGNOSIS_RESULTS_RULE_SET_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_RULE_SET_JSON_H

#include <string>
#include <vector>

#include "diagnosis/lint/base/subject.h"
#include "diagnosis/problem.h"
#include "diagnosis/rule_set/difference.h"
#include "diagnosis/rule_set/open_psa/import.h"
#include "diagnosis/rule_set/read_rule_set.h"

namespace diagnosis {

/// The results of the rules commands as one JSON object on one line: docs/rules.schema.json.
std::string InventoryJson(const rule_set::ReadRuleSet& rules);
/// What has the name under any tag.
std::string ShowJson(const rule_set::ReadRuleSet& rules, const std::string& name);
std::string CountsJson(const rule_set::ReadRuleSet& rules);
std::string DifferenceJson(const rule_set::ReadRuleSet& before, const rule_set::ReadRuleSet& after,
    const std::vector<rule_set::Change>& changes);
std::string ReachJson(const rule_set::ReadRuleSet& rules, const std::vector<lint::DeviceProfile>& devices);

/// What became of an imported file; `output` is the tree file that was written, empty if the object has the text itself.
std::string ImportJson(
    const std::string& file, const rule_set::open_psa::ImportedTrees& imported, const std::string& output);
/// Why a file was not imported.
std::string ImportFailureJson(const std::string& file, const Failure& failure);

/// Why one of the other commands, "list", can't be carried out.
std::string RulesFailureJson(const std::string& command, const std::string& folder, const Failure& failure);
/// Why lint can't be carried out: an object with "error".
std::string LintFailureJson(const Failure& failure);

} // namespace diagnosis

#endif
