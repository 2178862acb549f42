#ifndef ARBORIST_DEDUCTION_ROOT_CAUSE_SEARCH_H
#define ARBORIST_DEDUCTION_ROOT_CAUSE_SEARCH_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "arborist/deduction/cut_set.h"
#include "arborist/frame/evidence_tree.h"

class FaultTree;
class RootCause;

/// Finds the root causes of a folded tree: the same that RootCauseLocator finds among the cut sets of
/// MinimalCutsetParser, with the same events and in the same order.
///
/// A single member that doesn't qualify drops its cut set, so the search never combines such members: time and memory
/// are proportional to the size of the tree plus that of the result, not to that of the expansion.
class RootCauseSearch {
public:
    static constexpr std::size_t NO_LIMIT = SIZE_MAX;

    struct Found {
        std::shared_ptr<RootCause> rootCause;
        /// Empty unless cut sets were requested.
        CutSet cutSet = {};

        /// What an observer is told of it. Takes the cut set.
        Evidence::RootCause TakeRecord();
    };

    /// What Settings::CAUSE_LIMIT says; NO_LIMIT where it is no number above 0.
    static std::size_t LimitOfSettings();

    /// Finds the first `most` of them. Their number is worked out before the first is built: if it is above `most`,
    /// `tellNumber`, which may be null, receives it, with 15 digits.
    static std::vector<Found> Find(const FaultTree& tree, bool withCutSets = false, std::size_t most = NO_LIMIT,
        const std::function<void(const std::string& number)>& tellNumber = nullptr);
};

#endif
