#include "arborist/stores/event_log/event_member_cache.h"

#include <algorithm>
#include <limits>

#include <json/value.h>

#include "arborist/stores/event_log/json_members.h"
#include "arborist/utilities/json_text.h"

namespace {

using FT::sql::SqlCursor;
using Entry = EventLogIndex::Entry;

// The store may take this many bytes and one more for every row, but not much more than the rows can fill.
constexpr std::size_t BASIC_STORE = 1048576;
constexpr std::size_t SMALLEST_STORE = 65536;
constexpr std::size_t MOST_FOR_A_ROW = 32;
// Reading all rows in one go costs as much as reading this part of them one by one.
constexpr std::size_t WORTH_READING_ALL = 32;
constexpr std::int64_t NEVER_READ = std::numeric_limits<std::int64_t>::max();

} // namespace

EventMemberCache::EventMemberCache(const EventLogIndex& index, const FT::sql::Sqlite3Db& database)
    : mIndex(index), mDb(database)
{
}

void EventMemberCache::Clear()
{
    mHasBegun = false;
    mExtraOfRow.reset();
    mHandles = {};
    mKeySetOfEntry = {};
    mReadSince = {};
    mMembers.Reset(0);
    mRawExtras.clear();
}

void EventMemberCache::Begin()
{
    if (mHasBegun) {
        return;
    }
    mHasBegun = true;
    mHasRead = false;
    mHandles.assign(mIndex.GetRowCount(), MemberStore::UNKNOWN);
    mKeySetOfEntry.assign(mIndex.GetEntries().size(), 0);
    mReadSince.assign(mIndex.GetEntries().size(), NEVER_READ);
    const std::size_t rows = mIndex.GetRowCount();
    mMembers.Reset(std::min(BASIC_STORE + rows, SMALLEST_STORE + MOST_FOR_A_ROW * rows));
    for (const Interest& interest : mInterests) {
        Apply(interest);
    }
}

void EventMemberCache::Foresee(std::int32_t firstId, std::int32_t lastId, const std::vector<std::string>& keys)
{
    const Interest interest{firstId, lastId, mKeySets.NumberOf(keys)};
    const bool isNew = mInterests.insert(interest).second;
    if (isNew && mHasBegun) {
        Apply(interest);
    }
}

void EventMemberCache::Apply(const Interest& interest)
{
    const std::vector<Entry>& entries = mIndex.GetEntries();
    const auto first = std::lower_bound(entries.begin(), entries.end(), interest.firstId,
        [](const Entry& entry, std::int32_t id) { return entry.eventId < id; });
    for (auto entry = first; entry != entries.end() && entry->eventId <= interest.lastId; ++entry) {
        AddKeys(static_cast<std::size_t>(entry - entries.begin()), interest.keySet);
    }
}

void EventMemberCache::AddKeys(std::size_t entryNumber, std::uint32_t keySet)
{
    std::uint32_t& number = mKeySetOfEntry[entryNumber];
    const std::uint32_t joined = mKeySets.Union(number, keySet);
    if (joined == number) {
        return;
    }
    number = joined;
    if (mHasRead) {
        const Entry& entry = mIndex.GetEntries()[entryNumber];
        std::fill(mHandles.begin() + entry.begin, mHandles.begin() + entry.end, MemberStore::UNKNOWN);
        mReadSince[entryNumber] = NEVER_READ;
    }
}

void EventMemberCache::Prepare(std::size_t first, std::size_t end, std::int64_t start)
{
    Begin();
    if (!mIndex.AreRowIdsAscending() || CountMissing(first, end, start) * WORTH_READING_ALL < mIndex.GetRowCount()) {
        return;
    }
    SqlCursor(mDb, "BEGIN").Step();
    if (mIndex.IsCurrent()) {
        ReadAll(start);
    }
    SqlCursor(mDb, "COMMIT").Step();
}

std::size_t EventMemberCache::CountMissing(std::size_t first, std::size_t end, std::int64_t start) const
{
    std::size_t missing = 0;
    for (std::size_t number = first; number < end; ++number) {
        if (mKeySetOfEntry[number] != 0 && mReadSince[number] > start) {
            missing += mIndex.Count(mIndex.GetEntries()[number], EventLogIndex::FilterFor(start));
        }
    }
    return missing;
}

