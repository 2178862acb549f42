#ifndef ARBORIST_DEDUCTION_POSSIBLE_CAUSES_H
#define ARBORIST_DEDUCTION_POSSIBLE_CAUSES_H

#include <cstddef>
#include <vector>

#include "arborist/deduction/verdict_fold.h"

/// Lists the cut sets that qualify only if open checks come out true, in the order in which a detection would find
/// them.
///
/// Generates them one by one: memory is proportional to one cut set with the events above it, and no branch is entered
/// that leads to no further cut set. Refers to the fold.
class PossibleCauses {
public:
    using Index = VerdictFold::Index;

    explicit PossibleCauses(const VerdictFold& fold) : mFold(fold) {}

    /// The leaves of the next cut set, valid until the next call; null if there are no more.
    const std::vector<Index>* Next();

private:
    /// A branch from which the unfinished cut set still needs leaves, linked to the steps after it.
    struct Step {
        Index branch;
        Index next;
        /// True if this branch, or one of a later step, has a cut set that open checks would add.
        bool adds;
    };

    /// An OR gate with a branch that was not tried yet, and the state of the search when it reached the gate.
    struct Choice {
        Index branch;
        Index next;
        std::size_t steps;
        std::size_t leaves;
        bool isAddition;
    };

    bool Resume();
    void Take(Index branch, Index next);
    void TakeOneOf(Index firstBranch, Index next);
    void TakeAllOf(Index firstBranch, Index next);
    Index AddStep(Index branch, Index next);
    Index FindUseful(Index branch, Index next) const;

    const VerdictFold& mFold;
    std::vector<Step> mSteps;
    std::vector<Choice> mChoices;
    std::vector<Index> mLeaves;
    /// The next step to take; NONE if the cut set is complete.
    Index mNext = FlatTree::NONE;
    /// True if a leaf was taken that qualifies only with the answers of open checks.
    bool mIsAddition = false;
    bool mIsStarted = false;
};

#endif
