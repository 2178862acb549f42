#ifndef ARBORIST_DEDUCTION_ERROR_WALK_H
#define ARBORIST_DEDUCTION_ERROR_WALK_H

#include <memory>
#include <vector>

#include "arborist/deduction/error_ids.h"
#include "arborist/deduction/surviving_tree.h"

class Event;
class Gate;
class IntermediateEvent;

/// Cuts a folded tree down to what survives by walking along what is in error, from the top down.
///
/// A member of a cut set is told by its path, and the first event with that path is the one that is tested. The walk
/// relies on paths that lead back to where they come from, and sees to it: of the events below every gate that it
/// enters, none may hold a "/" or "&" in its id, and none may have the id of one in error beside it. Then the path of
/// what it keeps leads nowhere else, and the path of what it cuts leads to nothing that is in error up to the top.
/// PathWalk is the slower way for trees with other ids.
class ErrorWalk {
public:
    /// The top event must be in error and its id without "&". False when ids make paths ambiguous: `tree` is then of
    /// no use.
    static bool Walk(const std::shared_ptr<Event>& top, SurvivingTree& tree);

private:
    using Index = SurvivingTree::Index;
    using Outcome = SurvivingTree::Outcome;

    explicit ErrorWalk(SurvivingTree& tree) : mTree(tree) {}

    Outcome Enter(const std::shared_ptr<Event>& event, Index parent, Index& branch);
    Outcome EnterGate(const Gate& gate, Index place, Index& branch);
    Outcome EnterOr(const Gate& gate, const ErrorIds::Indexes& inError, Index place, Index& branch);
    Outcome EnterAnd(const Gate& gate, Index place, Index& branch);

    SurvivingTree& mTree;
    ErrorIds mErrorIds;
    bool mIsAmbiguous = false;
};

#endif
