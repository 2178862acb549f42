#ifndef ARBORIST_DIAGNOSIS_RULE_SET_REACH_H
#define ARBORIST_DIAGNOSIS_RULE_SET_REACH_H

#include <string>
#include <vector>

#include "diagnosis/lint/base/subject.h"
#include "diagnosis/rule_set/item.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::rule_set {

/// Why an event can never be true on a device.
struct Obstacle {
    std::string event;
    Place eventPlace;
    /// What is wrong, as a sentence without a full stop: `production "LT-13" does not contain "LT-14"`.
    std::string reason;
    /// The rule that it is about, and the filter that rejects the device; empty if it is about neither.
    std::string rule;
    Place rulePlace;
    std::string filter;
};

/// A basic or undeveloped event that a detection reports as root cause if it can be true.
struct ReachedCause {
    std::string event;
    Place place;
    bool isReachable = false;
    /// What is in the way, at the event, above it, or at events that must be true with it; at most twenty.
    std::vector<Obstacle> obstacles;
};

struct ReachedTree {
    std::string tree;
    Place place;
    /// In order of the tree file. Leaves that are never first in a cut set are not root causes.
    std::vector<ReachedCause> causes;
};

/// Which root causes of one tag the filters let a device of this profile report in one of its scenes. Values that the
/// profile lacks may be any. Looks at no data: what can be true may still need rows that a device never logs.
std::vector<ReachedTree> ReachOf(const rule_source::RuleSet& rules, const lint::DeviceProfile& device);

} // namespace diagnosis::rule_set

#endif
