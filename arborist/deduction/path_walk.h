#ifndef ARBORIST_DEDUCTION_PATH_WALK_H
#define ARBORIST_DEDUCTION_PATH_WALK_H

#include <memory>
#include <vector>

#include "arborist/deduction/flat_tree.h"
#include "arborist/deduction/path_index.h"
#include "arborist/deduction/surviving_tree.h"

class Event;

/// Builds the surviving tree of a folded tree with any ids: looks up every member by its path.
///
/// Time and memory are proportional to the text of all paths.
class PathWalk {
public:
    static void Walk(const std::shared_ptr<Event>& top, SurvivingTree& tree);

private:
    using Index = SurvivingTree::Index;
    using Outcome = SurvivingTree::Outcome;

    PathWalk(const std::shared_ptr<Event>& top, SurvivingTree& tree);

    Outcome Enter(Index place, Index& branch);
    Outcome EnterLeaf(Index place, Index& branch);
    Outcome EnterGate(Index place, SurvivingTree::BranchKind kind, Index& branch);

    FlatTree mPlaces;
    PathIndex mPaths;
    /// For each place: true if its event and all events above it are in error.
    std::vector<bool> mIsErrorToTop;
    SurvivingTree& mTree;
};

#endif
