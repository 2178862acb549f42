#include "arborist/evaluation/rule_helper.h"

#include <utility>

#include "arborist/evaluation/alternative_finder.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/log.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/stores/repairs/reset_time_parser.h"

RuleHelper::RuleHelper(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<FaultTreeParser> faultTreeParser)
    : mDetectInfo(std::move(detectInfo)),
      mResetTimeParser(std::make_shared<ResetTimeParser>(mDetectInfo == nullptr ? "" : mDetectInfo->mLogLocation)),
      mFilter(mDetectInfo), mStartTimes(mResetTimeParser, std::move(faultTreeParser))
{
    mResetTimeParser->ParseLogService();
}

bool RuleHelper::IsSpecifiedRuleItemSupported(const std::shared_ptr<Rule>& rule) const
{
    return rule != nullptr && !Reject(*rule);
}

bool RuleHelper::IsSpecifiedCodeRuleSupported(
    const std::string& detectCode, const std::shared_ptr<FaultTreeParser>& faultTreeParser)
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
            names.push_back(NameOf(*rule));
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

std::int64_t RuleHelper::GetDetectStartTime(
    std::int32_t days, const std::string& word, const std::string& eventId, Evidence::Start* record) const
{
    return mStartTimes.GetDetectStartTime(days, word, eventId, mCurrentEvent.get(), record);
}
