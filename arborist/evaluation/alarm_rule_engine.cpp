#include "arborist/evaluation/alarm_rule_engine.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>
#include <utility>

#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/log.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/stores/event_log/alarm_rule_db_helper.h"

namespace {

using Evidence::Reason;

constexpr TimeSet::TimeType TIME_TYPES[] = {TimeSet::DURATION, TimeSet::DAILY_PEAK, TimeSet::LATEST};
constexpr const char* TIME_TYPE_WORDS[] = {"duration", "daily_peak", "latest"};

// A bound as a number; nothing for a text that would log an error.
std::optional<std::int32_t> PlainBound(const std::string& text)
{
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return !text.empty() && error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

} // namespace

AlarmRuleEngine::AlarmRuleEngine(std::shared_ptr<RuleHelper> ruleHelper)
    : mEventStore(std::make_shared<AlarmRuleDbHelper>()), mRuleHelper(std::move(ruleHelper))
{
}

void AlarmRuleEngine::Foresee(const AlarmRule& rule)
{
    for (const AlarmItem& item : rule.alarmItemList) {
        if (item == nullptr) {
            continue;
        }
        const std::optional<std::int32_t> first = PlainBound(item->Eventid_Min);
        const std::optional<std::int32_t> last = PlainBound(item->Eventid_Max);
        const IdRange ids{first.value_or(0) == 0 ? last.value_or(0) : *first, last.value_or(0)};
        if (ids.IsEmpty()) {
            continue;
        }
        if (item->type == PARAM_EVENT_ID) {
            mEventStore->Foresee(ids.first, ids.last, mQuestions.TestsOf(*item));
            continue;
        }
        for (const IdRange& part : AlarmQuestions::PartsOf(ids)) {
            mEventStore->Foresee(part.first, part.last, mQuestions.WeightOf(part));
        }
    }
}

void AlarmRuleEngine::ListCounts(
    const std::shared_ptr<AlarmRule>& rule, const std::string& eventId, CountListener listener)
{
    mCountListener = std::move(listener);
    IsFaultHappened(rule, eventId);
    mCountListener = nullptr;
}

bool AlarmRuleEngine::IsListed(Measure measure, const TestList& tests, const Window& window)
{
    if (mCountListener != nullptr) {
        mCountListener({window, mFloors, measure, tests});
    }
    return mCountListener != nullptr;
}

bool AlarmRuleEngine::VisitHistory(const Count& count, const std::function<void(const EventRows& rows)>& visitor)
{
    Window window = count.window;
    window.start = std::numeric_limits<std::int64_t>::min();
    bool hasRows = false;
    VisitIds(count.tests, window, [&](const EventRows& rows) {
        hasRows = true;
        visitor(rows);
        return false;
    });
    return mIsLogWhole || !hasRows;
}

std::vector<std::int64_t> AlarmRuleEngine::ListUnseen(const Window& window) const
{
    return mEventStore->ListUnseen(window.ids.first, window.ids.last);
}

void AlarmRuleEngine::ReadAhead()
{
    mEventStore->ReadAhead();
}

bool AlarmRuleEngine::IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId)
{
    const auto alarmRule = std::dynamic_pointer_cast<AlarmRule>(rule);
    if (alarmRule == nullptr || alarmRule->alarmItemList.empty()) {
        return Decide(alarmRule == nullptr ? Reason::NONE : Reason::NO_ITEMS, false);
    }
    NoteReason(Reason::WINDOW_ABSENT);
    for (std::size_t number = 0; number < alarmRule->alarmItemList.size(); ++number) {
        const AlarmItem& item = alarmRule->alarmItemList[number];
        const IdRange ids = item == nullptr ? IdRange{0, 0} : GetAlarmIdList(*item);
        if (ids.IsEmpty()) {
            if (Evidence::Window* const record = AddRecord(number, ids, "")) {
                record->reason = Reason::NO_IDS;
            }
            return Decide(Reason::NO_IDS, false);
        }
        NoteBounds(*item);
        for (const TimeSet::TimeType timeType : TIME_TYPES) {
            if (IsRuleHitBySettingTime(item, number, eventId, timeType, ids)) {
                return Decide(Reason::WINDOW_REACHED, true);
            }
        }
    }
    return false;
}

// With only an upper bound the range is that one id; with only a lower bound it is empty.
IdRange AlarmRuleEngine::GetAlarmIdList(const AlarmRule::AlarmItem& item) const
{
    const std::int32_t last = item.GetEventIdMax();
    const std::int32_t lower = item.GetEventIdMin();
    return {lower == 0 ? last : lower, last};
}

