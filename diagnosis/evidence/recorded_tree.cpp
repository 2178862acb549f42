#include "diagnosis/evidence/recorded_tree.h"

#include <algorithm>
#include <utility>

namespace diagnosis {

std::vector<std::size_t> RecordedTree::ChildrenOf(std::size_t event) const
{
    std::vector<std::size_t> children;
    for (std::size_t child = event + 1; child < events[event].end; child = events[child].end) {
        children.push_back(child);
    }
    return children;
}

std::vector<std::size_t> RecordedTree::PathTo(std::size_t event) const
{
    std::vector<std::size_t> path;
    for (; event != RecordedEvent::NONE; event = events[event].parent) {
        path.push_back(event);
    }
    std::reverse(path.begin(), path.end());
    return path;
}

std::vector<std::string> RecordedTree::PathIds(std::size_t event) const
{
    std::vector<std::string> ids;
    for (const std::size_t place : PathTo(event)) {
        ids.push_back(events[place].id);
    }
    return ids;
}

const Evidence::Event* RecordedTree::EvidenceOf(const RecordedEvent& event) const
{
    return event.evidence == RecordedEvent::NONE ? nullptr : &evidence[event.evidence];
}

Reason ReasonOfEvent(const RecordedTree& tree, const RecordedEvent& event)
{
    if (const Evidence::Event* evidence = tree.EvidenceOf(event)) {
        return evidence->reason;
    }
    return event.type == Evidence::EventType::BASIC ? Reason::NO_EVENT_RULE : Reason::NONE;
}

std::vector<PlacedRule> RulesOf(const Evidence::Event& event)
{
    std::vector<PlacedRule> placed;
    for (std::size_t number = 0; number < event.alternatives.size(); ++number) {
        const Evidence::Alternative& alternative = event.alternatives[number];
        for (std::size_t place = 0; place < alternative.rules.size(); ++place) {
            placed.push_back({alternative.rules[place], number, place, alternative.inGroup});
        }
    }
    return placed;
}

void TreeReport::SetResult(std::shared_ptr<const FaultTreeResult> found)
{
    result = std::move(found);
    const std::size_t told = std::min(tree.causes.size(), result->mRootCauseResults.size());
    for (std::size_t cause = 0; cause < told; ++cause) {
        tree.causes[cause].result = result->mRootCauseResults[cause];
    }
}

} // namespace diagnosis
