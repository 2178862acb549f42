#include "arborist/deduction/error_walk.h"

#include <algorithm>
#include <cstddef>

#include "arborist/model/event.h"
#include "arborist/model/gate.h"

namespace {

bool IsInError(const std::shared_ptr<Event>& event)
{
    return IsError(event->GetResult());
}

bool IsEmpty(const Event& event);

// True if the gate has no cut sets at all, whatever the statuses of its events.
bool IsEmpty(const Gate& gate)
{
    const auto& events = gate.GetEvents();
    if (gate.GetKind() == GateKind::OR) {
        return std::all_of(events.begin(), events.end(), [](const auto& child) { return IsEmpty(*child); });
    }
    // In an AND gate an empty branch drops the cut sets of the branches before it; those after it begin anew. So
    // the gate is empty if its last branch is.
    return events.empty() || IsEmpty(*events.back());
}

bool IsEmpty(const Event& event)
{
    const IntermediateEvent* intermediate = event.AsIntermediate();
    return intermediate != nullptr && (intermediate->GetGate() == nullptr || IsEmpty(*intermediate->GetGate()));
}

ErrorIds::Indexes ListErrors(const ErrorIds::Events& events)
{
    ErrorIds::Indexes inError;
    for (std::size_t event = 0; event < events.size(); ++event) {
        if (IsInError(events[event])) {
            inError.push_back(event);
        }
    }
    return inError;
}

} // namespace

bool ErrorWalk::Walk(const std::shared_ptr<Event>& top, SurvivingTree& tree)
{
    ErrorWalk walk(tree);
    Index branch = SurvivingTree::NONE;
    if (walk.Enter(top, SurvivingTree::NONE, branch) == Outcome::ALIVE) {
        tree.SetTop(branch);
    }
    return !walk.mIsAmbiguous;
}

// `event` and all events above it must be in error.
ErrorWalk::Outcome ErrorWalk::Enter(const std::shared_ptr<Event>& event, Index parent, Index& branch)
{
    const SurvivingTree::Mark mark = mTree.GetMark();
    const Index place = mTree.Add(event, parent);
    const IntermediateEvent* intermediate = event->AsIntermediate();
    if (intermediate == nullptr) {
        branch = mTree.AddLeaf(place);
        return Outcome::ALIVE;
    }
    const Gate* gate = intermediate->GetGate().get();
    const Outcome outcome = gate == nullptr ? Outcome::EMPTY : EnterGate(*gate, place, branch);
    if (outcome != Outcome::ALIVE) {
        mTree.Rewind(mark);
    }
    return outcome;
}

ErrorWalk::Outcome ErrorWalk::EnterGate(const Gate& gate, Index place, Index& branch)
{
    const ErrorIds::Indexes inError = ListErrors(gate.GetEvents());
    if (inError.empty()) {
        // The events below may share their paths with others, but no event with such a path is in error up to the top,
        // either.
        return IsEmpty(gate) ? Outcome::EMPTY : Outcome::DEAD;
    }
    if (!mErrorIds.AreUnambiguous(gate.GetEvents(), inError)) {
        mIsAmbiguous = true;
        return Outcome::DEAD;
    }
    return gate.GetKind() == GateKind::OR ? EnterOr(gate, inError, place, branch) : EnterAnd(gate, place, branch);
}

ErrorWalk::Outcome ErrorWalk::EnterOr(const Gate& gate, const ErrorIds::Indexes& inError, Index place, Index& branch)
{
    const auto& events = gate.GetEvents();
    Index first = SurvivingTree::NONE;
    bool isEmpty = true;
    for (auto event = inError.rbegin(); event != inError.rend() && !mIsAmbiguous; ++event) {
        Index child = SurvivingTree::NONE;
        const Outcome outcome = Enter(events[*event], place, child);
        isEmpty = isEmpty && outcome == Outcome::EMPTY;
        if (outcome == Outcome::ALIVE) {
            mTree.Chain(child, first);
            first = child;
        }
    }
    if (first != SurvivingTree::NONE) {
        branch = mTree.AddGate(SurvivingTree::BranchKind::OR, first);
        return Outcome::ALIVE;
    }
    isEmpty = isEmpty && std::all_of(events.begin(), events.end(),
                                     [](const auto& event) { return IsInError(event) || IsEmpty(*event); });
    return isEmpty ? Outcome::EMPTY : Outcome::DEAD;
}

// Walks backwards from the last event and stops at an empty branch, which drops the combinations of all branches before
// it.
ErrorWalk::Outcome ErrorWalk::EnterAnd(const Gate& gate, Index place, Index& branch)
{
    const auto& events = gate.GetEvents();
    Index first = SurvivingTree::NONE;
    for (auto event = events.rbegin(); event != events.rend() && !mIsAmbiguous; ++event) {
        Index child = SurvivingTree::NONE;
        const Outcome outcome = IsInError(*event) ? Enter(*event, place, child)
            : IsEmpty(**event)                    ? Outcome::EMPTY
                                                  : Outcome::DEAD;
        if (outcome == Outcome::DEAD) {
            return Outcome::DEAD;
        }
        if (outcome == Outcome::EMPTY) {
            break;
        }
        mTree.Chain(child, first);
        first = child;
    }
    if (first == SurvivingTree::NONE) {
        return Outcome::EMPTY;
    }
    branch = mTree.AddGate(SurvivingTree::BranchKind::AND, first);
    return Outcome::ALIVE;
}
