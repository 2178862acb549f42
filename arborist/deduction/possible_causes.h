#ifndef ARBORIST_DEDUCTION_POSSIBLE_CAUSES_H
#define ARBORIST_DEDUCTION_POSSIBLE_CAUSES_H

#include <cstddef>
#include <vector>

#include "arborist/deduction/verdict_fold.h"

/// Lists the cut sets that answers of open checks would add, in the order in which a detection would find them.
///
/// Lists them one by one: memory is in proportion to one cut set with what stands above it, and what leads to no
/// further one is not entered. Refers to the fold.
class PossibleCauses {
public:
    using Index = VerdictFold::Index;

    explicit PossibleCauses(const VerdictFold& fold) : mFold(fold) {}

    /// The leaves of the next cut set, valid until the next call; null when there are no more.
    const std::vector<Index>* Next();

private:
    /// A branch that the cut set in the making still has to go through, and those behind it.
    struct Step {
        Index branch;
        Index next;
        /// The branch, or one behind it, holds what open checks would add.
        bool adds;
    };

    /// An OR gate with another branch to go through, and how far all had come there.
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
    /// The next step to take; NONE when the cut set is whole.
    Index mNext = FlatTree::NONE;
    /// A leaf was taken that is not in error to the top yet.
    bool mIsAddition = false;
    bool mIsStarted = false;
};

#endif
