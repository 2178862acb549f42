#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_EXPLANATION_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_EXPLANATION_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "arborist/frame/evidence.h"

namespace diagnosis {

/// Why a detection came to its results: the evidence that the engine handed over while it ran, and the trees that it
/// stands in. Outlives the engine.

using Reason = Evidence::Reason;

/// One event where it stands in a tree.
struct ExplainedEvent : Evidence::FoldedEvent {
    static constexpr std::size_t NONE = SIZE_MAX;

    /// Place of the event above in ExplainedTree::events; NONE at the top.
    std::size_t parent = NONE;
    /// First place behind all events below this one.
    std::size_t end = 0;
    /// Place in ExplainedTree::evidence; NONE for an event without rules.
    std::size_t evidence = NONE;
};

/// One entry of the list of root causes that the detection reports.
struct ExplainedCause {
    /// The id that the result names.
    std::string id;
    /// Places of the cut set's members in ExplainedTree::events; NONE for a member that no path leads to.
    std::vector<std::size_t> members;
};

struct ExplainedTree {
    std::string id;
    /// The tree's own; results have that of the tree file.
    std::string version;
    bool isFault = false;
    /// In pre-order: the first event below a gate stands right behind it.
    std::vector<ExplainedEvent> events;
    /// How each event with rules was decided. Events with one id share it as long as nothing differs.
    std::vector<Evidence::Event> evidence;
    /// In the order of deduction, repeated as in the result.
    std::vector<ExplainedCause> causes;

    /// Places of the events right below one, in order.
    std::vector<std::size_t> ChildrenOf(std::size_t event) const;
    /// Places from the top event down to this one.
    std::vector<std::size_t> PathTo(std::size_t event) const;
    /// Ids from the top down to this event.
    std::vector<std::string> PathIds(std::size_t event) const;
    const Evidence::Event* EvidenceOf(const ExplainedEvent& event) const;
};

struct Explanation {
    /// In the order of the results.
    std::vector<ExplainedTree> trees;
};

/// Why an event has its status although no rule speaks for it: INTERACTION_EVENT and the like, NO_EVENT_RULE for a
/// basic event that the event rules don't name; otherwise NONE.
Reason ReasonOfEvent(const ExplainedTree& tree, const ExplainedEvent& event);

/// A rule with where it stands in its event: its alternative, and its place within a "multipleRule".
struct PlacedRule {
    const Evidence::Rule& rule;
    std::size_t alternative;
    std::size_t place;
    bool inGroup;
};

/// The rules of all alternatives, in the order in which they were asked. `event` must outlive them.
std::vector<PlacedRule> RulesOf(const Evidence::Event& event);

} // namespace diagnosis

#endif
