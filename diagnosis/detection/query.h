#ifndef ARBORIST_DIAGNOSIS_DETECTION_QUERY_H
#define ARBORIST_DIAGNOSIS_DETECTION_QUERY_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/detection/detection.h"

namespace diagnosis {

/// What the rule set says about one detection code. An id is empty if the rule set has none.
struct QueryReport {
    std::string bundle;
    std::optional<Failure> failure;
    std::vector<Warning> warnings;
    std::string code;
    /// True if the code rule would run on this device.
    bool wouldRun = false;
    std::string faultDescription;
    std::string suggestion;
    std::string repair;
};

/// Answers without a detection: runs no rule.
QueryReport RunQuery(const BundlePath& bundle, const std::string& code, const BundleOverrides& overrides);

} // namespace diagnosis

#endif
