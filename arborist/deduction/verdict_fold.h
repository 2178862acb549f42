#ifndef ARBORIST_DEDUCTION_VERDICT_FOLD_H
#define ARBORIST_DEDUCTION_VERDICT_FOLD_H

#include <optional>
#include <vector>

#include "arborist/deduction/flat_tree.h"
#include "arborist/deduction/path_index.h"
#include "arborist/deduction/surviving_tree.h"

/// Folds a tree as if every open check had come out true, and compares that with the statuses that the engine left in
/// it.
///
/// As no gate negates, these two folds bound all answers that the open checks could give: a cut set that qualifies with
/// any of them qualifies in this fold, too. As in the engine, an event follows its gate unless it has a check of its
/// own. Makes three passes over the places without expanding a gate; neither changes the tree nor logs anything. Refers
/// to the tree, which must not change.
class VerdictFold {
public:
    using Index = FlatTree::Index;
    using Outcome = SurvivingTree::Outcome;

    /// `isOpen` says for each place whether its check is open; the engine must have folded the tree before. An
    /// intermediate event with an open check but no gate counts as a leaf, as nothing is known about the events below
    /// it.
    VerdictFold(const FlatTree& tree, std::vector<bool> isOpen);

    /// True if the top event would be in error.
    bool IsTopInError() const { return mTree.Count() != 0 && mIsError[0]; }
    /// True if a cut set would qualify.
    bool HasCutSet() const { return mTree.Count() != 0 && mOutcome[0] == Outcome::ALIVE; }
    /// True if a cut set would qualify that doesn't qualify with the statuses that the engine left.
    bool AddsCutSet() const { return HasCutSet() && mAddsBelow[0]; }

    const FlatTree& GetTree() const { return mTree; }
    bool IsLeaf(Index place) const;
    bool IsOr(Index place) const;
    /// Iterate over the branches with cut sets below a gate, in order, until NONE. For an AND gate these are the
    /// branches that its cut sets combine.
    Index GetFirstBranch(Index place) const { return mFirstBranch[place]; }
    Index GetNextBranch(Index branch) const { return mNextBranch[branch]; }
    /// True if a branch has a cut set that open checks would add.
    bool AddsBelow(Index branch) const { return mAddsBelow[branch]; }
    /// The places that a leaf contributes to a cut set.
    std::vector<Index> ListMembers(Index leaf) const;

private:
    void FoldErrors();
    void FoldWaysUp();
    void FoldCutSets();
    void EnterLeaf(Index leaf);
    void PassUp(Index place);

    const FlatTree& mTree;
    std::vector<bool> mIsOpen;
    /// Set if ids make paths ambiguous.
    std::optional<PathIndex> mPaths;
    std::vector<bool> mIsError;
    /// True if the event and all events above it would be in error; the second list: if they are in error already.
    std::vector<bool> mIsErrorToTop;
    std::vector<bool> mWasErrorToTop;
    std::vector<Outcome> mOutcome;
    std::vector<bool> mAddsBelow;
    /// For an AND gate, visited from its last event to its first: true once an empty branch was found, before which no
    /// cut set counts.
    std::vector<bool> mIsClosed;
    std::vector<Index> mFirstBranch;
    std::vector<Index> mNextBranch;
};

#endif
