#include "arborist/evaluation/rule_engine_helper.h"

#include "arborist/frame/log.h"
#include "arborist/model/event.h"
#include "arborist/model/gate.h"

void RuleEngineHelper::FetchEvent(const std::shared_ptr<Event>& event)
{
    constexpr char FUNCTION[] = "RuleEngineHelper::FetchEvent";
    if (event == nullptr) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: input null event.", FUNCTION);
        return;
    }
    ++mRevision;
    mAllEventList.push_back(event);
    const IntermediateEvent* intermediate = event->AsIntermediate();
    if (intermediate == nullptr) {
        return;
    }
    const Gate* gate = intermediate->GetGate().get();
    if (gate == nullptr) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_WARN, "FUNc:%s: IntermediateEvent %s missing gate", FUNCTION, event->GetId().c_str());
        return;
    }
    for (const auto& below : gate->GetEvents()) {
        FetchEvent(below);
    }
}

const RuleEngineHelper::EventMap& RuleEngineHelper::GetEventMap()
{
    for (; mMappedEvents < mAllEventList.size(); ++mMappedEvents) {
        const auto& event = mAllEventList[mMappedEvents];
        mEventMap.emplace(event->GetId(), event);
    }
    return mEventMap;
}

void RuleEngineHelper::MarkObservable(const EventRuleMap& eventRules) const
{
    for (const auto& event : mAllEventList) {
        event->SetObservable(event->AsIntermediate() == nullptr || eventRules.count(event->GetId()) != 0);
    }
}

void RuleEngineHelper::Reset()
{
    ++mRevision;
    mAllEventList.clear();
    mEventMap.clear();
    mMappedEvents = 0;
}
