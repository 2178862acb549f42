#ifndef ARBORIST_DEDUCTION_ROOT_CAUSE_SEARCH_H
#define ARBORIST_DEDUCTION_ROOT_CAUSE_SEARCH_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "arborist/deduction/combinations.h"
#include "arborist/deduction/cut_set.h"
#include "arborist/deduction/surviving_tree.h"
#include "arborist/frame/evidence_tree.h"

class Event;
class FaultTree;
class RootCause;

/// Finds the root causes of a folded tree: the same that RootCauseLocator finds among the cut sets of
/// MinimalCutsetParser, with the same events and in the same order.
///
/// A single member that doesn't qualify drops its cut set, so the search never combines such members: time and memory
/// are proportional to the size of the tree plus that of the result, not to that of the expansion. Refers to the tree,
/// which must not change.
class RootCauseSearch {
public:
    static constexpr std::size_t NO_LIMIT = SIZE_MAX;

    /// What Settings::CAUSE_LIMIT says; NO_LIMIT where it is no number above 0.
    static std::size_t LimitOfSettings();

    explicit RootCauseSearch(const FaultTree& tree);
    RootCauseSearch(const RootCauseSearch&) = delete;
    RootCauseSearch& operator=(const RootCauseSearch&) = delete;

    /// The number of all root causes, of which none is built for it; inexact above 2^53.
    double CountAll() const { return mCombinations.CountAll(); }

    /// Finds the first `most` of them. To be called once.
    const std::vector<std::shared_ptr<RootCause>>& Find(std::size_t most = NO_LIMIT);
    /// The cut set of a root cause, by its place among those that were found.
    CutSet CutSetOf(std::size_t cause);
    /// The record of a root cause for an observer, by its place among those that were found.
    Evidence::RootCause RecordOf(std::size_t cause);

private:
    // The survivors refer to this very pointer.
    const std::shared_ptr<Event> mTop;
    const SurvivingTree mSurvivors;
    Combinations mCombinations;
    std::vector<std::shared_ptr<RootCause>> mFound;
};

#endif
