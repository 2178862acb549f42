#ifndef ARBORIST_DEDUCTION_ROOT_CAUSE_SEARCH_H
#define ARBORIST_DEDUCTION_ROOT_CAUSE_SEARCH_H

#include <memory>
#include <vector>

#include "arborist/deduction/cut_set.h"

class FaultTree;
class RootCause;

/// Finds the root causes of a folded tree: those that RootCauseLocator finds among the cut sets of
/// MinimalCutsetParser, in the same order and with the same events.
///
/// One member that does not qualify drops its cut set without a trace, so what does not qualify is never combined:
/// time and memory are in proportion to the tree plus what is found, not to the expansion.
class RootCauseSearch {
public:
    struct Found {
        std::vector<std::shared_ptr<RootCause>> rootCauses;
        /// The cut set of each root cause, where they were asked for.
        MinimalCutSet cutSets;
    };

    static Found Find(const FaultTree& tree, bool withCutSets = false);
};

#endif
