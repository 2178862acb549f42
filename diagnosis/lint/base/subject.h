#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_SUBJECT_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_SUBJECT_H

#include <string>
#include <vector>

#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::lint {

/// What is known of a kind of device, for checks of class DEVICE. An empty text is an attribute that is not known.
struct DeviceProfile {
    std::string product;
    std::string platform;
    std::string deviceType;
    /// Scenes that are asked of it; empty when any may be.
    std::vector<int> scenes;
};

class EventCounts;

/// What SQLite says of the queries of command rules, for checks of class SQL.
class PreparedQueries;

/// What a check looks at: a rule set as the engine reads it for one tag, and what else was given.
struct Subject {
    const rule_source::RuleSet& rules;
    PreparedQueries& queries;
    /// Null where none were given.
    const std::vector<DeviceProfile>* devices = nullptr;
    const EventCounts* counts = nullptr;
    /// Folder that stands for the root of a device; empty where none was given.
    std::string deviceRoot = {};
};

} // namespace diagnosis::lint

#endif
