#include "arborist/evaluation/code_rule_engine.h"

#include <utility>

#include "arborist/evaluation/rule_engine_helper.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/stopping.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/event.h"
#include "arborist/model/event_rule.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/rule.h"

using Evidence::Reason;

namespace {

Reason ReasonOf(CodeRuleRunner::Outcome outcome)
{
    switch (outcome) {
    case CodeRuleRunner::Outcome::NOBODY_THERE:
        return Reason::NO_RUNNER;
    case CodeRuleRunner::Outcome::BROKEN_OFF:
        return Reason::RUNNER_FAILED;
    case CodeRuleRunner::Outcome::ANSWERED:
        break;
    }
    return Reason::RUNNER_ANSWERED;
}

} // namespace

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
    // The host may call back from within its runner, and another rule be asked: what is kept here is this rule's.
    auto* const record = GetPart<Evidence::Code>();
    const auto runner = mDetectInfo != nullptr ? mDetectInfo->mCodeRuleRunner : nullptr;
    if (runner == nullptr) {
        return Decide(Reason::NO_RUNNER, false);
    }
    const std::string& detectCode = codeRule->codeItem.id;
    const auto faults = GetCodeRuleInfoByType(RuleHelper::FAULT, detectCode);
    const auto suggestions = GetCodeRuleInfoByType(RuleHelper::SUGGESTION, detectCode);
    const auto repairs = GetCodeRuleInfoByType(RuleHelper::REPAIR, detectCode);
    const bool answer = runner->RunCodeRule(faults, suggestions, repairs, codeRule->userDefinedInfo);
    StopPoint::Pass(); // a host that stops the detection may break off its runner, too
    if (record != nullptr) {
        *record = {detectCode, faults, suggestions, repairs, codeRule->userDefinedInfo, answer};
    }
    return Decide(ReasonOf(runner->GetOutcome()), answer);
}

std::vector<std::string> CodeRuleEngine::GetCodeRuleInfoByType(std::string_view type, const std::string& detectCode)
{
    if (mFaultTreeParser == nullptr || detectCode.empty()) {
        return {};
    }
    const CodeMeaning* const meaning = FindMeaning(detectCode);
    if (meaning == nullptr) {
        return {};
    }
    if (type == RuleHelper::FAULT) {
        return {meaning->faults.begin(), meaning->faults.end()};
    }
    if (type == RuleHelper::SUGGESTION) {
        return {meaning->suggestions.begin(), meaning->suggestions.end()};
    }
    if (type == RuleHelper::REPAIR) {
        return mFaultTreeParser->GetRepairListById(*meaning->eventId);
    }
    return {};
}

// Null for a code without a rule or event, which is not kept: a host may ask for any number of them.
const CodeRuleEngine::CodeMeaning* CodeRuleEngine::FindMeaning(const std::string& detectCode)
{
    if (mRuleEngineHelper != nullptr && IsIndexCurrent()) {
        const auto known = mMeanings.find(detectCode);
        if (known != mMeanings.end()) {
            return &known->second;
        }
    }
    const Event* const event = GetEventByName(mFaultTreeParser->GetCodeRuleNameById(detectCode));
    if (event == nullptr || event->GetId().empty()) {
        return nullptr;
    }
    const std::string& eventId = event->GetId();
    const CodeMeaning meaning{mFaultTreeParser->GetFaultDescListById(eventId),
        mFaultTreeParser->GetSuggestionListById(eventId), &eventId};
    return &mMeanings.emplace(detectCode, meaning).first->second;
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

const Event* CodeRuleEngine::GetEventByName(const std::string& ruleName)
{
    if (mRuleEngineHelper == nullptr || mFaultTreeParser == nullptr || ruleName.empty()) {
        return nullptr;
    }
    if (mRuleEngineHelper->GetAllEventList().empty()) {
        FetchAllEvents();
    }
    if (!IsIndexCurrent()) {
        IndexRuleNames();
    }
    const auto event = mEventByRuleName.find(ruleName);
    return event != mEventByRuleName.end() ? event->second.get() : nullptr;
}

bool CodeRuleEngine::IsIndexCurrent() const
{
    return mIsIndexed && mIndexedRevision == mRuleEngineHelper->GetRevision()
        && mIndexedRules == mFaultTreeParser->GetRuleRevision();
}

void CodeRuleEngine::IndexRuleNames()
{
    const auto& eventRules = mFaultTreeParser->GetEventRuleMap();
    mEventByRuleName.clear();
    mMeanings.clear();
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
    mIndexedRules = mFaultTreeParser->GetRuleRevision();
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
