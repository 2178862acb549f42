#include "arborist/evaluation/rule_helper.h"

#include <utility>

#include "arborist/evaluation/alternative_finder.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/log.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/event.h"
#include "arborist/stores/repairs/repair_dates.h"
#include "arborist/stores/repairs/reset_time_parser.h"

namespace {

using Reason = DetectionObserver::Reason;

// A plain search on purpose: a product "AB" also matches a text that lists "ABC". Rule files count on it.
bool Holds(const std::string& ruleText, const std::string& deviceValue)
{
    return ruleText.find(deviceValue) != std::string::npos;
}

std::string JoinNames(const std::vector<std::string>& names)
{
    std::string joined;
    for (const auto& name : names) {
        joined += &name == &names.front() ? RuleHelper::EMPTY_STRING : RuleHelper::TYPE_COMMA;
        joined += name;
    }
    return joined;
}

} // namespace

RuleHelper::RuleHelper(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<FaultTreeParser> faultTreeParser)
    : mDetectInfo(std::move(detectInfo)),
      mResetTimeParser(std::make_shared<ResetTimeParser>(mDetectInfo == nullptr ? "" : mDetectInfo->mLogLocation)),
      mRepairDates(std::make_shared<RepairDates>()),
      mFaultTreeParser(std::move(faultTreeParser))
{
    mResetTimeParser->ParseLogService();
}

bool RuleHelper::IsSpecifiedRuleItemSupported(const std::shared_ptr<Rule>& rule) const
{
    mFilterReason = Reason::NONE;
    return rule != nullptr && IsValidProduct(rule) && IsValidDetectScene(rule) && IsValidPlatform(rule)
        && IsValidDeviceType(rule);
}

bool RuleHelper::IsSpecifiedCodeRuleSupported(
    const std::string& detectCode, const std::shared_ptr<FaultTreeParser>& faultTreeParser) const
{
    constexpr char FUNCTION[] = "RuleHelper::IsSpecifiedCodeRuleSupported";
    if (detectCode.empty() || faultTreeParser == nullptr) {
        return false;
    }
    const auto& codeRules = faultTreeParser->GetCodeRuleList();
    if (codeRules.empty()) {
        FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: isRunRule codeRuleList is empty", FUNCTION);
        return false;
    }
    FT::Log::GetInstance().Output(
        FT::LEVEL_INFO, "FUNc:%s: isRunRule detectCode:%s", FUNCTION, detectCode.c_str());
    return IsSpecifiedRuleItemSupported(mCodeRuleIndex.FindFirst(detectCode, codeRules));
}

std::shared_ptr<OrRuleSingle> RuleHelper::GetRuleByName(const std::string& name, const OrRuleList& rules)
{
    if (name.empty() || rules.empty()) {
        return nullptr;
    }
    return OrLogMissing(AlternativeFinder(rules).Find(name));
}

std::shared_ptr<OrRuleSingle> RuleHelper::OrLogMissing(std::shared_ptr<OrRuleSingle> rule)
{
    if (rule == nullptr) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: Get rule instance by rule name fail.", "RuleHelper::GetRuleByName");
    }
    return rule;
}

std::vector<std::string> RuleHelper::GetRuleNamesByRuleList(const OrRuleList& rules)
{
    std::vector<std::string> names;
    names.reserve(rules.size());
    for (const auto& rule : rules) {
        if (rule != nullptr) {
            names.push_back(rule->type == SINGLE_RULE ? rule->ruleName : JoinNames(rule->ruleNameList));
        }
    }
    return names;
}

std::shared_ptr<TimeSet> RuleHelper::GetTimeSetByRuleType(
    const std::shared_ptr<AlarmRule::AlarmItem>& item, TimeSet::TimeType timeType)
{
    if (item == nullptr) {
        return nullptr;
    }
    switch (timeType) {
    case TimeSet::DURATION:
        return item->duration;
    case TimeSet::DAILY_PEAK:
        return item->daily_peak;
    case TimeSet::LATEST:
        return item->latest;
    }
    return nullptr;
}

bool RuleHelper::IsValidProduct(const std::shared_ptr<Rule>& rule) const
{
    if (mDetectInfo == nullptr) {
        return Reject(Reason::FILTERED_PRODUCT, *rule, EMPTY_STRING, rule->production);
    }
    const auto& details = mDetectInfo->mDeviceDetails;
    const std::string product = details != nullptr ? details->GetProduct() : EMPTY_STRING;
    // A device that names no product is found in every list, a black one too: the empty text is part of any text.
    if (!rule->blackProducts.empty() && Holds(rule->blackProducts, product)) {
        return Reject(Reason::FILTERED_BLACK_PRODUCT, *rule, product, rule->blackProducts);
    }
    return PassesText(Reason::FILTERED_PRODUCT, *rule, rule->production, &DeviceDetails::GetProduct);
}

bool RuleHelper::IsValidDetectScene(const std::shared_ptr<Rule>& rule) const
{
    if (rule == nullptr) {
        return false;
    }
    const std::string scene = mDetectInfo != nullptr ? std::to_string(mDetectInfo->mDetectScene) : EMPTY_STRING;
    // Unlike the other filters, one that is not set lets nothing through: a rule without scenes is switched off.
    if (scene.empty() || !Holds(rule->detectScene, scene)) {
        return Reject(Reason::FILTERED_SCENE, *rule, scene, rule->detectScene);
    }
    return true;
}

bool RuleHelper::IsValidPlatform(const std::shared_ptr<Rule>& rule) const
{
    return rule != nullptr
        && PassesText(Reason::FILTERED_PLATFORM, *rule, rule->platform, &DeviceDetails::GetPlatform);
}

bool RuleHelper::IsValidDeviceType(const std::shared_ptr<Rule>& rule) const
{
    return rule != nullptr
        && PassesText(Reason::FILTERED_DEVICE_TYPE, *rule, rule->deviceType, &DeviceDetails::GetDeviceType);
}

bool RuleHelper::PassesText(
    Reason reason, const Rule& rule, const std::string& ruleText, std::string (DeviceDetails::*value)() const) const
{
    if (mDetectInfo == nullptr) {
        return Reject(reason, rule, EMPTY_STRING, ruleText);
    }
    if (ruleText.empty()) {
        return true;
    }
    const auto& details = mDetectInfo->mDeviceDetails;
    if (details == nullptr) {
        return Reject(reason, rule, EMPTY_STRING, ruleText); // nothing is known of the device
    }
    const std::string deviceValue = ((*details).*value)();
    return Holds(ruleText, deviceValue) || Reject(reason, rule, deviceValue, ruleText);
}

bool RuleHelper::Reject(
    Reason reason, const Rule& rule, const std::string& deviceValue, const std::string& ruleText) const
{
    mFilterReason = reason;
    if (mObserver != nullptr) {
        mObserver->OnFilter({rule.name, reason, deviceValue, ruleText});
    }
    return false;
}
