#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_EXPLANATION_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_EXPLANATION_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "arborist/frame/evidence.h"

namespace diagnosis {

/// The explanation of a detection's results: the evidence that the engine passed to its observer, and the trees to
/// which it belongs. Outlives the engine.

using Reason = Evidence::Reason;

/// One place of an event in a tree.
struct ExplainedEvent : Evidence::FoldedEvent {
    static constexpr std::size_t NONE = SIZE_MAX;

    /// Index of the event above in ExplainedTree::events; NONE for the top event.
    std::size_t parent = NONE;
    /// One past the index of the last event below this one.
    std::size_t end = 0;
    /// Index into ExplainedTree::evidence; NONE for an event without rules.
    std::size_t evidence = NONE;
};

/// One entry of the detection's list of root causes.
struct ExplainedCause {
    /// The id of the root cause in the result.
    std::string id;
    /// Indexes of the cut set's members in ExplainedTree::events; NONE for a member whose path no event has.
    std::vector<std::size_t> members;
};

struct ExplainedTree {
    std::string id;
    /// The version of the tree itself; results have that of the tree file.
    std::string version;
    bool isFault = false;
    Evidence::TreeVerdict verdict;
    /// In pre-order: the first event below another directly follows it.
    std::vector<ExplainedEvent> events;
    /// How each event with rules was decided. Events with the same id and equal evidence share one entry.
    std::vector<Evidence::Event> evidence;
    /// In the order of deduction, with the repetitions of the result.
    std::vector<ExplainedCause> causes;

    /// Indexes of the events directly below one, in order.
    std::vector<std::size_t> ChildrenOf(std::size_t event) const;
    /// Indexes from the top event down to this one.
    std::vector<std::size_t> PathTo(std::size_t event) const;
    /// Ids from the top down to this event.
    std::vector<std::string> PathIds(std::size_t event) const;
    const Evidence::Event* EvidenceOf(const ExplainedEvent& event) const;
};

struct Explanation {
    /// In the order of the results.
    std::vector<ExplainedTree> trees;
};

/// The reason for the status of an event that no rule decided: INTERACTION_EVENT and the like, or NO_EVENT_RULE for a
/// basic event without an entry in the event rules; otherwise NONE.
Reason ReasonOfEvent(const ExplainedTree& tree, const ExplainedEvent& event);

/// A rule with its place in the event: its alternative, and its position within a "multipleRule".
struct PlacedRule {
    const Evidence::Rule& rule;
    std::size_t alternative;
    std::size_t place;
    bool inGroup;
};

/// The rules of all alternatives in the order in which they ran. `event` must outlive them.
std::vector<PlacedRule> RulesOf(const Evidence::Event& event);

} // namespace diagnosis

#endif
