#include "arborist/deduction/fault_tree_visitor.h"

#include <cstddef>
#include <utility>

#include "arborist/deduction/root_cause.h"
#include "arborist/deduction/root_cause_search.h"
#include "arborist/frame/detection_observer.h"
#include "arborist/frame/fault_tree_result.h"
#include "arborist/frame/log.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/gate.h"

namespace {

using Evidence::EventState;
using Evidence::EventType;
using Evidence::GateType;

EventType TypeOf(const Event& event)
{
    switch (event.GetKind()) {
    case EventKind::INTERMEDIATE:
        return EventType::INTERMEDIATE;
    case EventKind::UNDEVELOPED:
        return EventType::UNDEVELOPED;
    case EventKind::PLAIN:
    case EventKind::BASIC:
        break;
    }
    return EventType::BASIC;
}

// Every gate that is no OR is evaluated as an AND.
GateType TypeOf(const Gate* gate)
{
    if (gate == nullptr) {
        return GateType::NONE;
    }
    return gate->GetKind() == GateKind::OR ? GateType::OR : GateType::AND;
}

EventState StateOf(EventStatus status)
{
    switch (status) {
    case EventStatus::TRUE:
        return EventState::PRESENT;
    case EventStatus::FALSE:
        return EventState::ABSENT;
    case EventStatus::INTERMEDIATE_TRUE:
        return EventState::INTERMEDIATE_PRESENT;
    case EventStatus::UNKNOWN:
        break;
    }
    return EventState::UNKNOWN;
}

void AppendFoldedEvents(const Event& event, std::size_t depth, std::vector<Evidence::FoldedEvent>& events)
{
    const IntermediateEvent* intermediate = event.AsIntermediate();
    const Gate* gate = intermediate == nullptr ? nullptr : intermediate->GetGate().get();
    events.push_back({depth, TypeOf(event), TypeOf(gate), event.GetId(), event.GetName(), event.GetUserDefined(),
                      StateOf(event.GetResult()), intermediate != nullptr && event.IsObservable()});
    if (gate == nullptr) {
        return;
    }
    for (const auto& child : gate->GetEvents()) {
        AppendFoldedEvents(*child, depth + 1, events);
    }
}

} // namespace

FaultTreeVisitor::FaultTreeVisitor(std::shared_ptr<FaultTreeParser> faultTreeParser)
    : mFaultTreeParser(std::move(faultTreeParser))
{
}

void FaultTreeVisitor::DeduceRootCause(
    const std::shared_ptr<FaultTree>& tree, const std::vector<Evidence::Check>& checks)
{
    if (tree == nullptr) {
        return;
    }
    FoldStatuses(tree, checks);
    AnalyzeRootCause();
}

void FaultTreeVisitor::FoldStatuses(
    const std::shared_ptr<FaultTree>& tree, const std::vector<Evidence::Check>& checks)
{
    if (tree == nullptr) {
        return;
    }
    mRootCauseList.clear();
    mRootCauseNodeList.clear();
    mIsFault = false;
    mFaultTree = tree;
    mFaultTree->Check();
    if (GetObserver() != nullptr && mFaultTree->GetIntermediateEvent() != nullptr) {
        std::vector<Evidence::FoldedEvent> events;
        AppendFoldedEvents(*mFaultTree->GetIntermediateEvent(), 0, events);
        for (std::size_t event = 0; event < events.size() && event < checks.size(); ++event) {
            events[event].check = checks[event];
        }
        GetObserver()->OnTreeFolded(std::move(events));
    }
}

void FaultTreeVisitor::AnalyzeRootCause()
{
    const std::size_t most = RootCauseSearch::LimitOfSettings();
    std::vector<RootCauseSearch::Found> found = RootCauseSearch::Find(*mFaultTree, GetObserver() != nullptr, most,
        [this, most](const std::string& number) { TellLimit(number, most); });
    mRootCauseList.reserve(found.size());
    for (const RootCauseSearch::Found& each : found) {
        mRootCauseList.push_back(each.rootCause);
    }
    mIsFault = !mRootCauseList.empty();
    FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: status= %d ", "FaultTreeVisitor::AnalyzeRootCause",
                                  static_cast<int>(mIsFault));
    FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: mRootCauseList size= %ld",
                                  "FaultTreeVisitor::AnalyzeRootCause", static_cast<long>(mRootCauseList.size()));
    mRootCauseNodeList.reserve(mRootCauseList.size());
    for (const auto& rootCause : mRootCauseList) {
        const Event& leaf = *rootCause->GetLeaf().front();
        mRootCauseNodeList.push_back(
            std::make_shared<FaultTreeNode>(FaultTreeNode{leaf.GetId(), leaf.GetName(), leaf.GetUserDefined()}));
    }
    if (GetObserver() != nullptr) {
        for (RootCauseSearch::Found& each : found) {
            GetObserver()->OnRootCause(each.TakeRecord());
        }
    }
}

void FaultTreeVisitor::TellLimit(const std::string& number, std::size_t most) const
{
    FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: the tree %s has %s root causes, only the first %zu are told.",
        "FaultTreeVisitor::AnalyzeRootCause", mFaultTree->GetId().c_str(), number.c_str(), most);
    if (GetObserver() != nullptr) {
        Evidence::Trouble trouble;
        trouble.kind = Evidence::Trouble::Kind::CAUSES_LEFT_OUT;
        trouble.subject = mFaultTree->GetId();
        trouble.words = number;
        GetObserver()->OnTrouble(std::move(trouble));
    }
}
