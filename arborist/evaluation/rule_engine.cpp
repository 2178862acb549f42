#include "arborist/evaluation/rule_engine.h"

#include <utility>

#include "arborist/evaluation/code_rule_engine.h"
#include "arborist/evaluation/common_part_preparation.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/log.h"
#include "arborist/frame/stopping.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/common_part.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/stores/common_part/common_part_db_helper.h"

RuleEngine::RuleEngine(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<FaultTreeParser> faultTreeParser)
    : mFaultTreeParser(std::move(faultTreeParser)), mDetectInfo(std::move(detectInfo)),
      mDeviceDetails(mDetectInfo != nullptr ? mDetectInfo->mDeviceDetails : nullptr),
      mRuleHelper(mDetectInfo != nullptr ? std::make_shared<RuleHelper>(mDetectInfo, mFaultTreeParser) : nullptr),
      mRuleEngineHelper(mDetectInfo != nullptr ? std::make_shared<RuleEngineHelper>() : nullptr),
      mDecider(RuleDecider(mFaultTreeParser, mRuleHelper,
          RuleCheckers(mRuleHelper, mRuleEngineHelper, mFaultTreeParser, mDetectInfo)))
{
}

void RuleEngine::Init()
{
    mDecider.GetTreeChecks().StartDetection();
    mDecider.GetRules().GetCheckers().StartDetection();
    CommonPartDbHelper::GetInstance().Init();
    InitCommonPart();
}

void RuleEngine::StartRunRules(const std::shared_ptr<FaultTree>& faultTree)
{
    if (faultTree == nullptr || mRuleEngineHelper == nullptr) {
        return;
    }
    mFaultTree = faultTree;
    Reset();
    FetchEvent(mFaultTree->GetIntermediateEvent());
    MarkObservable();
    RunRules();
}

void RuleEngine::FetchEvent(const std::shared_ptr<Event>& event)
{
    if (mRuleEngineHelper != nullptr) {
        mRuleEngineHelper->FetchEvent(event);
    }
}

RuleEngineHelper::EventList RuleEngine::GetAllEventList() const
{
    return mRuleEngineHelper != nullptr ? mRuleEngineHelper->GetAllEventList() : RuleEngineHelper::EventList();
}

RuleEngineHelper::EventMap RuleEngine::GetEventMap() const
{
    return mRuleEngineHelper != nullptr ? mRuleEngineHelper->GetEventMap() : RuleEngineHelper::EventMap();
}

std::vector<std::string> RuleEngine::GetCodeRuleInfoByType(std::string_view type, const std::string& detectCode)
{
    return mDecider.GetRules().GetCheckers().GetCodeRuleEngine()->GetCodeRuleInfoByType(type, detectCode);
}

void RuleEngine::InitCommonPart()
{
    const auto block = mFaultTreeParser == nullptr ? nullptr : mFaultTreeParser->GetCommonPart();
    if (block == nullptr || (block->GetThresholdLumbraList().empty() && block->GetDefDbTableCommonList().empty())) {
        return; // keeps what an earlier detection prepared
    }
    const auto commonPart = std::make_shared<CommonPart>();
    commonPart->SetCombineCommon(block);
    RuleDecider& rules = mDecider.GetRules();
    rules.SetCommonPart(commonPart);
    PrepareCommonPart(
        commonPart, mFaultTreeParser->GetRuleFileReport().path, mDeviceDetails.get(), rules.GetObserver());
}

void RuleEngine::Reset()
{
    mRuleEngineHelper->Reset();
    mFaultTree->Reset();
}

void RuleEngine::MarkObservable()
{
    if (mFaultTreeParser != nullptr) {
        mRuleEngineHelper->MarkObservable(mFaultTreeParser->GetEventRuleMap());
    }
}

void RuleEngine::RunRules()
{
    if (mFaultTreeParser == nullptr) {
        return;
    }
    mDecider.GetTreeChecks().StartTree();
    // Find the entries of all events before the first rule runs: a code rule calls the host, which may call the engine.
    struct Place {
        std::shared_ptr<Event> event;
        std::shared_ptr<EventRule> eventRule;
        bool hasEntry;
    };
    std::vector<Place> places;
    const auto& eventRules = mFaultTreeParser->GetEventRuleMap();
    for (const auto& event : mRuleEngineHelper->GetAllEventList()) {
        const auto entry = eventRules.find(event->GetId());
        if (entry != eventRules.end()) {
            places.push_back({event, entry->second, true});
        } else if (mDecider.GetRules().GetObserver() != nullptr) {
            places.push_back({event, nullptr, false});
        }
    }
    for (const auto& [event, eventRule, hasEntry] : places) {
        if (!hasEntry) {
            mDecider.GetTreeChecks().AddWithoutEntry(*event);
            continue;
        }
        if (StopPoint::HasStopped() || !RunRulesOfEvent(event, eventRule)) {
            mDecider.GetTreeChecks().AddStopped(*event);
        }
    }
}

// False if the detection was stopped on the way: the event is then not decided, whatever its rules have answered so far.
bool RuleEngine::RunRulesOfEvent(const std::shared_ptr<Event>& event, const std::shared_ptr<EventRule>& eventRule)
{
    mRuleHelper->SetCurrentEvent(event);
    try {
        if (mDecider.IsFaultHappenedForEvent(*event, eventRule)) {
            FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: check error true %s:%s", "RuleEngine::RunRules",
                                          event->GetId().c_str(), event->GetName().c_str());
            event->SetResult(EventStatus::TRUE);
        }
        return true;
    } catch (const DetectionStopped&) {
        return false;
    }
}
