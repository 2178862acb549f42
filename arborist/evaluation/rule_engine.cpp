#include "arborist/evaluation/rule_engine.h"

#include <utility>

#include "arborist/evaluation/alternative_finder.h"
#include "arborist/evaluation/code_rule_engine.h"
#include "arborist/evaluation/common_part_preparation.h"
#include "arborist/evaluation/rule_checker.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/log.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/common_part.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/rule.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "arborist/utilities/string_util.h"

namespace {

using Family = DetectionObserver::Family;
using Reason = DetectionObserver::Reason;
using Verdict = DetectionObserver::Verdict;

} // namespace

RuleEngine::RuleEngine(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<FaultTreeParser> faultTreeParser)
    : mFaultTreeParser(std::move(faultTreeParser)), mDetectInfo(std::move(detectInfo)),
      mDeviceDetails(mDetectInfo != nullptr ? mDetectInfo->mDeviceDetails : nullptr),
      mRuleHelper(mDetectInfo != nullptr ? std::make_shared<RuleHelper>(mDetectInfo, mFaultTreeParser) : nullptr),
      mRuleEngineHelper(mDetectInfo != nullptr ? std::make_shared<RuleEngineHelper>() : nullptr),
      mCheckers(mRuleHelper, mRuleEngineHelper, mFaultTreeParser, mDetectInfo)
{
}

void RuleEngine::Init()
{
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
    return mCheckers.GetCodeRuleEngine()->GetCodeRuleInfoByType(type, detectCode);
}

void RuleEngine::SetObserver(DetectionObserver* observer)
{
    mObserver = observer;
    if (mRuleHelper != nullptr) {
        mRuleHelper->SetObserver(observer);
    }
    mCheckers.SetObserver(observer);
}

void RuleEngine::InitCommonPart()
{
    const auto block = mFaultTreeParser == nullptr ? nullptr : mFaultTreeParser->GetCommonPart();
    if (block == nullptr || (block->GetThresholdLumbraList().empty() && block->GetDefDbTableCommonList().empty())) {
        return; // what an earlier detection prepared stays
    }
    mCommonPart = std::make_shared<CommonPart>();
    mCommonPart->SetCombineCommon(block);
    PrepareCommonPart(mCommonPart, mDeviceDetails.get(), mObserver);
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
    // Who has rules is settled before the first of them runs: a code rule calls the host, and the host may call back.
    std::vector<std::pair<std::shared_ptr<Event>, std::shared_ptr<EventRule>>> events;
    const auto& eventRules = mFaultTreeParser->GetEventRuleMap();
    for (const auto& event : mRuleEngineHelper->GetAllEventList()) {
        const auto entry = eventRules.find(event->GetId());
        if (entry != eventRules.end()) {
            events.emplace_back(event, entry->second);
        }
    }
    for (const auto& [event, eventRule] : events) {
        mRuleHelper->SetCurrentEvent(event);
        if (IsFaultHappenedForEvent(event, eventRule)) {
            FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: check error true %s:%s", "RuleEngine::RunRules",
                                          event->GetId().c_str(), event->GetName().c_str());
            event->SetResult(EventStatus::TRUE);
        }
    }
}

bool RuleEngine::IsFaultHappenedForEvent(
    const std::shared_ptr<Event>& event, const std::shared_ptr<EventRule>& eventRule)
{
    const std::string& id = event->GetId();
    if (mObserver != nullptr) {
        mObserver->OnEventAsked({id, event->GetName()});
    }
    Reason reason = Reason::NONE;
    bool fired = false;
    if (event->GetDetectMode() == DETECT_INTERACTION_RULE) {
        FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: event is code rule, skipped",
                                      "RuleEngine::IsFaultHappenedForEvent");
        reason = Reason::INTERACTION_EVENT;
    } else {
        const auto names = eventRule != nullptr ? RuleHelper::GetRuleNamesByRuleList(eventRule->GetRuleList())
                                                : std::vector<std::string>();
        reason = names.empty() ? Reason::NO_RULE_NAMES : Reason::NONE;
        fired = !names.empty() && AskRulesOfEvent(id, *eventRule, names);
    }
    if (mObserver != nullptr) {
        mObserver->OnEventDecided({id, fired, reason});
    }
    return fired;
}

bool RuleEngine::AskRulesOfEvent(const std::string& eventId, EventRule& eventRule,
                                 const std::vector<std::string>& names)
{
    const AlternativeFinder finder(eventRule.GetRuleList());
    for (std::size_t alternative = 0; alternative < names.size(); ++alternative) {
        const std::string& name = names[alternative];
        if (name.find(RuleHelper::TYPE_COMMA) != std::string::npos) {
            DoMultiRulesCheck(name, eventId, finder.Find(name), alternative);
            continue;
        }
        const bool result = GetSingleRuleCheckResult(name, eventId, {alternative, 0, false});
        // An alternative without a name stands for nothing; its rule is asked all the same.
        const auto entry = name.empty() ? nullptr : RuleHelper::OrLogMissing(finder.Find(name));
        if (entry != nullptr) {
            entry->result = result;
        }
    }
    return eventRule.CheckResult();
}

void RuleEngine::DoMultiRulesCheck(const std::string& names, const std::string& eventId,
                                   const std::shared_ptr<OrRuleSingle>& entry, std::size_t alternative)
{
    const auto parts = StringUtil::Split(names, RuleHelper::TYPE_COMMA);
    std::size_t place = 0;
    bool result = true;
    for (; place < parts.size() && result; ++place) {
        result = GetSingleRuleCheckResult(parts[place], eventId, {alternative, place, true});
        RuleHelper::OrLogMissing(entry);
    }
    if (entry != nullptr && !parts.empty()) {
        entry->result = result;
    }
    for (; mObserver != nullptr && place < parts.size(); ++place) {
        const Family family = FamilyOf(mFaultTreeParser->GetRuleByRuleName(parts[place]).get());
        mObserver->OnRuleDecided({eventId, parts[place], family, Verdict::SKIPPED, Reason::GROUP_ENDED});
    }
}

bool RuleEngine::GetSingleRuleCheckResult(const std::string& ruleName, const std::string& eventId, const Place& place)
{
    const std::shared_ptr<Rule> rule = mFaultTreeParser->GetRuleByRuleName(ruleName);
    if (mObserver != nullptr) {
        mObserver->OnRuleAsked(
            {eventId, ruleName, FamilyOf(rule.get()), place.alternative, place.place, place.inGroup});
    }
    std::shared_ptr<RuleChecker> checker;
    Reason reason = Reason::NO_SUCH_RULE;
    if (!mRuleHelper->IsSpecifiedRuleItemSupported(rule)) {
        reason = rule == nullptr ? Reason::NO_SUCH_RULE : mRuleHelper->GetFilterReason();
    } else {
        checker = mCheckers.Get(rule.get(), mCommonPart);
        reason = Reason::NO_CHECKER;
    }
    const bool fired = checker != nullptr && checker->IsFaultHappened(rule, eventId);
    if (mObserver != nullptr) {
        const Verdict verdict = checker == nullptr ? Verdict::SKIPPED : fired ? Verdict::FIRED : Verdict::NOT_FIRED;
        mObserver->OnRuleDecided({eventId, ruleName, FamilyOf(rule.get()), verdict,
                                  checker != nullptr ? checker->GetReason() : reason});
    }
    return fired;
}
