#include "arborist/stores/event_log/event_rows.h"

#include <bit>
#include <utility>

#include "arborist/utilities/string_util.h"
#include "arborist/utilities/time_util.h"

namespace {

constexpr std::size_t DAY_IN_TIME = 8;
constexpr std::size_t DAY_LENGTH = 10;

} // namespace

EventRows::EventRows(
    std::int32_t eventId, std::shared_ptr<Visit> visit, Known known, std::size_t found, std::size_t count)
    : mEventId(eventId), mFound(found), mCount(count), mVisit(std::move(visit)), mKnown(std::move(known))
{
}

EventRows::EventRows(
    std::int32_t eventId, std::shared_ptr<Visit> visit, EventList events, std::size_t found)
    : mEventId(eventId), mFound(found), mCount(events.size()), mVisit(std::move(visit)), mEvents(std::move(events))
{
}

void EventRows::CountDays(DayCounts& days) const
{
    if (mKnown) {
        mVisit->snapshot->CountDays(mKnown->range, mKnown->filter, mVisit->days, days);
        return;
    }
    ForEach([&](const Row& row) { AddDay(row, days); });
}

void EventRows::AddDay(const Row& row, DayCounts& days) const
{
    const std::int32_t day = row.GetDayOfMonth();
    if (day > 0 && static_cast<std::size_t>(day) < days.size()) {
        ++days[static_cast<std::size_t>(day)];
    }
}

std::size_t EventRows::CountAfter(std::int64_t time) const
{
    if (mKnown) {
        return mVisit->snapshot->CountAfter(mKnown->range, mKnown->filter, time);
    }
    std::size_t count = 0;
    ForEach([&](const Row& row) { count += row.IsAfter(time) ? 1 : 0; });
    return count;
}

void EventRows::CountDaysAfter(std::int64_t time, DayCounts& days) const
{
    if (mKnown) {
        mVisit->snapshot->CountDaysAfter(mKnown->range, mKnown->filter, time, mVisit->days, days);
        return;
    }
    ForEach([&](const Row& row) {
        // Looking for the day of a time that is none logs a line, which counting has logged already.
        if (row.IsAfter(time) && mEvents[row.mNumber]->occurrenceTime.find('Y') == std::string::npos) {
            AddDay(row, days);
        }
    });
}

std::uint64_t EventRows::Sum(std::size_t question) const
{
    std::uint64_t sum = 0;
    const AnswerColumn* const column = mKnown ? mKnown->answers->columns[question].get() : nullptr;
    if (column == nullptr || column->IsNumber() || column->HasAskedAgain()) {
        ForEach([&](const Row& row) { sum += static_cast<std::uint64_t>(std::int64_t{row.Answer(question)}); });
        return sum;
    }
    const RowBits& rows = mKnown->answers->rows;
    for (std::uint32_t word = rows.GetFirstWord(); word < rows.GetEndWord(); ++word) {
        sum += static_cast<std::uint64_t>(std::popcount(rows.GetWord(word) & column->GetYes(word)));
    }
    return sum;
}

std::int32_t EventRows::Ask(std::size_t question, std::string_view extra) const
{
    return extra.empty() ? 0 : mVisit->questions[question]->Answer(extra);
}

// Texts of times compare like the times, but for an hour at the end of summer.
bool EventRows::IsWholeAfter(std::uint32_t row, std::int64_t time) const
{
    return mEvents[row]->occurrenceTime > TimeUtil::GetFormatTime(time);
}

std::int32_t EventRows::WholeDayOf(std::uint32_t row) const
{
    const std::string& time = mEvents[row]->occurrenceTime;
    return time.size() < DAY_IN_TIME ? 0 : StringUtil::StringToInt32Def(time.substr(DAY_IN_TIME, DAY_LENGTH), 0);
}
