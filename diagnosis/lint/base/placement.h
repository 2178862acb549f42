#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_PLACEMENT_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_PLACEMENT_H

#include <deque>
#include <string>
#include <vector>

#include "diagnosis/lint/base/finding.h"
#include "diagnosis/lint/base/report.h"

namespace diagnosis::lint {

/// Where an element is by the names on the way to it, the root left out: "EventRules/Laptop/Event[WORN]". In brackets
/// stands what tells it from its neighbours: its "name", "id" or "ID".
std::string ElementPath(rule_source::Element element);

/// What is found out about each finding in addition; it takes time, and only some callers need it.
struct FindingDetails {
    /// Finding::fingerprint.
    bool withFingerprints = false;
    /// Finding::rule and Finding::event.
    bool withOwners = false;
};

/// Looks up where each reported thing stands in its file, and puts them in order; things reported twice stay once.
std::vector<Finding> PlaceFindings(std::deque<Reported> reported, const FindingDetails& details);

} // namespace diagnosis::lint

#endif
