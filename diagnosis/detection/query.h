#ifndef ARBORIST_DIAGNOSIS_DETECTION_QUERY_H
#define ARBORIST_DIAGNOSIS_DETECTION_QUERY_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/detection/detection.h"

namespace diagnosis {

/// What the rule set says of one detection code. Ids are empty where it says nothing.
struct QueryReport {
    std::string bundle;
    std::optional<Failure> failure;
    std::vector<Warning> warnings;
    std::string code;
    /// Whether the code rule would run on this device.
    bool wouldRun = false;
    std::string faultDescription;
    std::string suggestion;
    std::string repair;
};

/// Asks without a detection: no rule is run.
QueryReport RunQuery(const BundlePath& bundle, const std::string& code, const BundleOverrides& overrides);

} // namespace diagnosis

#endif
