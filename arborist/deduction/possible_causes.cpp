#include "arborist/deduction/possible_causes.h"

const std::vector<PossibleCauses::Index>* PossibleCauses::Next()
{
    if (!Resume()) {
        return nullptr;
    }
    while (mNext != FlatTree::NONE) {
        const Step step = mSteps[mNext];
        Take(step.branch, step.next);
    }
    return &mLeaves;
}

// Starts at the top event; later calls return to the last OR gate with a branch that was not tried yet.
bool PossibleCauses::Resume()
{
    if (!mIsStarted) {
        mIsStarted = true;
        if (!mFold.AddsCutSet()) {
            return false;
        }
        mNext = AddStep(0, FlatTree::NONE);
        return true;
    }
    if (mChoices.empty()) {
        return false;
    }
    const Choice choice = mChoices.back();
    mChoices.pop_back();
    mSteps.resize(choice.steps);
    mLeaves.resize(choice.leaves);
    mIsAddition = choice.isAddition;
    TakeOneOf(choice.branch, choice.next);
    return true;
}

void PossibleCauses::Take(Index branch, Index next)
{
    if (mFold.IsLeaf(branch)) {
        mLeaves.push_back(branch);
        mIsAddition = mIsAddition || mFold.AddsBelow(branch);
        mNext = next;
    } else if (mFold.IsOr(branch)) {
        TakeOneOf(FindUseful(mFold.GetFirstBranch(branch), next), next);
    } else {
        TakeAllOf(mFold.GetFirstBranch(branch), next);
    }
}

// Every `branch` passed here leads to a cut set, as FindUseful skips the others.
void PossibleCauses::TakeOneOf(Index branch, Index next)
{
    const Index other = FindUseful(mFold.GetNextBranch(branch), next);
    if (other != FlatTree::NONE) {
        mChoices.push_back({other, next, mSteps.size(), mLeaves.size(), mIsAddition});
    }
    mNext = AddStep(branch, next);
}

void PossibleCauses::TakeAllOf(Index firstBranch, Index next)
{
    std::vector<Index> branches;
    for (Index branch = firstBranch; branch != FlatTree::NONE; branch = mFold.GetNextBranch(branch)) {
        branches.push_back(branch);
    }
    mNext = next;
    for (auto branch = branches.rbegin(); branch != branches.rend(); ++branch) {
        mNext = AddStep(*branch, mNext);
    }
}

PossibleCauses::Index PossibleCauses::AddStep(Index branch, Index next)
{
    mSteps.push_back({branch, next, mFold.AddsBelow(branch) || (next != FlatTree::NONE && mSteps[next].adds)});
    return static_cast<Index>(mSteps.size() - 1);
}

// The first branch, from `branch` on, through which the cut set can still become an addition; `branch` itself if it is
// one already.
PossibleCauses::Index PossibleCauses::FindUseful(Index branch, Index next) const
{
    const bool isAdditionAnyway = mIsAddition || (next != FlatTree::NONE && mSteps[next].adds);
    while (branch != FlatTree::NONE && !isAdditionAnyway && !mFold.AddsBelow(branch)) {
        branch = mFold.GetNextBranch(branch);
    }
    return branch;
}
