#include "arborist/evaluation/code_rule_engine.h"

#include <utility>

#include "arborist/evaluation/rule_engine_helper.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/event.h"
#include "arborist/model/event_rule.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/rule.h"

using Reason = DetectionObserver::Reason;

CodeRuleEngine::CodeRuleEngine(std::shared_ptr<RuleEngineHelper> ruleEngineHelper,
                               std::shared_ptr<FaultTreeParser> faultTreeParser, std::shared_ptr<DetectInfo> detectInfo)
    : mRuleEngineHelper(std::move(ruleEngineHelper)), mFaultTreeParser(std::move(faultTreeParser)),
      mDetectInfo(std::move(detectInfo))
{
}

bool CodeRuleEngine::IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string&)
{
    const auto codeRule = std::dynamic_pointer_cast<CodeRule>(rule);
    if (codeRule == nullptr) {
        return Decide(Reason::NONE, false);
    }
    const auto runner = mDetectInfo != nullptr ? mDetectInfo->mCodeRuleRunner : nullptr;
    if (runner == nullptr) {
        return Decide(Reason::NO_RUNNER, false);
    }
    const std::string& detectCode = codeRule->codeItem.id;
    const auto faults = GetCodeRuleInfoByType(RuleHelper::FAULT, detectCode);
    const auto suggestions = GetCodeRuleInfoByType(RuleHelper::SUGGESTION, detectCode);
    const auto repairs = GetCodeRuleInfoByType(RuleHelper::REPAIR, detectCode);
    const bool answer = runner->RunCodeRule(faults, suggestions, repairs, codeRule->userDefinedInfo);
    if (GetObserver() != nullptr) {
        GetObserver()->OnCodeRun({detectCode, faults, suggestions, repairs, codeRule->userDefinedInfo, answer});
    }
    return Decide(Reason::RUNNER_ANSWERED, answer);
}

std::vector<std::string> CodeRuleEngine::GetCodeRuleInfoByType(std::string_view type, const std::string& detectCode)
{
    if (mFaultTreeParser == nullptr || detectCode.empty()) {
        return {};
    }
    const auto eventId = GetEventIdByName(mFaultTreeParser->GetCodeRuleNameById(detectCode));
    if (!eventId.has_value() || eventId->empty()) {
        return {};
    }
    if (type == RuleHelper::FAULT) {
        return mFaultTreeParser->GetFaultDescListById(*eventId);
    }
    if (type == RuleHelper::SUGGESTION) {
        return mFaultTreeParser->GetSuggestionListById(*eventId);
    }
    if (type == RuleHelper::REPAIR) {
        return mFaultTreeParser->GetRepairListById(*eventId);
    }
    return {};
}

void CodeRuleEngine::FetchAllEvents()
{
    if (mRuleEngineHelper == nullptr || mFaultTreeParser == nullptr) {
        return;
    }
    for (const auto& tree : mFaultTreeParser->GetFaultTrees()) {
        if (tree != nullptr) {
            mRuleEngineHelper->FetchEvent(tree->GetIntermediateEvent());
        }
    }
}

std::optional<std::string> CodeRuleEngine::GetEventIdByName(const std::string& ruleName)
{
    if (mRuleEngineHelper == nullptr || mFaultTreeParser == nullptr || ruleName.empty()) {
        return std::nullopt;
    }
    if (mRuleEngineHelper->GetAllEventList().empty()) {
        FetchAllEvents();
    }
    if (!IsIndexCurrent()) {
        IndexRuleNames();
    }
    const auto event = mEventByRuleName.find(ruleName);
    return event != mEventByRuleName.end() ? std::optional(event->second->GetId()) : std::nullopt;
}

bool CodeRuleEngine::IsIndexCurrent() const
{
    // Every parse makes new records, so the first tells two rule sets apart; it is kept, lest its address come back.
    const auto& eventRules = mFaultTreeParser->GetEventRuleMap();
    return mIsIndexed && mIndexedRevision == mRuleEngineHelper->GetRevision()
        && mIndexedEventRules == eventRules.size()
        && (eventRules.empty() || mFirstEventRule == eventRules.begin()->second);
}

void CodeRuleEngine::IndexRuleNames()
{
    const auto& eventRules = mFaultTreeParser->GetEventRuleMap();
    mEventByRuleName.clear();
    for (const auto& event : mRuleEngineHelper->GetAllEventList()) {
        const auto entry = eventRules.find(event->GetId());
        if (entry == eventRules.end() || entry->second == nullptr) {
            continue;
        }
        for (const auto& single : entry->second->GetRuleList()) {
            if (single != nullptr) {
                IndexNamesOf(*single, event);
            }
        }
    }
    mIndexedRevision = mRuleEngineHelper->GetRevision();
    mIndexedEventRules = eventRules.size();
    mFirstEventRule = eventRules.empty() ? nullptr : eventRules.begin()->second;
    mIsIndexed = true;
}

void CodeRuleEngine::IndexNamesOf(const OrRuleSingle& single, const std::shared_ptr<Event>& event)
{
    if (single.type == RuleHelper::SINGLE_RULE) {
        mEventByRuleName.emplace(single.ruleName, event);
        return;
    }
    for (const auto& name : single.ruleNameList) {
        mEventByRuleName.emplace(name, event);
    }
}
