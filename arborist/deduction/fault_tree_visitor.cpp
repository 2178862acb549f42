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

using EventFolded = DetectionObserver::EventFolded;

EventFolded::Kind KindOf(const Event& event)
{
    switch (event.GetKind()) {
    case EventKind::INTERMEDIATE:
        return EventFolded::Kind::INTERMEDIATE;
    case EventKind::UNDEVELOPED:
        return EventFolded::Kind::UNDEVELOPED;
    case EventKind::PLAIN:
    case EventKind::BASIC:
        break;
    }
    return EventFolded::Kind::BASIC;
}

// Any gate that is no OR is worked out as an AND.
EventFolded::GateKind KindOf(const Gate* gate)
{
    if (gate == nullptr) {
        return EventFolded::GateKind::NONE;
    }
    return gate->GetKind() == GateKind::OR ? EventFolded::GateKind::OR : EventFolded::GateKind::AND;
}

void TellFoldedEvents(DetectionObserver& observer, const Event& event, std::size_t depth)
{
    const IntermediateEvent* intermediate = event.AsIntermediate();
    const Gate* gate = intermediate == nullptr ? nullptr : intermediate->GetGate().get();
    observer.OnEventFolded({depth, KindOf(event), KindOf(gate), event.GetId(), event.GetName(), event.GetUserDefined(),
                            event.GetResult(), intermediate != nullptr && event.IsObservable()});
    if (gate == nullptr) {
        return;
    }
    for (const auto& child : gate->GetEvents()) {
        TellFoldedEvents(observer, *child, depth + 1);
    }
}

} // namespace

FaultTreeVisitor::FaultTreeVisitor(std::shared_ptr<FaultTreeParser> faultTreeParser)
    : mFaultTreeParser(std::move(faultTreeParser))
{
}

void FaultTreeVisitor::DeduceRootCause(const std::shared_ptr<FaultTree>& tree)
{
    if (tree == nullptr) {
        return;
    }
    mRootCauseList.clear();
    mRootCauseNodeList.clear();
    mFaultTree = tree;
    mFaultTree->Check();
    if (mObserver != nullptr && mFaultTree->GetIntermediateEvent() != nullptr) {
        TellFoldedEvents(*mObserver, *mFaultTree->GetIntermediateEvent(), 0);
    }
    AnalyzeRootCause();
}

void FaultTreeVisitor::AnalyzeRootCause()
{
    RootCauseSearch::Found found = RootCauseSearch::Find(*mFaultTree, mObserver != nullptr);
    mRootCauseList = std::move(found.rootCauses);
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
    if (mObserver != nullptr) {
        TellRootCauses(found.cutSets);
    }
}

void FaultTreeVisitor::TellRootCauses(const MinimalCutSet& cutSets) const
{
    for (std::size_t cause = 0; cause < mRootCauseList.size(); ++cause) {
        mObserver->OnRootCause({mRootCauseNodeList[cause]->mId, cutSets[cause], mRootCauseList[cause]->GetPaths()});
    }
}