bool AlarmRuleEngine::IsRuleHitBySettingTime(const AlarmItem& item, std::size_t itemNumber,
    const std::string& eventId, TimeSet::TimeType timeType, const IdRange& ids)
{
    const std::shared_ptr<TimeSet> timeSet = RuleHelper::GetTimeSetByRuleType(item, timeType);
    Window window(ids, timeType, AddRecord(itemNumber, ids, TIME_TYPE_WORDS[timeType]));
    if (timeSet == nullptr) {
        return CloseWindow(window, Reason::WINDOW_ABSENT, false);
    }
    if (timeSet->isBadPeriod || timeSet->isBadThreshold) {
        Note(Reason::BAD_NUMBER);
    }
    if (timeSet->period == 0 && timeSet->threshold == 0) {
        return CloseWindow(window, Reason::WINDOW_EMPTY, false);
    }
    Evidence::Start* const start = window.Open(*timeSet, mRuleHelper->IsDetectFromUpdate(item->BeginFlag));
    window.start = mRuleHelper->GetDetectStartTime(timeSet->period, item->BeginFlag, eventId, start);
    if (mCountListener != nullptr) {
        mFloors = mRuleHelper->GetFloors(timeSet->period, item->BeginFlag, eventId);
    }
    mIsLogReadable = true;
    const Measure measure = timeType == TimeSet::DAILY_PEAK ? Measure::DAILY_PEAK : Measure::PERIOD;
    const bool isHit = item->type == PARAM_EVENT_ID ? IsWithParamTestChecked(*item, *timeSet, window)
                                                    : IsAnyIdHit(measure, {}, window);
    NoteRowsBeforeStart(window);
    NoteLog(window);
    const Reason miss = mIsLogReadable ? window.miss : Reason::LOG_UNAVAILABLE;
    return CloseWindow(window, isHit ? Reason::WINDOW_REACHED : miss, isHit);
}

bool AlarmRuleEngine::IsWithParamTestChecked(const AlarmRule::AlarmItem& item, TimeSet& timeSet, Window& window)
{
    window.miss = Reason::NO_CONDITION;
    if (item.conditionList.empty() || item.params.empty()) {
        return false;
    }
    timeSet.timeType = window.timeType;
    for (const std::shared_ptr<OrLogic>& orLogic : item.conditionList) {
        if (orLogic != nullptr && orLogic->GetType() == SINGLE_LOGIC) {
            window.miss = Reason::WINDOW_SHORT;
            if (IsHitForSingleTypeTestChecked(*orLogic, item, window)) {
                return true;
            }
        } else if (orLogic != nullptr && orLogic->GetType() == MULTIPLE_LOGIC) {
            window.miss = Reason::WINDOW_SHORT;
            if (IsHitForMultipleTypeTestChecked(*orLogic, item, window)) {
                return true;
            }
        } else {
            window.miss = window.miss == Reason::NO_CONDITION ? Reason::UNKNOWN_CONDITION : window.miss;
            Note(Reason::UNKNOWN_CONDITION);
            FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Undefined Logic type",
                "AlarmRuleEngine::IsWithParamTestChecked");
        }
    }
    return false;
}

bool AlarmRuleEngine::IsHitForSingleTypeTestChecked(
    const OrLogic& orLogic, const AlarmRule::AlarmItem& item, Window& window)
{
    const TestList tests{
        std::make_shared<MemberTest>(*this, AlarmQuestions::GetOrLogicParamItem(orLogic, item.params))};
    NoteTest(tests.front()->GetPara());
    return IsAnyIdHit(
        window.timeType == TimeSet::DAILY_PEAK ? Measure::DAILY_PEAK : Measure::PERIOD, tests, window);
}

// Under "duration" one row must pass all tests. Under the others each test counts its own rows, over the whole period
// even for the daily peak, and the last id of the range decides: rule files rely on all of that.
bool AlarmRuleEngine::IsHitForMultipleTypeTestChecked(
    const OrLogic& orLogic, const AlarmRule::AlarmItem& item, Window& window)
{
    const Evidence::WindowCount earlier = window.Count();
    window.SetRestsOnLaterRows(false);
    std::uint64_t leastOfLastId = std::numeric_limits<std::uint64_t>::max();
    TestList tests;
    for (const std::shared_ptr<OrLogic::LogicItem>& logicItem : orLogic.GetLogicItemList()) {
        std::optional<TestPara> para = AlarmQuestions::GetAndLogicParamItem(logicItem, item.params);
        if (!para) {
            continue;
        }
        tests.push_back(std::make_shared<MemberTest>(*this, std::move(*para)));
        NoteTest(tests.back()->GetPara());
        if (window.timeType != TimeSet::DURATION) {
            std::uint64_t passed = 0;
            logicItem->SetResult(IsLastIdHit(tests.back(), window, passed));
            leastOfLastId = std::min(leastOfLastId, passed);
        }
    }
    if (window.timeType != TimeSet::DURATION && !tests.empty()) {
        // Of the tests of a condition the one that the last id passes least decides.
        window.NoteLastId(earlier, leastOfLastId);
    }
    if (tests.empty()) {
        Note(Reason::NO_CONDITION);
    }
    return window.timeType == TimeSet::DURATION ? IsAnyIdHit(Measure::ALL_TESTS, tests, window)
                                                : orLogic.CheckAndListResult();
}

