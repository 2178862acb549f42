#include "arborist/stores/event_rows.h"

#include <utility>

#include "arborist/utilities/string_util.h"

namespace {

constexpr std::size_t DAY_IN_TIME = 8;
constexpr std::size_t DAY_LENGTH = 10;

} // namespace

EventRows::EventRows(Source& source, const EventLogIndex& index, EventMemberCache& cache, std::size_t entryNumber,
    const EventLogIndex::Filter& filter, std::size_t found)
    : mSource(source), mIndex(&index), mCache(&cache), mEntryNumber(entryNumber), mFilter(filter),
      mEventId(index.GetEntries()[entryNumber].eventId), mFound(found),
      mCount(filter.byVersion ? index.Count(index.GetEntries()[entryNumber], filter) : found)
{
}

EventRows::EventRows(Source& source, std::int32_t eventId, EventList events, std::size_t found)
    : mSource(source), mEventId(eventId), mFound(found), mCount(events.size()), mEvents(std::move(events))
{
}

void EventRows::LoadMembers(const std::vector<std::string>& keys)
{
    if (mIndex == nullptr || mCount == 0) {
        return;
    }
    SelectRows();
    if (!mCache->Load(mEntryNumber, mPositions, keys)) {
        ReadWhole();
    }
}

EventMember EventRows::GetMember(std::size_t row, std::size_t keyNumber) const
{
    if (mIndex != nullptr) {
        return mCache->Get(mPositions[row], keyNumber);
    }
    const std::string& extra = mEvents[row]->extra;
    return {extra.empty() ? EventMember::Kind::NO_EXTRA : EventMember::Kind::RAW, 0, extra};
}

std::int32_t EventRows::GetDayOfMonth(std::size_t row)
{
    if (mIndex != nullptr) {
        SelectRows();
        return mCache->GetDayOfMonth(mPositions[row]);
    }
    const std::string& time = mEvents[row]->occurrenceTime;
    return time.size() < DAY_IN_TIME ? 0 : StringUtil::StringToInt32Def(time.substr(DAY_IN_TIME, DAY_LENGTH), 0);
}

void EventRows::SelectRows()
{
    if (mPositions.empty()) {
        mPositions.reserve(mCount);
        mIndex->Select(mIndex->GetEntries()[mEntryNumber], mFilter, mPositions);
    }
}

void EventRows::ReadWhole()
{
    mIndex = nullptr;
    mEvents = mSource.QueryRows(mEventId);
    mCount = mEvents.size();
}
