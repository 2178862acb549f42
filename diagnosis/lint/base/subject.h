#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_SUBJECT_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_SUBJECT_H

#include <string>
#include <vector>

#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::lint {

/// The known attributes of a kind of device, for checks of class DEVICE. An unknown attribute is empty.
struct DeviceProfile {
    std::string product;
    std::string platform;
    std::string deviceType;
    /// The scenes in which it is diagnosed; empty for any.
    std::vector<int> scenes;
};

class EventCounts;

/// What SQLite reports about the queries of command rules, for checks of class SQL.
class PreparedQueries;

/// The input of a check: a rule set as the engine reads it for one tag, and further data.
struct Subject {
    const rule_source::RuleSet& rules;
    PreparedQueries& queries;
    /// Null if there are none.
    const std::vector<DeviceProfile>* devices = nullptr;
    const EventCounts* counts = nullptr;
    /// The folder with the files of a device, as its root; empty if there is none.
    std::string deviceRoot = {};
};

} // namespace diagnosis::lint

#endif
