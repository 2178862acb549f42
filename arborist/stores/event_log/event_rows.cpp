#include "arborist/stores/event_log/event_rows.h"

#include <utility>

#include "arborist/utilities/string_util.h"

namespace {

constexpr std::size_t DAY_IN_TIME = 8;
constexpr std::size_t DAY_LENGTH = 10;

} // namespace

EventRows::EventRows(Source& source, const Indexed& rows, std::size_t found, std::size_t count)
    : mSource(source), mIndexed(rows), mEventId(rows.index.GetIds()[rows.entryNumber]), mFound(found),
      mCount(count)
{
}

EventRows::EventRows(Source& source, std::int32_t eventId, EventList events, std::size_t found)
    : mSource(source), mEventId(eventId), mFound(found), mCount(events.size()), mEvents(std::move(events))
{
}

void EventRows::LoadMembers(const std::vector<std::string>& keys)
{
    if (!mIndexed || mCount == 0) {
        return;
    }
    SelectRows();
    if (!mIndexed->members.Load(mIndexed->entryNumber, mIndexed->positions, mIndexed->filter.start, keys)) {
        ReadWhole();
    }
}

void EventRows::CountDays(EventLogIndex::DayCounts& days)
{
    if (mIndexed) {
        mIndexed->index.CountDays(mIndexed->range, mIndexed->filter, days);
        return;
    }
    for (std::size_t row = 0; row < mCount; ++row) {
        const std::int32_t day = GetWholeDay(row);
        if (day > 0 && static_cast<std::size_t>(day) < days.size()) {
            ++days[static_cast<std::size_t>(day)];
        }
    }
}

void EventRows::ReadWhole()
{
    mIndexed.reset();
    mEvents = mSource.QueryRows(mEventId);
    mCount = mEvents.size();
}

EventMember EventRows::GetWholeMember(std::size_t row) const
{
    const std::string& extra = mEvents[row]->extra;
    return {extra.empty() ? EventMember::Kind::NO_EXTRA : EventMember::Kind::RAW, 0, extra};
}

std::int32_t EventRows::GetWholeDay(std::size_t row) const
{
    const std::string& time = mEvents[row]->occurrenceTime;
    return time.size() < DAY_IN_TIME ? 0 : StringUtil::StringToInt32Def(time.substr(DAY_IN_TIME, DAY_LENGTH), 0);
}
