#include "diagnosis/evidence/explanation.h"

#include <algorithm>

namespace diagnosis {

std::int64_t ExplainedWindow::Missing() const
{
    return hit || !start ? 0 : std::max<std::int64_t>(0, threshold - reached);
}

std::vector<std::size_t> ExplainedTree::ChildrenOf(std::size_t event) const
{
    std::vector<std::size_t> children;
    for (std::size_t child = event + 1; child < events[event].end; child = events[child].end) {
        children.push_back(child);
    }
    return children;
}

std::vector<std::size_t> ExplainedTree::PathTo(std::size_t event) const
{
    std::vector<std::size_t> path;
    for (; event != ExplainedEvent::NONE; event = events[event].parent) {
        path.push_back(event);
    }
    std::reverse(path.begin(), path.end());
    return path;
}

std::vector<std::string> ExplainedTree::PathIds(std::size_t event) const
{
    std::vector<std::string> ids;
    for (const std::size_t place : PathTo(event)) {
        ids.push_back(events[place].id);
    }
    return ids;
}

const ExplainedEvidence* ExplainedTree::EvidenceOf(const ExplainedEvent& event) const
{
    return event.evidence == ExplainedEvent::NONE ? nullptr : &evidence[event.evidence];
}

Reason ReasonOfEvent(const ExplainedTree& tree, const ExplainedEvent& event)
{
    if (const ExplainedEvidence* evidence = tree.EvidenceOf(event)) {
        return evidence->reason;
    }
    return event.kind == ExplainedEvent::Folded::Kind::BASIC ? Reason::NO_EVENT_RULE : Reason::NONE;
}

const char* VerdictWord(DetectionObserver::Verdict verdict)
{
    using Verdict = DetectionObserver::Verdict;
    return verdict == Verdict::FIRED ? "TRUE" : verdict == Verdict::NOT_FIRED ? "FALSE" : "SKIP";
}

const char* FloorWord(DetectionObserver::StartTimeSeen::Floor floor)
{
    using Floor = DetectionObserver::StartTimeSeen::Floor;
    switch (floor) {
    case Floor::PERIOD:
        return "period";
    case Floor::RESET:
        return "reset";
    case Floor::UPDATE:
        return "update";
    case Floor::REPAIR:
        return "repair";
    }
    return "";
}

} // namespace diagnosis
