#include "arborist/deduction/path_walk.h"

#include <algorithm>

#include "arborist/model/event.h"
#include "arborist/model/gate.h"

void PathWalk::Walk(const std::shared_ptr<Event>& top, SurvivingTree& tree)
{
    PathWalk walk(top, tree);
    Index branch = SurvivingTree::NONE;
    if (walk.Enter(0, branch) == Outcome::ALIVE) {
        tree.SetTop(branch);
    }
}

// Gives `tree` the places of the whole fault tree, in the same order.
PathWalk::PathWalk(const std::shared_ptr<Event>& top, SurvivingTree& tree)
    : mPlaces(top), mPaths(mPlaces), mIsErrorToTop(mPlaces.Count()), mTree(tree)
{
    for (Index place = 0; place < mPlaces.Count(); ++place) {
        const Index parent = mPlaces.GetParent(place);
        mTree.Add(mPlaces.GetSharedEvent(place), parent);
        mIsErrorToTop[place] = IsError(mPlaces.GetEvent(place).GetResult())
            && (parent == FlatTree::NONE || mIsErrorToTop[parent]);
    }
}

PathWalk::Outcome PathWalk::Enter(Index place, Index& branch)
{
    if (mPlaces.GetEvent(place).GetKind() != EventKind::INTERMEDIATE) {
        return EnterLeaf(place, branch);
    }
    const Gate* gate = mPlaces.GetGate(place);
    if (gate == nullptr) {
        return Outcome::EMPTY;
    }
    return EnterGate(place,
                     gate->GetKind() == GateKind::OR ? SurvivingTree::BranchKind::OR : SurvivingTree::BranchKind::AND,
                     branch);
}

PathWalk::Outcome PathWalk::EnterLeaf(Index place, Index& branch)
{
    const std::vector<Index> members = mPaths.FindMembers(place);
    const bool qualifies = std::all_of(members.begin(), members.end(), [this](Index member) {
        return member != SurvivingTree::NONE && mIsErrorToTop[member];
    });
    if (!qualifies) {
        return Outcome::DEAD;
    }
    branch = mTree.AddLeaf(members);
    return Outcome::ALIVE;
}

PathWalk::Outcome PathWalk::EnterGate(Index place, SurvivingTree::BranchKind kind, Index& branch)
{
    Outcome outcome = Outcome::EMPTY;
    Index first = SurvivingTree::NONE;
    Index last = SurvivingTree::NONE;
    for (Index child = place + 1; child != mPlaces.GetEnd(place); child = mPlaces.GetEnd(child)) {
        Index below = SurvivingTree::NONE;
        const Outcome ofChild = Enter(child, below);
        if (kind == SurvivingTree::BranchKind::OR) {
            outcome = std::max(outcome, ofChild);
        } else if (outcome == Outcome::EMPTY) {
            // The first branch, or the first after an empty one, which drops all combinations before it: the
            // combinations begin anew here.
            outcome = ofChild;
            first = SurvivingTree::NONE;
        } else {
            outcome = std::min(outcome, ofChild);
        }
        if (below == SurvivingTree::NONE) {
            continue;
        }
        if (first == SurvivingTree::NONE) {
            first = below;
        } else {
            mTree.Chain(last, below);
        }
        last = below;
    }
    if (outcome == Outcome::ALIVE) {
        branch = mTree.AddGate(kind, first);
    }
    return outcome;
}
