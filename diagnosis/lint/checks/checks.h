#ifndef ARBORIST_DIAGNOSIS_LINT_CHECKS_CHECKS_H
#define ARBORIST_DIAGNOSIS_LINT_CHECKS_CHECKS_H

#include <span>

#include "diagnosis/lint/base/check.h"

namespace diagnosis::lint {

/// The checks of each file in the folders beside this one. The registry puts them together.
std::span<const Check> FileChecks();
std::span<const Check> WordChecks();
std::span<const Check> TreeChecks();
std::span<const Check> EventChecks();
std::span<const Check> CutSetChecks();
std::span<const Check> BindingChecks();
std::span<const Check> AlternativeChecks();
std::span<const Check> FilterChecks();
std::span<const Check> DeviceFilterChecks();
std::span<const Check> TimeChecks();
std::span<const Check> ComparisonChecks();
std::span<const Check> ConditionChecks();
std::span<const Check> ValueSetChecks();
std::span<const Check> AlarmChecks();
std::span<const Check> AlarmTestChecks();
std::span<const Check> CommandChecks();
std::span<const Check> SqlChecks();
std::span<const Check> QueryChecks();
std::span<const Check> FormulaChecks();
std::span<const Check> NodeChecks();
std::span<const Check> CommonPartChecks();
std::span<const Check> ThresholdChecks();
std::span<const Check> ExternalDatabaseChecks();
std::span<const Check> DescriptionChecks();
std::span<const Check> CodeRuleChecks();
std::span<const Check> HostChecks();

} // namespace diagnosis::lint

#endif
