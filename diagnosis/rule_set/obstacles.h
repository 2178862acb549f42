#ifndef ARBORIST_DIAGNOSIS_RULE_SET_OBSTACLES_H
#define ARBORIST_DIAGNOSIS_RULE_SET_OBSTACLES_H

#include <vector>

#include "diagnosis/lint/base/subject.h"
#include "diagnosis/rule_set/reach.h"

namespace diagnosis::rule_set {

/// More are not collected for one root cause.
inline constexpr std::size_t MOST_OBSTACLES = 20;

/// True if the filters of an event's rules let it be true on this device, in one of its scenes.
bool MayHold(
    const rule_source::RuleSet& rules, const rule_source::TreeEvent& event, const lint::DeviceProfile& device);

/// Why an event that can't be true on this device can't: each rule that is missing or rejected.
std::vector<Obstacle> ObstaclesOf(
    const rule_source::RuleSet& rules, const rule_source::TreeEvent& event, const lint::DeviceProfile& device);

} // namespace diagnosis::rule_set

#endif
