#ifndef ARBORIST_TESTS_LINT_RULE_FINDINGS_H
#define ARBORIST_TESTS_LINT_RULE_FINDINGS_H

#include <set>
#include <string>
#include <vector>

#include "diagnosis/lint/base/subject.h"

/// The findings of these checks in a rule file with these sections: "A505: message", ordered by place. The tree file has
/// one tree of the tag "Laptop" with the basic event "E".
std::vector<std::string> FindingsInSections(const std::string& sections, const std::set<std::string>& checks,
    const std::vector<diagnosis::lint::DeviceProfile>& devices = {});

/// The same for rules, which are given as children of a "rule" element.
std::vector<std::string> FindingsInRules(const std::string& rules, const std::set<std::string>& checks,
    const std::vector<diagnosis::lint::DeviceProfile>& devices = {});

/// The same for one "alarmId" of the rule "r" in scene 1.
std::vector<std::string> FindingsInItem(const std::string& alarmId, const std::set<std::string>& checks);

#endif
