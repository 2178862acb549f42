#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_MINIMAL_SETS_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_MINIMAL_SETS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "diagnosis/analysis/distinct_causes.h"

namespace diagnosis {

/// In how many of the minimal cut sets an event stands.
struct EventShare {
    std::string id;
    std::size_t sets = 0;
    /// `sets` of all minimal cut sets, from 0 to 1.
    double share = 0;
};

/// Events after whose repair no root cause would remain.
struct RepairSet {
    std::vector<std::string> ids;
    /// Whether no smaller set exists; otherwise it is only a small one.
    bool isSmallest = true;
};

/// The cut sets in evidence without those that hold another one whole.
struct MinimalSets {
    /// Entries of the list of root causes, and distinct sets among them.
    std::uint64_t listed = 0;
    std::size_t distinct = 0;
    /// In the order of the list.
    std::vector<DistinctCause> sets;
    /// Highest share first; of equal ones the one that stands first.
    std::vector<EventShare> shares;
    RepairSet repairs;
};

MinimalSets FindMinimalSets(const ExplainedTree& tree);

/// Those that hold no other of `causes` whole, in the same order.
std::vector<DistinctCause> MinimalAmong(const std::vector<DistinctCause>& causes);

/// A set of ids that has a member in each of `sets`. Searched for the smallest while that is cheap; `steps` bounds the
/// work, and after them the best one found so far is answered.
RepairSet FindRepairs(const std::vector<DistinctCause>& sets, std::size_t steps = 20000000);

} // namespace diagnosis

#endif
