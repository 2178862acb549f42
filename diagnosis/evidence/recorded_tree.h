#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_RECORDED_TREE_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_RECORDED_TREE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "arborist/frame/evidence.h"
#include "arborist/frame/fault_tree_result.h"

namespace diagnosis {

using Reason = Evidence::Reason;

/// One place of an event in a tree.
struct RecordedEvent : Evidence::FoldedEvent {
    static constexpr std::size_t NONE = SIZE_MAX;

    /// Index of the event above in RecordedTree::events; NONE for the top event.
    std::size_t parent = NONE;
    /// One past the index of the last event below this one.
    std::size_t end = 0;
    /// Index into RecordedTree::evidence; NONE for an event without rules, and if no evidence is kept.
    std::size_t evidence = NONE;
};

/// One entry of the detection's list of root causes.
struct RecordedCause {
    /// The id of the root cause in the result.
    std::string id;
    /// Indexes of the cut set's members in RecordedTree::events; NONE for a member whose path no event has. Empty if the
    /// events are not kept.
    std::vector<std::size_t> members = {};
    /// The path of each member, ids from the top down joined by "/". Empty unless requested.
    std::vector<std::string> cutSet = {};
    /// The same entry of the result, with its texts; null if the tree was stopped, whose result has none.
    std::shared_ptr<const FaultTreeResult::RootCauseResult> result = nullptr;
};

/// The events, the evidence and the root causes of one tree, as the engine passed them to its observer.
struct RecordedTree {
    /// In pre-order: the first event below another directly follows it.
    std::vector<RecordedEvent> events;
    /// How each event with rules was decided. Events with the same id and equal evidence share one entry.
    std::vector<Evidence::Event> evidence;
    /// In the order of deduction, with the repetitions of the result.
    std::vector<RecordedCause> causes;

    /// Indexes of the events directly below one, in order.
    std::vector<std::size_t> ChildrenOf(std::size_t event) const;
    /// Indexes from the top event down to this one.
    std::vector<std::size_t> PathTo(std::size_t event) const;
    /// Ids from the top down to this event.
    std::vector<std::string> PathIds(std::size_t event) const;
    const Evidence::Event* EvidenceOf(const RecordedEvent& event) const;
};

/// All that a detection found about one tree. Outlives the engine.
struct TreeReport {
    std::shared_ptr<const FaultTreeResult> result;
    /// What the result rests on.
    Evidence::TreeVerdict verdict;
    /// Empty unless requested.
    RecordedTree tree;

    /// Sets the result of the tree, and in its root causes their entries of the result.
    void SetResult(std::shared_ptr<const FaultTreeResult> found);
    const std::string& Id() const { return result->mTreeId; }
    bool IsFault() const { return result->mIsFault; }
    bool IsUndecided() const { return verdict.word == Evidence::TreeVerdict::Word::UNDECIDED; }
};

/// In the order of the results.
using TreeReports = std::vector<TreeReport>;

/// The reason for the status of an event that no rule decided: INTERACTION_EVENT and the like, or NO_EVENT_RULE for a
/// basic event without an entry in the event rules; otherwise NONE.
Reason ReasonOfEvent(const RecordedTree& tree, const RecordedEvent& event);

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
