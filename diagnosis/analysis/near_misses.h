#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_NEAR_MISSES_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_NEAR_MISSES_H

#include <cstddef>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis {

/// The events that keep a cut set from being a root cause.
struct NearMiss {
    /// Indexes into RecordedTree::events, one for each id: members that are not in error, and observable intermediate
    /// events above members that are not in error.
    std::vector<std::size_t> missing;
    /// The events in error in one cut set that lacks just these; there may be more such cut sets.
    std::vector<std::size_t> present;
};

struct NearMisses {
    /// Fewest missing events first; sets of equal size in the order of the tree.
    std::vector<NearMiss> sets;
    /// How many more were found, and whether the search was complete: it ends after a number of steps.
    std::size_t leftOut = 0;
    bool isComplete = true;
};

/// Finds what the cut sets lack that are 1 to `mostMissing` events short: each set of missing ids once, at most `limit`
/// of them. Cut sets are those of the library's plain expansion, which is not carried out: events in error need no
/// choice.
NearMisses FindNearMisses(
    const RecordedTree& tree, std::size_t mostMissing, std::size_t limit, std::size_t steps = 2000000);

} // namespace diagnosis

#endif
