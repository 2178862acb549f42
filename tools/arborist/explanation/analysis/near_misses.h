#ifndef ARBORIST_TOOLS_EXPLANATION_ANALYSIS_NEAR_MISSES_H
#define ARBORIST_TOOLS_EXPLANATION_ANALYSIS_NEAR_MISSES_H

#include <cstddef>
#include <string>
#include <vector>

#include "tools/arborist/explanation/explanation.h"

namespace command {

/// A cut set that is a few events short of being a root cause.
struct NearMiss {
    /// Places, in ExplainedTree::events, of the members that are in error: one for each id.
    std::vector<std::size_t> present;
    /// The members that are not, and the observable intermediate events above members that are not: one for each id.
    std::vector<std::size_t> missing;
};

struct NearMisses {
    /// Fewest missing first.
    std::vector<NearMiss> sets;
    /// How many more were found, and whether all were: the search ends after a bounded number of steps.
    std::size_t leftOut = 0;
    bool isComplete = true;
};

/// The cut sets of a tree that are 1 to `mostMissing` events short, each set of ids once, and of these at most
/// `limit`. Cut sets are those of the library's plain expansion, but that a branch which one AND gate holds twice is
/// chosen from once; they are looked for one by one, never all expanded.
NearMisses FindNearMisses(
    const ExplainedTree& tree, std::size_t mostMissing, std::size_t limit, std::size_t steps = 2000000);

} // namespace command

#endif
