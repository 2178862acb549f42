#include "arborist/evaluation/rule_checkers.h"

#include <utility>

#include "arborist/evaluation/alarm_rule_engine.h"
#include "arborist/evaluation/code_rule_engine.h"
#include "arborist/evaluation/command_rule_engine.h"
#include "arborist/evaluation/node_rule_engine.h"
#include "arborist/frame/log.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/rule.h"

using Evidence::Family;

Family FamilyOf(const Rule* rule)
{
    if (dynamic_cast<const AlarmRule*>(rule) != nullptr) {
        return Family::ALARM;
    }
    if (dynamic_cast<const CommandRule*>(rule) != nullptr) {
        return Family::COMMAND;
    }
    if (dynamic_cast<const NodeRule*>(rule) != nullptr) {
        return Family::NODE;
    }
    return dynamic_cast<const CodeRule*>(rule) != nullptr ? Family::CODE : Family::NONE;
}

RuleCheckers::RuleCheckers(std::shared_ptr<RuleHelper> ruleHelper, std::shared_ptr<RuleEngineHelper> ruleEngineHelper,
                           std::shared_ptr<FaultTreeParser> faultTreeParser, std::shared_ptr<DetectInfo> detectInfo)
    : mRuleHelper(std::move(ruleHelper)), mRuleEngineHelper(std::move(ruleEngineHelper)),
      mFaultTreeParser(std::move(faultTreeParser)), mDetectInfo(std::move(detectInfo))
{
}

void RuleCheckers::StartDetection()
{
    if (mNodeRuleEngine != nullptr) {
        mNodeRuleEngine->StartDetection();
    }
}

void RuleCheckers::EndDetection()
{
    if (mCommandRuleEngine != nullptr) {
        mCommandRuleEngine->EndDetection();
    }
}

std::shared_ptr<RuleChecker> RuleCheckers::Get(const Rule* rule, const std::shared_ptr<CommonPart>& commonPart)
{
    switch (FamilyOf(rule)) {
    case Family::ALARM:
        if (mAlarmRuleEngine == nullptr) {
            MakeOnce(mAlarmRuleEngine, mRuleHelper);
            ForeseeAlarmRules();
        }
        return mAlarmRuleEngine;
    case Family::COMMAND:
        // Keeps the common part of the first call, on purpose: later detections of this engine decide command rules by
        // the thresholds of the first.
        MakeOnce(mCommandRuleEngine, commonPart, mRuleHelper);
        if (commonPart != nullptr) {
            mCommandRuleEngine->SetPrepared(commonPart);
        }
        return mCommandRuleEngine;
    case Family::NODE:
        return MakeOnce(mNodeRuleEngine);
    case Family::CODE:
        return GetCodeRuleEngine();
    default:
        FT::Log::GetInstance().Output(
            FT::LEVEL_WARN, "FUNc:%s: undefine rule", "RuleEngine::GetRuleCheckerInstance");
        return nullptr;
    }
}

const std::shared_ptr<CodeRuleEngine>& RuleCheckers::GetCodeRuleEngine()
{
    return MakeOnce(mCodeRuleEngine, mRuleEngineHelper, mFaultTreeParser, mDetectInfo);
}

template <typename Checker, typename... Arguments>
const std::shared_ptr<Checker>& RuleCheckers::MakeOnce(
    std::shared_ptr<Checker>& checker, const Arguments&... arguments)
{
    if (checker == nullptr) {
        checker = std::make_shared<Checker>(arguments...);
    }
    return checker;
}

void RuleCheckers::ForeseeAlarmRules()
{
    if (mFaultTreeParser == nullptr) {
        return;
    }
    for (const auto& rule : mFaultTreeParser->GetNamedRules()) {
        if (const auto* const alarmRule = dynamic_cast<const AlarmRule*>(rule.get())) {
            mAlarmRuleEngine->Foresee(*alarmRule);
        }
    }
}