void EventMemberCache::ReadAll(std::int64_t start)
{
    // Both the rows and those of each entry come by ascending rowid: the next row of its entry is the one that comes.
    const std::vector<Entry>& entries = mIndex.GetEntries();
    std::vector<std::uint32_t> next(entries.size());
    std::int64_t firstRow = std::numeric_limits<std::int64_t>::max();
    std::int64_t lastRow = std::numeric_limits<std::int64_t>::min();
    for (std::size_t number = 0; number < entries.size(); ++number) {
        const bool isWanted = mKeySetOfEntry[number] != 0 && mReadSince[number] > start;
        next[number] = isWanted ? mIndex.FirstSince(entries[number], start) : entries[number].end;
        if (next[number] != entries[number].end) {
            firstRow = std::min(firstRow, mIndex.GetRowId(next[number]));
            lastRow = std::max(lastRow, mIndex.GetRowId(entries[number].end - 1));
        }
    }
    const auto take = [&](const FT::sql::ScannedRow& row) {
        const std::uint32_t number = mIndex.FindEntry(static_cast<std::int32_t>(row.GetInteger(1)));
        if (number == GroupNumbers::NONE) {
            return;
        }
        std::uint32_t& position = next[number];
        const std::int64_t rowId = row.GetInteger(0);
        while (position != entries[number].end && mIndex.GetRowId(position) < rowId) {
            ++position;
        }
        if (position != entries[number].end && mIndex.GetRowId(position) == rowId) {
            TakeExtra(position, mKeySets.Get(mKeySetOfEntry[number]), row.GetText(2));
        }
    };
    std::string error;
    const bool isRead = FT::sql::ScanRows(mDb, "rowid, event_id, extra", "from event_info where rowid between " +
        std::to_string(firstRow) + " and " + std::to_string(lastRow), take, error);
    for (std::size_t number = 0; isRead && number < entries.size(); ++number) {
        if (mKeySetOfEntry[number] != 0) {
            mReadSince[number] = std::min(mReadSince[number], start);
        }
    }
}

bool EventMemberCache::Load(
    std::size_t entryNumber, const std::vector<std::uint32_t>& positions, const std::vector<std::string>& keys)
{
    Begin();
    mRawExtras.clear();
    mKeySet = &mKeySets.Get(mKeySetOfEntry[entryNumber]);
    if (!FindColumns(keys)) {
        AddKeys(entryNumber, mKeySets.NumberOf(keys));
        mKeySet = &mKeySets.Get(mKeySetOfEntry[entryNumber]);
        FindColumns(keys);
    }
    std::vector<std::uint32_t> missing;
    for (const std::uint32_t position : positions) {
        if (mHandles[position] <= MemberStore::RAW) { // or not known
            missing.push_back(position);
        }
    }
    if (missing.empty()) {
        return true;
    }
    SqlCursor(mDb, "BEGIN").Step();
    const bool isRead = mIndex.IsCurrent() && ReadMissing(missing);
    SqlCursor(mDb, "COMMIT").Step();
    return isRead;
}

bool EventMemberCache::FindColumns(const std::vector<std::string>& keys)
{
    mColumnOfKey.clear();
    for (const std::string& key : keys) {
        const auto found = std::find(mKeySet->begin(), mKeySet->end(), key);
        if (found == mKeySet->end()) {
            return false;
        }
        mColumnOfKey.push_back(static_cast<std::size_t>(found - mKeySet->begin()));
    }
    return true;
}

bool EventMemberCache::ReadMissing(const std::vector<std::uint32_t>& missing)
{
    if (mExtraOfRow == nullptr) {
        mExtraOfRow = std::make_unique<SqlCursor>(mDb, "select extra from event_info where rowid = ?1");
    }
    if (!mExtraOfRow->IsReady()) {
        return false;
    }
    bool isRead = true;
    for (std::size_t row = 0; isRead && row < missing.size(); ++row) {
        mExtraOfRow->Restart(mIndex.GetRowId(missing[row]));
        isRead = mExtraOfRow->Step();
        if (isRead) {
            TakeExtra(missing[row], *mKeySet, mExtraOfRow->GetText(0));
            if (mHandles[missing[row]] == MemberStore::RAW) {
                mRawExtras.emplace(missing[row], mExtraOfRow->GetText(0));
            }
        }
    }
    mExtraOfRow->Reset();
    return isRead;
}

void EventMemberCache::TakeExtra(std::uint32_t position, const KeySets::Keys& keys, std::string_view extra)
{
    mHasRead = true;
    MemberStore::Handle& handle = mHandles[position];
    if (handle == MemberStore::UNKNOWN) {
        handle = extra.empty() ? MemberStore::NO_EXTRA : HandleOf(extra, keys);
    }
}

MemberStore::Handle EventMemberCache::HandleOf(std::string_view extra, const KeySets::Keys& keys)
{
    if (ReadPlainMembers(extra, keys, mValues)) {
        return mMembers.Store(mValues);
    }
    Json::Value root;
    std::string error;
    if (!ParseJson(extra, root, error)) {
        return MemberStore::RAW; // each reading of it is an error in the log
    }
    std::vector<std::string> texts;
    for (const std::string& key : keys) {
        texts.push_back(MemberText(root, key));
    }
    return mMembers.Store({texts.begin(), texts.end()});
}

EventMember EventMemberCache::GetOther(std::uint32_t position, MemberStore::Handle code) const
{
    if (code == MemberStore::NO_EXTRA) {
        return {EventMember::Kind::NO_EXTRA, 0, {}};
    }
    if (code == MemberStore::RAW) {
        return {EventMember::Kind::RAW, 0, mRawExtras.at(position)};
    }
    return {EventMember::Kind::TEXT, 0, mMembers.TextOf(code), code};
}
