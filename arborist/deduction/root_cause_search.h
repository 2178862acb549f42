#ifndef ARBORIST_DEDUCTION_ROOT_CAUSE_SEARCH_H
#define ARBORIST_DEDUCTION_ROOT_CAUSE_SEARCH_H

#include <memory>
#include <vector>

#include "arborist/deduction/cut_set.h"

class FaultTree;
class RootCause;

/// Finds the root causes of a folded tree: the same that RootCauseLocator finds among the cut sets of
/// MinimalCutsetParser, with the same events and in the same order.
///
/// A single member that doesn't qualify drops its cut set, so the search never combines such members: time and memory
/// are proportional to the size of the tree plus that of the result, not to that of the expansion.
class RootCauseSearch {
public:
    struct Found {
        std::vector<std::shared_ptr<RootCause>> rootCauses;
        /// The cut set of each root cause, if they were requested.
        MinimalCutSet cutSets;
    };

    static Found Find(const FaultTree& tree, bool withCutSets = false);
};

#endif
