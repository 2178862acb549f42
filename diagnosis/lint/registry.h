#ifndef ARBORIST_DIAGNOSIS_LINT_REGISTRY_H
#define ARBORIST_DIAGNOSIS_LINT_REGISTRY_H

#include <string_view>
#include <vector>

#include "diagnosis/lint/base/check.h"

namespace diagnosis::lint {

/// All checks in order of id.
const std::vector<const Check*>& AllChecks();
/// Null for an unknown id.
const Check* FindCheck(std::string_view id);

/// The two samples of a check that --explain shows: the file in which they differ.
struct Sample {
    const char* id;
    /// "FaultTrees.xml" or "FaultTreeRules.xml".
    const char* file;
    const char* bad;
    const char* good;
};

/// Null for a check without samples.
const Sample* FindSample(std::string_view id);

} // namespace diagnosis::lint

#endif
