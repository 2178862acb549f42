#ifndef ARBORIST_DEDUCTION_VERDICT_FOLD_H
#define ARBORIST_DEDUCTION_VERDICT_FOLD_H

#include <optional>
#include <vector>

#include "arborist/deduction/flat_tree.h"
#include "arborist/deduction/path_index.h"
#include "arborist/deduction/surviving_tree.h"

/// Folds a tree as if every open check had come out true, beside the statuses that the engine left in it.
///
/// No gate negates, so these two folds bound every answer that the open checks could give: a cut set that any of them
/// makes qualify qualifies here, too. Events follow their gates, or cut off what lies below, as in the engine. Nothing
/// is written into the tree, no line is logged, and gates are not expanded: three passes over the places. Refers to
/// the tree, which must stay as it is.
class VerdictFold {
public:
    using Index = FlatTree::Index;
    using Outcome = SurvivingTree::Outcome;

    /// `isOpen` tells of each place whether its check is open; the engine has folded the tree.
    /// An intermediate event without a gate whose check is open counts as a leaf: what should lie below is not known.
    VerdictFold(const FlatTree& tree, std::vector<bool> isOpen);

    /// Whether the top event would be in error.
    bool IsTopInError() const { return mTree.Count() != 0 && mIsError[0]; }
    /// Whether a cut set would qualify.
    bool HasCutSet() const { return mTree.Count() != 0 && mOutcome[0] == Outcome::ALIVE; }
    /// Whether a cut set would qualify that doesn't with the statuses that the engine left.
    bool AddsCutSet() const { return HasCutSet() && mAddsBelow[0]; }

    const FlatTree& GetTree() const { return mTree; }
    bool IsLeaf(Index place) const;
    bool IsOr(Index place) const;
    /// The branches with cut sets below a gate, in order, from the first to NONE. Of an AND gate, those that its cut
    /// sets combine.
    Index GetFirstBranch(Index place) const { return mFirstBranch[place]; }
    Index GetNextBranch(Index branch) const { return mNextBranch[branch]; }
    /// Whether a branch holds a cut set that open checks would add.
    bool AddsBelow(Index branch) const { return mAddsBelow[branch]; }
    /// The places that a leaf stands for in a cut set.
    std::vector<Index> ListMembers(Index leaf) const;

private:
    void FoldErrors();
    void FoldWaysUp();
    void FoldCutSets();
    void EnterLeaf(Index leaf);
    void PassUp(Index place);

    const FlatTree& mTree;
    std::vector<bool> mIsOpen;
    /// Where ids make paths ambiguous.
    std::optional<PathIndex> mPaths;
    std::vector<bool> mIsError;
    /// The event and all above it would be in error, or are in error already.
    std::vector<bool> mIsErrorToTop;
    std::vector<bool> mWasErrorToTop;
    std::vector<Outcome> mOutcome;
    std::vector<bool> mAddsBelow;
    /// Of an AND gate, on the way from its last event to its first: an empty branch was met, which ends its cut sets.
    std::vector<bool> mIsClosed;
    std::vector<Index> mFirstBranch;
    std::vector<Index> mNextBranch;
};

#endif
