#include "arborist/deduction/fault_tree_visitor.h"

#include <cstddef>
#include <cstdio>
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
    ListNodes();
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
    RootCauseSearch search(*mFaultTree);
    const std::size_t most = RootCauseSearch::LimitOfSettings();
    const double count = search.CountAll();
    if (count > static_cast<double>(most)) {
        TellLimit(count, most);
    }
    mRootCauseList = search.Find(most);
    mIsFault = !mRootCauseList.empty();
    FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: status= %d ", "FaultTreeVisitor::AnalyzeRootCause",
                                  static_cast<int>(mIsFault));
    FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: mRootCauseList size= %ld",
                                  "FaultTreeVisitor::AnalyzeRootCause", static_cast<long>(mRootCauseList.size()));
    if (GetObserver() != nullptr) {
        for (std::size_t cause = 0; cause < mRootCauseList.size(); ++cause) {
            GetObserver()->OnRootCause(search.RecordOf(cause));
        }
    }
}

void FaultTreeVisitor::ListNodes()
{
    mRootCauseNodeList.reserve(mRootCauseList.size());
    for (const auto& rootCause : mRootCauseList) {
        const Event& leaf = *rootCause->GetLeaf().front();
        mRootCauseNodeList.push_back(
            std::make_shared<FaultTreeNode>(FaultTreeNode{leaf.GetId(), leaf.GetName(), leaf.GetUserDefined()}));
    }
}

void FaultTreeVisitor::TellLimit(double count, std::size_t most) const
{
    char number[32];
    std::snprintf(number, sizeof(number), "%.15g", count);
    FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: the tree %s has %s root causes, only the first %zu are told.",
        "FaultTreeVisitor::AnalyzeRootCause", mFaultTree->GetId().c_str(), number, most);
    if (GetObserver() != nullptr) {
        Evidence::Trouble trouble;
        trouble.kind = Evidence::Trouble::Kind::CAUSES_LEFT_OUT;
        trouble.subject = mFaultTree->GetId();
        trouble.words = number;
        GetObserver()->OnTrouble(std::move(trouble));
    }
}
