#ifndef ARBORIST_EVALUATION_ALARM_RULE_ENGINE_H
#define ARBORIST_EVALUATION_ALARM_RULE_ENGINE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "arborist/evaluation/alarm_window.h"
#include "arborist/evaluation/member_test.h"
#include "arborist/evaluation/rule_checker.h"
#include "arborist/model/rule.h"
#include "arborist/stores/event_log/event_rows.h"

class AlarmRuleDbHelper;
class RuleHelper;

/// Decides alarm rules: counts the logged events of a range of ids in a time window, all of them or those that pass
/// tests of their parameters.
///
/// Keeps the event log open, and the data read from it, as long as it exists. Writes into the rules that it decides
/// (TimeSet::timeType, results of logic items), so use a rule set from one thread at a time.
class AlarmRuleEngine : public RuleChecker {
public:
    /// Item type under which the tests of the condition list apply.
    static constexpr std::string_view PARAM_EVENT_ID = "param_eventid";

    /// Opens the event log; if it is missing, later calls try again.
    explicit AlarmRuleEngine(std::shared_ptr<RuleHelper> ruleHelper);

    /// Announces that this rule will run, so that the event log is read once for the tests of all announced rules.
    /// Doesn't change any answer.
    void Foresee(const AlarmRule& rule);

    /// True if any window of any item reaches its threshold. An item without ids ends the rule: rule files rely on the
    /// items behind it being ignored.
    bool IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId) override;

private:
    using AlarmItem = std::shared_ptr<AlarmRule::AlarmItem>;
    using Window = AlarmWindow;
    using IdRange = AlarmWindow::IdRange;
    using TestList = AlarmWindow::TestList;
    using RowsVisitor = std::function<bool(const EventRows& rows)>;

    // The number that is compared with the threshold for the rows of one id.
    enum class Measure { PERIOD, DAILY_PEAK, ALL_TESTS };

    IdRange GetAlarmIdList(const AlarmRule::AlarmItem& item) const;
    EventRows::Questions TestsOf(const AlarmRule::AlarmItem& item) const;
    static std::vector<IdRange> PartsOf(const IdRange& ids);
    EventRows::Questions QuestionsTo(const IdRange& part) const;
    bool IsRuleHitBySettingTime(const AlarmItem& item, std::size_t itemNumber, const std::string& eventId,
        TimeSet::TimeType timeType, const IdRange& ids);
    bool IsWithParamTestChecked(const AlarmRule::AlarmItem& item, TimeSet& timeSet, Window& window);
    bool IsHitForSingleTypeTestChecked(const OrLogic& orLogic, const AlarmRule::AlarmItem& item, Window& window);
    bool IsHitForMultipleTypeTestChecked(
        const OrLogic& orLogic, const AlarmRule::AlarmItem& item, Window& window);
    static TestPara GetOrLogicParamItem(const OrLogic& orLogic, const ParamMap& params);
    static std::optional<TestPara> GetAndLogicParamItem(
        const std::shared_ptr<OrLogic::LogicItem>& logicItem, const ParamMap& params);

    bool IsAnyIdHit(Measure measure, const TestList& tests, Window& window);
    // `passed` receives the number of rows of the last id that pass the test.
    bool IsLastIdHit(const std::shared_ptr<const MemberTest>& test, Window& window, std::uint64_t& passed);
    void VisitIds(const TestList& tests, Window& window, const RowsVisitor& visitor);
    bool IsHit(Measure measure, const EventRows& rows, const TestList& tests, Window& window);
    // With `isTested` only the rows count that pass the first test of the visit.
    bool IsFaultForPeriod(const EventRows& rows, bool isTested, Window& window);
    bool IsFaultForDaily(const EventRows& rows, bool isTested, Window& window);
    bool IsFaultForPeriodWithParam(const EventRows& rows, std::size_t testCount, Window& window);
    void NoteRowsBeforeStart(Window& window) const;
    void NoteLog(Window& window) const;
    Evidence::Window* AddRecord(std::size_t itemNumber, const IdRange& ids, const char* kind) const;
    bool CloseWindow(const Window& window, Evidence::Reason reason, bool isHit);
    // The answers of all rows, and of those up to now.
    struct Sums { std::uint64_t all; std::uint64_t untilNow; };
    static Sums SumsOf(const EventRows& rows, bool isWeighed, Window& window);
    void NoteBounds(const AlarmRule::AlarmItem& item) const;
    void NoteTest(const TestPara& test) const;

    std::shared_ptr<AlarmRuleDbHelper> mEventStore;
    std::shared_ptr<RuleHelper> mRuleHelper;
    bool mIsLogReadable = true; // in the window that is being counted
};

#endif
