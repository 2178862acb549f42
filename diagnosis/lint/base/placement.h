#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_PLACEMENT_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_PLACEMENT_H

#include <deque>
#include <string>
#include <vector>

#include "diagnosis/lint/base/finding.h"
#include "diagnosis/lint/base/report.h"

namespace diagnosis::lint {

/// What is found out about each finding in addition; it takes time, and only some callers need it.
struct FindingDetails {
    /// Finding::fingerprint.
    bool withFingerprints = false;
    /// Finding::rule and Finding::event.
    bool withOwners = false;
};

/// Looks up the place of each report in its file. Returns the findings in order, each once.
std::vector<Finding> PlaceFindings(std::deque<Reported> reported, const FindingDetails& details);

} // namespace diagnosis::lint

#endif
