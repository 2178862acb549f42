#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_DISTINCT_CAUSES_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_DISTINCT_CAUSES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis {

/// Entries of the list of root causes with the same set of events. If a tree repeats a shared branch, the list repeats
/// its causes, as events with the same id are one event of the device.
struct DistinctCause {
    /// Ids of the members, each once, in the order of the first entry's cut set.
    std::vector<std::string> ids;
    /// Index of the first such entry in RecordedTree::causes.
    std::size_t first = 0;
    /// Number of such entries in the list.
    std::uint64_t times = 0;
};

/// The distinct root causes in the order of their first entries.
std::vector<DistinctCause> DistinctCausesOf(const RecordedTree& tree);

} // namespace diagnosis

#endif
