#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_NEAR_MISSES_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_NEAR_MISSES_H

#include <cstddef>
#include <vector>

#include "diagnosis/evidence/explanation.h"

namespace diagnosis {

/// Events without which a cut set is no root cause.
struct NearMiss {
    /// Places in ExplainedTree::events, one for each id: members that are not in error, and observable intermediate
    /// events above members that are not.
    std::vector<std::size_t> missing;
    /// What is in error beside them in a cut set that lacks nothing else; there may be more such cut sets.
    std::vector<std::size_t> present;
};

struct NearMisses {
    /// Fewest missing first; equally many in the order of the tree.
    std::vector<NearMiss> sets;
    /// How many more were found, and whether all were: the work is bounded by a number of steps.
    std::size_t leftOut = 0;
    bool isComplete = true;
};

/// What the cut sets of a tree lack that are 1 to `mostMissing` events short: each set of missing ids once, and of
/// these at most `limit`. Cut sets are those of the library's plain expansion, which is never carried out: what is in
/// error needs no choice.
NearMisses FindNearMisses(
    const ExplainedTree& tree, std::size_t mostMissing, std::size_t limit, std::size_t steps = 2000000);

} // namespace diagnosis

#endif
