#ifndef ARBORIST_TESTS_DIAGNOSIS_EVIDENCE_RECORDED_TREE_H
#define ARBORIST_TESTS_DIAGNOSIS_EVIDENCE_RECORDED_TREE_H

#include <string>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"

/// Builds explained trees: `Told({Gate::OR, "T", {Event("A", TRUE), ...}})`.
struct ToldEvent {
    std::string id;
    Evidence::EventState status = Evidence::EventState::ABSENT;
    Evidence::GateType gate = Evidence::GateType::NONE;
    std::vector<ToldEvent> below = {};
    bool observable = false;
    bool isLeaf = true;
};

inline ToldEvent Event(const std::string& id, bool isInError)
{
    return {id, isInError ? Evidence::EventState::PRESENT : Evidence::EventState::ABSENT};
}

inline ToldEvent GateEvent(const std::string& id, bool isOr, std::vector<ToldEvent> below, bool isInError = false,
    bool observable = false)
{
    using Evidence::GateType;
    return {id, isInError ? Evidence::EventState::PRESENT : Evidence::EventState::ABSENT,
        isOr ? GateType::OR : GateType::AND, std::move(below), observable, false};
}

inline void Append(const ToldEvent& told, std::size_t parent, std::size_t depth, diagnosis::RecordedTree& tree)
{
    using Type = Evidence::EventType;
    const std::size_t place = tree.events.size();
    const Evidence::FoldedEvent event{depth, told.isLeaf ? Type::BASIC : Type::INTERMEDIATE, told.gate, told.id, "", "",
        told.status, told.observable};
    tree.events.push_back({event, parent});
    for (const ToldEvent& below : told.below) {
        Append(below, place, depth + 1, tree);
    }
    tree.events[place].end = tree.events.size();
}

inline diagnosis::RecordedTree Told(const ToldEvent& top)
{
    diagnosis::RecordedTree tree;
    Append(top, diagnosis::RecordedEvent::NONE, 0, tree);
    return tree;
}

/// Adds an entry to the list of root causes, with the first places of these ids.
inline void AddCause(diagnosis::RecordedTree& tree, const std::vector<std::string>& ids)
{
    diagnosis::RecordedCause& cause = tree.causes.emplace_back();
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
