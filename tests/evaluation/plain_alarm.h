#ifndef ARBORIST_TESTS_EVALUATION_PLAIN_ALARM_H
#define ARBORIST_TESTS_EVALUATION_PLAIN_ALARM_H

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <utility>

#include <json/value.h>

#include "arborist/evaluation/detection_customize.h"
#include "arborist/evaluation/member_test.h"
#include "arborist/evaluation/rule_checker.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/log.h"
#include "arborist/stores/event_log/alarm_rule_db_helper.h"
#include "arborist/utilities/json_text.h"

/// Answers alarm rules as slowly and plainly as they can be: a query for each id, a parse for each row and test.
class PlainAlarm : public RuleChecker {
public:
    explicit PlainAlarm(std::shared_ptr<RuleHelper> helper) : mHelper(std::move(helper)) {}

    bool IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId) override
    {
        for (const auto& item : std::dynamic_pointer_cast<AlarmRule>(rule)->alarmItemList) {
            const std::int32_t last = item->GetEventIdMax();
            const std::int32_t lower = item->GetEventIdMin();
            const std::int32_t first = lower == 0 ? last : lower;
            if (first == 0 || first > last) {
                return false;
            }
            for (const auto type : {TimeSet::DURATION, TimeSet::DAILY_PEAK, TimeSet::LATEST}) {
                if (Window(*item, RuleHelper::GetTimeSetByRuleType(item, type), type, first, last, eventId)) {
                    return true;
                }
            }
        }
        return false;
    }

private:
    using Events = AlarmRuleDbHelper::EventList;
    struct Ask { std::int32_t threshold; std::int64_t start; bool fromUpdate; };

    bool Window(const AlarmRule::AlarmItem& item, const std::shared_ptr<TimeSet>& set, TimeSet::TimeType type,
        std::int32_t first, std::int32_t last, const std::string& eventId)
    {
        if (set == nullptr || (set->period == 0 && set->threshold == 0)) {
            return false;
        }
        const Ask ask{set->threshold, mHelper->GetDetectStartTime(set->period, item.BeginFlag, eventId),
            RuleHelper::IsDetectFromUpdate(item.BeginFlag)};
        if (item.type != "param_eventid") {
            return Any(ask, type, first, last, nullptr);
        }
        for (const auto& orLogic : item.conditionList) {
            if (orLogic->GetType() == "single_logic") {
                const TestPara test = ParaOf(*orLogic, item.params);
                if (Any(ask, type, first, last, &test)) {
                    return true;
                }
            } else if (Multiple(*orLogic, item, ask, type, first, last)) {
                return true;
            }
        }
        return false;
    }

    bool Any(const Ask& ask, TimeSet::TimeType type, std::int32_t first, std::int32_t last, const TestPara* test)
    {
        for (std::int32_t id = first; id <= last; ++id) {
            if (type == TimeSet::DAILY_PEAK ? Daily(ask, id, test) : Period(ask, id, test)) {
                return true;
            }
        }
        return false;
    }

    bool Multiple(const OrLogic& orLogic, const AlarmRule::AlarmItem& item, const Ask& ask, TimeSet::TimeType type,
        std::int32_t first, std::int32_t last)
    {
        for (std::int32_t id = first; type == TimeSet::DURATION && id <= last; ++id) {
            std::int32_t count = 0;
            const Events events = Rows(ask, id);
            for (const auto& event : events) {
                bool passes = true;
                for (const auto& logic : orLogic.GetLogicItemList()) {
                    passes = passes && Passes(*event, ParaOf(*logic, item.params));
                }
                count += passes ? 1 : 0;
            }
            if (!events.empty() && !orLogic.GetLogicItemList().empty() && count >= ask.threshold) {
                return true;
            }
        }
        bool all = type != TimeSet::DURATION;
        for (const auto& logic : orLogic.GetLogicItemList()) {
            const TestPara test = ParaOf(*logic, item.params);
            bool result = false;
            for (std::int32_t id = first; type != TimeSet::DURATION && id <= last; ++id) {
                result = Period(ask, id, &test);
            }
            all = all && result;
        }
        return all;
    }

    Events Rows(const Ask& ask, std::int32_t id) { return mStore.GetEventList(id, ask.start, ask.fromUpdate); }

    bool Period(const Ask& ask, std::int32_t id, const TestPara* test)
    {
        const Events events = Rows(ask, id);
        std::uint64_t count = 0;
        for (const auto& event : events) {
            if (test != nullptr) {
                count += Passes(*event, *test) ? 1 : 0;
            } else {
                count += DetectionCustomize::IsDmdEvent(id)
                    ? static_cast<std::uint64_t>(std::int64_t{DetectionCustomize::CheckDmdEventCount(*event)})
                    : 1;
            }
        }
        return !events.empty() && count >= static_cast<std::uint64_t>(std::int64_t{ask.threshold});
    }

    bool Daily(const Ask& ask, std::int32_t id, const TestPara* test)
    {
        const Events events = Rows(ask, id);
        std::array<std::int64_t, 32> days{};
        for (const auto& event : events) {
            const auto day = static_cast<std::size_t>(std::stoi(event->occurrenceTime.substr(8, 2)));
            if (test != nullptr) {
                days[day] += Passes(*event, *test) ? 1 : 0;
            } else {
                days[day] += DetectionCustomize::IsDmdEvent(id) ? DetectionCustomize::CheckDmdEventCount(*event) : 1;
            }
        }
        std::int32_t peak = 0;
        for (const std::int64_t count : days) {
            peak = std::max(peak, static_cast<std::int32_t>(count));
        }
        return !events.empty() && peak >= ask.threshold;
    }

    template <typename Logic>
    static TestPara ParaOf(const Logic& logic, const ParamMap& params)
    {
        const auto param = params.find(logic.GetParamId());
        return {param == params.end() ? "" : param->second->key, logic.GetValue(),
            param == params.end() ? "" : param->second->type, logic.GetLogic()};
    }

    bool Passes(const LogEvent& event, const TestPara& test)
    {
        if (event.extra.empty()) {
            return false;
        }
        Json::Value root;
        std::string error;
        if (!ParseJson(event.extra, root, error)) {
            FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: parse eventParamJson err. %s ",
                "AlarmRuleEngine::IsErrorForEventWithParam", error.c_str());
        }
        const std::string member = MemberText(root, test.key);
        return !member.empty() && IsFaultForParam(test.logic, test.type, test.value, member);
    }

    AlarmRuleDbHelper mStore;
    std::shared_ptr<RuleHelper> mHelper;
};

#endif
