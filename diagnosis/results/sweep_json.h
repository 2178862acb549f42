#ifndef ARBORIST_DIAGNOSIS_RESULTS_SWEEP_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_SWEEP_JSON_H

#include <functional>
#include <string>

#include "diagnosis/sweep/sweep.h"

namespace diagnosis {

/// Passes a sweep to `print` as lines of JSON, without line ends: one of kind "sweep", schema "arborist.sweep.1", then one
/// of kind "interval" for each interval of each tree, root cause and rule. Later versions only add members.
void SweepJson(const SweepReport& report, const std::function<void(const std::string& line)>& print);

} // namespace diagnosis

#endif
