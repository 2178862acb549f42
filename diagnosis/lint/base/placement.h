#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_PLACEMENT_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_PLACEMENT_H

#include <string>
#include <vector>

#include "diagnosis/lint/base/finding.h"
#include "diagnosis/lint/base/report.h"

namespace diagnosis::lint {

/// The path of names to an element, without the root: "EventRules/Laptop/Event[WORN]". Brackets contain its "name",
/// "id" or "ID", which distinguishes it from its siblings.
std::string ElementPath(rule_source::Element element);

/// Finds the place of each report in its file, sorts them, and removes duplicates.
std::vector<Finding> PlaceFindings(const std::vector<Reported>& reported);

} // namespace diagnosis::lint

#endif
