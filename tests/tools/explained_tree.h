#ifndef ARBORIST_TESTS_TOOLS_EXPLAINED_TREE_H
#define ARBORIST_TESTS_TOOLS_EXPLAINED_TREE_H

#include <string>
#include <vector>

#include "tools/arborist/explanation/explanation.h"

/// Explained trees as they are told: `Told({Gate::OR, "T", {Event("A", TRUE), ...}})`.
struct ToldEvent {
    std::string id;
    EventStatus status = EventStatus::FALSE;
    command::ExplainedEvent::Folded::GateKind gate = command::ExplainedEvent::Folded::GateKind::NONE;
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
    using GateKind = command::ExplainedEvent::Folded::GateKind;
    return {id, isInError ? EventStatus::TRUE : EventStatus::FALSE, isOr ? GateKind::OR : GateKind::AND,
        std::move(below), observable, false};
}

inline void Append(const ToldEvent& told, std::size_t parent, std::size_t depth, command::ExplainedTree& tree)
{
    using Kind = command::ExplainedEvent::Folded::Kind;
    const std::size_t place = tree.events.size();
    command::ExplainedEvent& event = tree.events.emplace_back();
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

inline command::ExplainedTree Told(const ToldEvent& top)
{
    command::ExplainedTree tree;
    tree.id = top.id;
    Append(top, command::ExplainedEvent::NONE, 0, tree);
    return tree;
}

/// Adds an entry to the list of root causes: the first places of these ids.
inline void AddCause(command::ExplainedTree& tree, const std::vector<std::string>& ids)
{
    command::ExplainedCause& cause = tree.causes.emplace_back();
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
