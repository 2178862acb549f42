#ifndef ARBORIST_DEDUCTION_ERROR_WALK_H
#define ARBORIST_DEDUCTION_ERROR_WALK_H

#include <memory>
#include <vector>

#include "arborist/deduction/error_ids.h"
#include "arborist/deduction/surviving_tree.h"

class Event;
class Gate;
class IntermediateEvent;

/// Builds the surviving tree of a folded tree by walking down from the top along the events in error.
///
/// A cut set names its members by path, and the first event with that path is the one that counts. The walk therefore
/// requires unambiguous paths and checks this for every gate that it enters: no id below the gate may contain "/" or
/// "&", and no event may have the same id as an event in error beside it. Then the path of every kept event belongs to
/// that event alone, and the path of every dropped event belongs to no event that is in error up to the top. PathWalk
/// is the slower alternative for trees with other ids.
class ErrorWalk {
public:
    /// The top event must be in error, and its id must not contain "&". Returns false if ids make paths ambiguous; the
    /// content of `tree` is then meaningless.
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
