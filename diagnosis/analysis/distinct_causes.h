#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_DISTINCT_CAUSES_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_DISTINCT_CAUSES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "diagnosis/evidence/explanation.h"

namespace diagnosis {

/// Entries of the list of root causes that come to the same set of events. Where a tree writes a shared branch out
/// many times, the list repeats itself: events with one id are one event of the device.
struct DistinctCause {
    /// Ids of the members, each once, in the order of the first entry's cut set.
    std::vector<std::string> ids;
    /// Place of the first such entry in ExplainedTree::causes.
    std::size_t first = 0;
    /// How often it stands in the list.
    std::uint64_t times = 0;
};

/// In the order of their first entries.
std::vector<DistinctCause> DistinctCausesOf(const ExplainedTree& tree);

} // namespace diagnosis

#endif
