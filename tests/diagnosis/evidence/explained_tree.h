#ifndef ARBORIST_TESTS_DIAGNOSIS_EVIDENCE_EXPLAINED_TREE_H
#define ARBORIST_TESTS_DIAGNOSIS_EVIDENCE_EXPLAINED_TREE_H

#include <string>
#include <vector>

#include "diagnosis/evidence/explanation.h"

/// Explained trees as they are told: `Told({Gate::OR, "T", {Event("A", TRUE), ...}})`.
struct ToldEvent {
    std::string id;
    EventStatus status = EventStatus::FALSE;
    diagnosis::ExplainedEvent::Folded::GateKind gate = diagnosis::ExplainedEvent::Folded::GateKind::NONE;
    std::vector<ToldEvent> below = {};
    bool observable = false;
    bool isLeaf = true;
};

inline ToldEvent Event(const std::string& id, bool isInError)
{
    return {id, isInError ? EventStatus::TRUE : EventStatus::FALSE};
}

inline ToldEvent GateEvent(const std::string& id, bool isOr, std::vector<ToldEvent> below, bool isInError = false,
    bool observable = false)
{
    using GateKind = diagnosis::ExplainedEvent::Folded::GateKind;
    return {id, isInError ? EventStatus::TRUE : EventStatus::FALSE, isOr ? GateKind::OR : GateKind::AND,
        std::move(below), observable, false};
}

inline void Append(const ToldEvent& told, std::size_t parent, std::size_t depth, diagnosis::ExplainedTree& tree)
{
    using Kind = diagnosis::ExplainedEvent::Folded::Kind;
    const std::size_t place = tree.events.size();
    diagnosis::ExplainedEvent& event = tree.events.emplace_back();
    event.id = told.id;
    event.status = told.status;
    event.gate = told.gate;
    event.kind = told.isLeaf ? Kind::BASIC : Kind::INTERMEDIATE;
    event.observable = told.observable;
    event.parent = parent;
    event.depth = depth;
    for (const ToldEvent& below : told.below) {
        Append(below, place, depth + 1, tree);
    }
    tree.events[place].end = tree.events.size();
}

inline diagnosis::ExplainedTree Told(const ToldEvent& top)
{
    diagnosis::ExplainedTree tree;
    tree.id = top.id;
    Append(top, diagnosis::ExplainedEvent::NONE, 0, tree);
    return tree;
}

/// Adds an entry to the list of root causes: the first places of these ids.
inline void AddCause(diagnosis::ExplainedTree& tree, const std::vector<std::string>& ids)
{
    diagnosis::ExplainedCause& cause = tree.causes.emplace_back();
    cause.id = ids.front();
    for (const std::string& id : ids) {
        for (std::size_t place = 0; place < tree.events.size(); ++place) {
            if (tree.events[place].id == id) {
                cause.members.push_back(place);
                break;
            }
        }
    }
}

#endif
