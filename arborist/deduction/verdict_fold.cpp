#include "arborist/deduction/verdict_fold.h"

#include <algorithm>
#include <utility>

#include "arborist/model/event.h"
#include "arborist/model/gate.h"

namespace {

bool FollowsGate(const FlatTree& tree, FlatTree::Index place)
{
    return tree.GetGate(place) != nullptr && !tree.GetEvent(place).IsObservable();
}

} // namespace

VerdictFold::VerdictFold(const FlatTree& tree, std::vector<bool> isOpen)
    : mTree(tree), mIsOpen(std::move(isOpen)), mIsError(tree.Count()), mIsErrorToTop(tree.Count()),
      mWasErrorToTop(tree.Count()), mOutcome(tree.Count(), Outcome::EMPTY), mAddsBelow(tree.Count()),
      mIsClosed(tree.Count()), mFirstBranch(tree.Count(), FlatTree::NONE), mNextBranch(tree.Count(), FlatTree::NONE)
{
    mIsOpen.resize(tree.Count());
    if (!PathIndex::ArePathsUnambiguous(tree)) {
        mPaths.emplace(tree);
    }
    FoldErrors();
    FoldWaysUp();
    FoldCutSets();
}

bool VerdictFold::IsLeaf(Index place) const
{
    return mTree.GetEvent(place).GetKind() != EventKind::INTERMEDIATE ||
        (mTree.GetGate(place) == nullptr && mIsOpen[place]);
}

bool VerdictFold::IsOr(Index place) const
{
    const Gate* gate = mTree.GetGate(place);
    return gate != nullptr && gate->GetKind() == GateKind::OR;
}

std::vector<VerdictFold::Index> VerdictFold::ListMembers(Index leaf) const
{
    return mPaths ? mPaths->FindMembers(leaf) : std::vector<Index>{leaf};
}

// Goes from the last place to the first, so that the events below an event are known before it.
void VerdictFold::FoldErrors()
{
    // A gate is settled by one event: an OR gate by an event in error, an AND gate by one that is not in error.
    std::vector<bool> isSettled(mTree.Count());
    for (Index place = mTree.Count(); place-- != 0;) {
        mIsError[place] = mIsOpen[place] ||
            (FollowsGate(mTree, place) ? isSettled[place] == IsOr(place)
                                       : IsError(mTree.GetEvent(place).GetResult()));
        const Index parent = mTree.GetParent(place);
        if (parent != FlatTree::NONE && mIsError[place] == IsOr(parent)) {
            isSettled[parent] = true;
        }
    }
}

void VerdictFold::FoldWaysUp()
{
    for (Index place = 0; place < mTree.Count(); ++place) {
        const Index parent = mTree.GetParent(place);
        const bool isTop = parent == FlatTree::NONE;
        mIsErrorToTop[place] = mIsError[place] && (isTop || mIsErrorToTop[parent]);
        mWasErrorToTop[place] = IsError(mTree.GetEvent(place).GetResult()) && (isTop || mWasErrorToTop[parent]);
    }
}

void VerdictFold::FoldCutSets()
{
    for (Index place = mTree.Count(); place-- != 0;) {
        if (IsLeaf(place)) {
            EnterLeaf(place);
        }
        if (place != 0) {
            PassUp(place);
        }
    }
}

void VerdictFold::EnterLeaf(Index leaf)
{
    const std::vector<Index> members = ListMembers(leaf);
    const auto all = [&members](const std::vector<bool>& isErrorToTop) {
        return std::all_of(members.begin(), members.end(), [&isErrorToTop](Index member) {
            return member != FlatTree::NONE && isErrorToTop[member];
        });
    };
    mOutcome[leaf] = all(mIsErrorToTop) ? Outcome::ALIVE : Outcome::DEAD;
    mAddsBelow[leaf] = mOutcome[leaf] == Outcome::ALIVE && !all(mWasErrorToTop);
}

// Adds the outcome of `place` to the gate above. An empty branch of an AND gate drops the cut sets of all branches
// before it; as the places are visited backwards, those are the branches that follow here.
void VerdictFold::PassUp(Index place)
{
    const Index parent = mTree.GetParent(place);
    if (mIsClosed[parent]) {
        return;
    }
    Outcome& ofGate = mOutcome[parent];
    if (IsOr(parent) || ofGate == Outcome::EMPTY) {
        mIsClosed[parent] = !IsOr(parent) && mOutcome[place] == Outcome::EMPTY;
        ofGate = std::max(ofGate, mOutcome[place]);
    } else if (mOutcome[place] == Outcome::EMPTY) {
        mIsClosed[parent] = true;
        return;
    } else {
        ofGate = std::min(ofGate, mOutcome[place]);
    }
    if (mOutcome[place] == Outcome::ALIVE) {
        mNextBranch[place] = mFirstBranch[parent];
        mFirstBranch[parent] = place;
        mAddsBelow[parent] = mAddsBelow[parent] || mAddsBelow[place];
    }
}
