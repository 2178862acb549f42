#ifndef ARBORIST_TESTS_LINT_RULE_FINDINGS_H
#define ARBORIST_TESTS_LINT_RULE_FINDINGS_H

#include <set>
#include <string>
#include <vector>

#include "diagnosis/lint/base/subject.h"

/// The findings of these checks in rules, which are given as children of a "rule" element: "A505: message", ordered by
/// place.
std::vector<std::string> FindingsInRules(const std::string& rules, const std::set<std::string>& checks,
    const std::vector<diagnosis::lint::DeviceProfile>& devices = {});

/// The same for one "alarmId" of the rule "r" in scene 1.
std::vector<std::string> FindingsInItem(const std::string& alarmId, const std::set<std::string>& checks);

#endif