bool AlarmRuleEngine::IsAnyIdHit(Measure measure, const TestList& tests, Window& window)
{
    if (IsListed(measure, tests, window)) {
        return false;
    }
    bool isHit = false;
    VisitIds(tests, window, [&](const EventRows& rows) {
        isHit = AlarmCount::IsHit(measure, rows, tests.size(), window);
        return isHit;
    });
    return isHit;
}

bool AlarmRuleEngine::IsLastIdHit(
    const std::shared_ptr<const MemberTest>& test, Window& window, std::uint64_t& passed)
{
    // Visit all ids, as each logs its lines; an id without rows is no hit.
    bool isHit = false;
    const TestList tests{test};
    if (IsListed(Measure::PERIOD, tests, window)) {
        return false;
    }
    VisitIds(tests, window, [&](const EventRows& rows) {
        const std::uint64_t passedByOthers = window.RowsPassed(0);
        const bool isLast = rows.GetEventId() == window.ids.last;
        const bool restedOnLater = window.RestsOnLaterRows();
        isHit = AlarmCount::IsHit(Measure::PERIOD, rows, tests.size(), window) && isLast;
        window.SetRestsOnLaterRows(restedOnLater || (isLast && window.RestsOnLaterRows()));
        passed = isLast ? window.RowsPassed(0) - passedByOthers : 0;
        return false;
    });
    window.NotePassedByLastId(passed);
    return isHit;
}

void AlarmRuleEngine::VisitIds(const TestList& tests, Window& window, const RowsVisitor& visitor)
{
    window.BeginCondition(tests.size());
    mIsLogWhole = true;
    const EventRows::Questions questions(tests.begin(), tests.end());
    bool isOver = false;
    const StatementTrouble kind(Evidence::Trouble::Kind::EVENT_LOG_UNREADABLE);
    const auto visit = [&](const EventRows& rows) { return isOver = visitor(rows); };
    const auto parts = tests.empty() ? AlarmQuestions::PartsOf(window.ids) : std::vector<IdRange>{window.ids};
    for (const IdRange& part : parts) {
        const auto reading = mEventStore->VisitEvents({part.first, part.last, window.start, window.fromUpdate,
            tests.empty() ? mQuestions.WeightOf(part) : questions, part.first - std::int64_t{window.ids.first}}, visit);
        mIsLogReadable = mIsLogReadable && reading != AlarmRuleDbHelper::Reading::UNREADABLE;
        mIsLogWhole = mIsLogWhole && reading == AlarmRuleDbHelper::Reading::WHOLE;
        if (isOver) {
            break;
        }
    }
    window.EndCondition(tests);
}

// Counts the rows before the start, for the record only.
void AlarmRuleEngine::NoteRowsBeforeStart(Window& window) const
{
    if (mIsLogReadable && window.IsCutOff()) {
        window.NoteRowsBeforeStart(mEventStore->CountRows(
            window.ids.first, window.ids.last, window.PeriodStart(), window.start));
    }
}

// Notes what the log lacks, for whoever listens.
void AlarmRuleEngine::NoteLog(Window& window) const
{
    if (!window.HasRecord() || !mIsLogReadable || !window.IsCounted()) {
        return;
    }
    if (window.fromUpdate && AlarmRuleDbHelper::CurrentVersion().empty()) {
        window.NoteUnknownVersion();
    }
    if (mEventStore->HasUnseen(window.ids.first, window.ids.last, window.start)) {
        window.NoteUnseen();
    }
    if (const std::optional<std::int64_t> first = mEventStore->GetFirstTime()) {
        window.NoteFirstTime(*first);
    }
}

Evidence::Window* AlarmRuleEngine::AddRecord(std::size_t itemNumber, const IdRange& ids, const char* kind) const
{
    auto* const alarm = GetPart<Evidence::Alarm>();
    if (alarm == nullptr) {
        return nullptr;
    }
    Evidence::Window& record = alarm->windows.emplace_back();
    record.item = itemNumber;
    record.firstId = ids.first;
    record.lastId = ids.last;
    record.kind = kind;
    return &record;
}

// Returns `isHit`. The rule's reason is that of the last window that the rule has.
bool AlarmRuleEngine::CloseWindow(const Window& window, Reason reason, bool isHit)
{
    if (reason != Reason::WINDOW_ABSENT) {
        NoteReason(reason);
    }
    window.Close(reason, isHit);
    return isHit;
}

void AlarmRuleEngine::NoteBounds(const AlarmRule::AlarmItem& item) const
{
    for (const std::string* const bound : {&item.Eventid_Min, &item.Eventid_Max}) {
        NoteObserved(std::string(TYPE_INT), *bound);
    }
}

void AlarmRuleEngine::NoteTest(const TestPara& test) const
{
    if (test.type.empty()) {
        Note(Reason::UNKNOWN_NAME);
    }
    NoteConfigured(test.logic, test.type, test.value);
}
