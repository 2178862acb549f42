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

#include "arborist/evaluation/alarm_count.h"
#include "arborist/evaluation/alarm_questions.h"
#include "arborist/evaluation/alarm_window.h"
#include "arborist/evaluation/member_test.h"
#include "arborist/evaluation/rule_checker.h"
#include "arborist/evaluation/start_times.h"
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

    /// One count of a window: of the rows of each of its ids, all of them or those that pass tests.
    struct Count {
        const AlarmWindow& window;
        /// What determines the start of the window.
        const StartTimes::Floors& floors;
        AlarmCount::Measure measure;
        const AlarmWindow::TestList& tests;
    };
    using CountListener = std::function<void(const Count& count)>;

    /// Tells the listener all counts that may decide a rule, in the order of counting, instead of making them.
    void ListCounts(const std::shared_ptr<AlarmRule>& rule, const std::string& eventId, CountListener listener);
    /// Calls the visitor with the rows of each id of a count, whatever their time. Only within a call of the listener.
    /// False if the log could not be read whole; without any rows that is true.
    bool VisitHistory(const Count& count, const std::function<void(const EventRows& rows)>& visitor);
    /// The moments of the rows of a window's ids that no rule can see, in any order.
    std::vector<std::int64_t> ListUnseen(const AlarmWindow& window) const;
    /// Reads from the log at once what the announced rules need at any moment.
    void ReadAhead();

    /// True if any window of any item reaches its threshold. An item without ids ends the rule: rule files rely on the
    /// items behind it being ignored.
    bool IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId) override;

private:
    using AlarmItem = std::shared_ptr<AlarmRule::AlarmItem>;
    using Window = AlarmWindow;
    using TestList = AlarmWindow::TestList;
    using RowsVisitor = std::function<bool(const EventRows& rows)>;
    using Measure = AlarmCount::Measure;

    IdRange GetAlarmIdList(const AlarmRule::AlarmItem& item) const;
    bool IsRuleHitBySettingTime(const AlarmItem& item, std::size_t itemNumber, const std::string& eventId,
        TimeSet::TimeType timeType, const IdRange& ids);
    bool IsWithParamTestChecked(const AlarmRule::AlarmItem& item, TimeSet& timeSet, Window& window);
    bool IsHitForSingleTypeTestChecked(const OrLogic& orLogic, const AlarmRule::AlarmItem& item, Window& window);
    bool IsHitForMultipleTypeTestChecked(
        const OrLogic& orLogic, const AlarmRule::AlarmItem& item, Window& window);

    bool IsAnyIdHit(Measure measure, const TestList& tests, Window& window);
    // `passed` receives the number of rows of the last id that pass the test.
    bool IsLastIdHit(const std::shared_ptr<const MemberTest>& test, Window& window, std::uint64_t& passed);
    void VisitIds(const TestList& tests, Window& window, const RowsVisitor& visitor);
    void NoteRowsBeforeStart(Window& window) const;
    void NoteLog(Window& window) const;
    bool IsListed(AlarmCount::Measure measure, const TestList& tests, const Window& window);
    Evidence::Window* AddRecord(std::size_t itemNumber, const IdRange& ids, const char* kind) const;
    bool CloseWindow(const Window& window, Evidence::Reason reason, bool isHit);
    void NoteBounds(const AlarmRule::AlarmItem& item) const;
    void NoteTest(const TestPara& test) const;

    AlarmQuestions mQuestions{*this};
    std::shared_ptr<AlarmRuleDbHelper> mEventStore;
    std::shared_ptr<RuleHelper> mRuleHelper;
    bool mIsLogReadable = true; // in the window that is being counted
    bool mIsLogWhole = true; // in the last visit of rows
    // Set while counts are listed; the floors are those of the window at hand.
    CountListener mCountListener;
    StartTimes::Floors mFloors;
};

#endif
