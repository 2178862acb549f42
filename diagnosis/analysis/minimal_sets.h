#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_MINIMAL_SETS_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_MINIMAL_SETS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "diagnosis/analysis/distinct_causes.h"

namespace diagnosis {

/// In how many of the minimal cut sets an event occurs.
struct EventShare {
    std::string id;
    std::size_t sets = 0;
    /// `sets` of all minimal cut sets, from 0 to 1.
    double share = 0;
};

/// Events after whose repair no root cause would remain.
struct RepairSet {
    std::vector<std::string> ids;
    /// True if no smaller set exists; false if the search ended early and a smaller one may exist.
    bool isSmallest = true;
};

/// The cut sets in evidence, without supersets of others.
struct MinimalSets {
    /// Number of entries in the list of root causes, and of distinct sets among them.
    std::uint64_t listed = 0;
    std::size_t distinct = 0;
    /// In the order of the list.
    std::vector<DistinctCause> sets;
    /// Highest share first; equal shares in the order of the sets.
    std::vector<EventShare> shares;
    RepairSet repairs;
};

MinimalSets FindMinimalSets(const RecordedTree& tree);

/// The causes that are no supersets of others, in the same order.
std::vector<DistinctCause> MinimalAmong(const std::vector<DistinctCause>& causes);

/// A smallest set of ids that has a member in each of `sets`, or the best one that was found within `steps` steps.
RepairSet FindRepairs(const std::vector<DistinctCause>& sets, std::size_t steps = 20000000);

} // namespace diagnosis

#endif
