#ifndef ARBORIST_EVALUATION_RULE_HELPER_H
#define ARBORIST_EVALUATION_RULE_HELPER_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "arborist/evaluation/code_rule_index.h"
#include "arborist/evaluation/rule_filter.h"
#include "arborist/evaluation/start_times.h"
#include "arborist/model/event_rule.h"
#include "arborist/model/rule.h"

class Event;
class FaultTreeParser;
class ResetTimeParser;
struct DetectInfo;

/// The decisions that all checkers share, each made by a class of its own: whether a rule applies to this device and
/// scene (RuleFilter), which alternative of an event a name means (AlternativeFinder), and the start time of a check
/// (StartTimes). Also keeps the current event.
///
/// Shares ownership of its arguments. Not thread-safe.
class RuleHelper {
public:
    /// Types for RuleEngine::GetCodeRuleInfoByType. Nothing uses USER_DEFINED.
    static constexpr std::string_view FAULT = "faultDescId";
    static constexpr std::string_view SUGGESTION = "suggestionId";
    static constexpr std::string_view REPAIR = "repairId";
    static constexpr std::string_view USER_DEFINED = "userDefine";
    /// The constants of StartTimes, under the names that rule code knows.
    static constexpr const char* REPAIR_ID = StartTimes::REPAIR_ID;
    static constexpr std::string_view DETECT_FROM_RESET_OR_UPDATE = StartTimes::FROM_RESET_OR_UPDATE;
    static constexpr std::string_view DETECT_FROM_UPDATE = StartTimes::FROM_UPDATE;
    static constexpr std::string_view DETECT_FROM_RESET = StartTimes::FROM_RESET;
    static constexpr std::string_view DETECT_ALL = StartTimes::ALL;
    static constexpr std::string_view SINGLE_RULE = "singleRule";
    /// Separates the rule names of one alternative.
    static constexpr char TYPE_COMMA[] = ",";
    static constexpr char EMPTY_STRING[] = "";

    /// `detectInfo` must not be null.
    RuleHelper(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<FaultTreeParser> faultTreeParser);

    /// Kept for the tests.
    const std::shared_ptr<DetectInfo>& GetDetectInfo() const { return mDetectInfo; }
    /// The event whose rules are being run; null before the first. Kept for the tests.
    const std::shared_ptr<Event>& GetCurrentEvent() const { return mCurrentEvent; }
    void SetCurrentEvent(const std::shared_ptr<Event>& event) { mCurrentEvent = event; }

    /// The filter that rejects the rule on this device and in this scene; nothing if it applies. Its texts are valid as
    /// long as the rule.
    std::optional<RuleFilter::Rejection> Reject(const Rule& rule) const { return mFilter.Reject(rule); }
    /// True if no filter rejects the rule; false for null.
    bool IsSpecifiedRuleItemSupported(const std::shared_ptr<Rule>& rule) const;
    /// IsSpecifiedRuleItemSupported for the first code rule whose detect code contains `detectCode`; false if there is
    /// none. One pass over the detect codes of the rule set, which the helper keeps for the next call.
    bool IsSpecifiedCodeRuleSupported(const std::string& detectCode,
                                      const std::shared_ptr<FaultTreeParser>& faultTreeParser);

    /// The alternative that a name means: the first that is the single rule of this name, or that lists every part of
    /// the name between commas. Null for an empty name or list, and, with an error in the log, if no alternative
    /// matches. Kept for the tests, which state its rules by it; the driver keeps one AlternativeFinder for each event.
    static std::shared_ptr<OrRuleSingle> GetRuleByName(const std::string& name, const OrRuleList& rules);
    /// Returns `rule`; if it is null, logs the error of GetRuleByName.
    static std::shared_ptr<OrRuleSingle> OrLogMissing(std::shared_ptr<OrRuleSingle> rule);
    /// The name of each alternative, in order.
    static std::vector<std::string> GetRuleNamesByRuleList(const OrRuleList& rules);

    /// The item's window of this kind; null if the item is null or has none.
    static std::shared_ptr<TimeSet> GetTimeSetByRuleType(const std::shared_ptr<AlarmRule::AlarmItem>& item,
                                                         TimeSet::TimeType timeType);

    /// The start time of a check of the current event; see StartTimes::GetDetectStartTime.
    std::int64_t GetDetectStartTime(std::int32_t days, const std::string& word, const std::string& eventId,
                                    Evidence::Start* record = nullptr) const;
    /// All that determines such a start time; see StartTimes::GetFloors.
    StartTimes::Floors GetFloors(std::int32_t days, const std::string& word, const std::string& eventId) const
    {
        return mStartTimes.GetFloors(days, word, eventId, mCurrentEvent.get());
    }
    /// True if a check with this start word counts only events of the current version.
    static bool IsDetectFromUpdate(const std::string& word) { return StartTimes::IsDetectFromUpdate(word); }

private:
    std::shared_ptr<DetectInfo> mDetectInfo;
    std::shared_ptr<ResetTimeParser> mResetTimeParser;
    RuleFilter mFilter;
    StartTimes mStartTimes;
    std::shared_ptr<Event> mCurrentEvent;
    CodeRuleIndex mCodeRuleIndex;
};

#endif
