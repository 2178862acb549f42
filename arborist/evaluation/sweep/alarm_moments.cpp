#include "arborist/evaluation/sweep/alarm_moments.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>

#include "arborist/evaluation/detection_customize.h"
#include "arborist/stores/event_log/alarm_rule_db_helper.h"
#include "arborist/stores/event_log/local_days.h"

namespace {

using Count = AlarmRuleEngine::Count;

// The rows of all ids of a count, whatever their time.
class History {
public:
    explicit History(const Count& count)
        : mQuestions(count.tests.size()), mIsByDay(count.measure == AlarmCount::Measure::DAILY_PEAK)
    {
    }

    void Take(const EventRows& rows)
    {
        mHasTimes = mHasTimes && rows.HasTimes();
        if (!mHasTimes) {
            return;
        }
        const bool isWeighed = mQuestions == 0 && DetectionCustomize::IsDmdEvent(rows.GetEventId());
        mHasWeights = mHasWeights || isWeighed;
        RowHistory& taken = mIds.emplace_back();
        if (isWeighed || mQuestions != 0) {
            TakeAnswers(rows, isWeighed ? 1 : mQuestions, taken);
        } else {
            rows.AppendTimes(taken.times);
        }
        LocalDays days;
        for (std::size_t row = 0; mIsByDay && row < taken.times.size(); ++row) {
            taken.days.push_back(static_cast<std::uint8_t>(days.DayOfMonth(taken.times[row])));
        }
        taken.SortByTime();
    }

    const std::vector<RowHistory>& GetIds() const { return mIds; }
    bool HasTimes() const { return mHasTimes; }
    /// Whether a row weighs less than nothing, or logs a line when it is asked.
    bool HasOddRows() const { return mHasOddRows; }
    bool HasWeights() const { return mHasWeights; }

private:
    void TakeAnswers(const EventRows& rows, std::size_t questions, RowHistory& taken)
    {
        rows.ForEach([&](const EventRows::Row& row) {
            taken.times.push_back(static_cast<std::uint32_t>(row.GetTime()));
            taken.answers.push_back(AnswerOf(row, questions));
            mHasOddRows = mHasOddRows || taken.answers.back() < 0;
        });
    }

    // The answer to the only question, or whether all tests are passed.
    std::int32_t AnswerOf(const EventRows::Row& row, std::size_t questions)
    {
        std::int32_t answer = 1;
        for (std::size_t question = 0; question < questions && answer != 0; ++question) {
            if (row.IsAskedAgain(question)) {
                mHasOddRows = true;
                return 0;
            }
            answer = row.Answer(question);
        }
        return answer;
    }

    std::size_t mQuestions;
    bool mIsByDay;
    std::vector<RowHistory> mIds;
    bool mHasTimes = true;
    bool mHasOddRows = false;
    bool mHasWeights = false;
};

// Tells when there are rows at all: any number of them reaches a threshold of 0.
SlidingCount PresenceOf(const Count& count)
{
    return {AlarmCount::Measure::PERIOD, 0, count.floors};
}

} // namespace

const char* AlarmMoments::Add(
    const std::shared_ptr<AlarmRule>& rule, const std::string& eventId, Moments& moments)
{
    mProblem = nullptr;
    mChecker.ListCounts(rule, eventId, [&](const Count& count) { AddCount(count, moments); });
    return mProblem;
}

void AlarmMoments::AddCount(const Count& count, Moments& moments)
{
    History history(count);
    const bool isWhole = mChecker.VisitHistory(count, [&](const EventRows& rows) { history.Take(rows); });
    if (!isWhole || !history.HasTimes()) {
        mProblem = isWhole ? "odd_times" : "log_damaged";
        return;
    }
    const SlidingCount sliding{
        count.measure, count.window.threshold, count.floors, history.HasOddRows(), history.HasWeights()};
    for (const RowHistory& rows : history.GetIds()) {
        sliding.AddChanges(rows, mRange, moments);
    }
    if (count.window.fromUpdate && AlarmRuleDbHelper::CurrentVersion().empty()) {
        AddOtherVersions(count, moments);
    }
    for (const std::int64_t repair : count.floors.repairs) {
        mRange.Add(repair, moments);
    }
    AddUnseen(count, moments);
}

// Whether the window has rows that no rule can see.
void AlarmMoments::AddUnseen(const Count& count, Moments& moments)
{
    RowHistory unseen;
    for (const std::int64_t moment : mChecker.ListUnseen(count.window)) {
        if (moment >= 0 && moment <= mRange.last && moment <= std::numeric_limits<std::uint32_t>::max()) {
            unseen.times.push_back(static_cast<std::uint32_t>(moment));
        }
    }
    unseen.SortByTime();
    PresenceOf(count).AddChanges(unseen, mRange, moments);
}

// Where nobody knows the current version, rows that don't count matter, too: a rule can't be sure while there are any.
void AlarmMoments::AddOtherVersions(const Count& count, Moments& moments)
{
    const AlarmWindow::TestList noTests;
    const auto timesOf = [&](bool fromUpdate) {
        AlarmWindow window = count.window;
        window.fromUpdate = fromUpdate;
        std::vector<std::vector<std::uint32_t>> times;
        mChecker.VisitHistory({window, count.floors, count.measure, noTests}, [&](const EventRows& rows) {
            rows.AppendTimes(times.emplace_back());
            std::sort(times.back().begin(), times.back().end());
        });
        return times;
    };
    const auto all = timesOf(false);
    const auto counted = timesOf(true); // of the same ids
    for (std::size_t id = 0; id < all.size(); ++id) {
        RowHistory others;
        std::set_difference(all[id].begin(), all[id].end(), counted[id].begin(), counted[id].end(),
            std::back_inserter(others.times));
        PresenceOf(count).AddChanges(others, mRange, moments);
    }
}
