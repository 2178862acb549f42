#include "arborist/stores/event_log/event_member_cache.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include <json/value.h>

#include "arborist/stores/event_log/id_table.h"
#include "arborist/stores/event_log/json_members.h"
#include "arborist/utilities/json_text.h"

namespace {

using FT::sql::SqlCursor;
using Entry = EventLogIndex::Entry;

// The store may take this many bytes and one more for every row, but not much more than the rows can fill.
constexpr std::size_t BASIC_STORE = 1048576;
constexpr std::size_t SMALLEST_STORE = 65536;
constexpr std::size_t MOST_FOR_A_ROW = 32;
// Bytes that the codes may take, and for each row.
constexpr std::size_t SMALLEST_BLOCKS = 65536;
constexpr std::size_t BLOCK_BYTES_A_ROW = 6;
// Reading all rows in one go costs as much as reading this part of them one by one.
constexpr std::size_t WORTH_READING_ALL = 32;
constexpr std::int64_t NEVER_READ = std::numeric_limits<std::int64_t>::max();

} // namespace

EventMemberCache::EventMemberCache(const EventLogIndex& index, const FT::sql::Sqlite3Db& database)
    : mIndex(index), mDb(database)
{
}

EventMemberCache::Block::Block(std::uint32_t first, std::uint32_t rows, std::size_t columns)
    : firstRow(first), rowCount(rows)
{
    codes.Assign(columns * rows, 0);
}

EventMemberCache::Block::~Block()
{
    if (budget != nullptr) {
        *budget += GetSize();
    }
}

void EventMemberCache::Clear()
{
    mHasBegun = false;
    mExtraOfRow.reset();
    mStretches.clear();
    mLoaded.reset();
    mMembers.Reset(0);
    mRawExtras.clear();
}

void EventMemberCache::Begin()
{
    if (mHasBegun) {
        return;
    }
    mHasBegun = true;
    const std::size_t rows = mIndex.GetRowCount();
    mBudget = SMALLEST_BLOCKS + BLOCK_BYTES_A_ROW * rows;
    mMembers.Reset(std::min(BASIC_STORE + rows, SMALLEST_STORE + MOST_FOR_A_ROW * rows));
    mStretches.emplace(0, Stretch{0, NEVER_READ, nullptr});
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
    const std::size_t first = mIndex.FirstEntryFrom(interest.firstId);
    const std::size_t end = mIndex.FirstEntryFrom(std::int64_t{interest.lastId} + 1);
    if (first >= end) {
        return;
    }
    const auto last = SplitAt(end);
    for (auto stretch = SplitAt(first); stretch != last; ++stretch) {
        AddKeys(stretch->second, interest.keySet);
    }
}

void EventMemberCache::AddKeys(Stretch& stretch, std::uint32_t keySet)
{
    const std::uint32_t joined = mKeySets.Union(stretch.keySet, keySet);
    if (joined != stretch.keySet) {
        stretch = {joined, NEVER_READ, nullptr};
    }
}

EventMemberCache::Stretches::iterator EventMemberCache::StretchOf(std::size_t entryNumber)
{
    return std::prev(mStretches.upper_bound(entryNumber));
}

// The stretch that begins at this entry; the end behind the last entry.
EventMemberCache::Stretches::iterator EventMemberCache::SplitAt(std::size_t entryNumber)
{
    if (entryNumber >= mIndex.GetEntryCount()) {
        return mStretches.end();
    }
    const auto stretch = StretchOf(entryNumber);
    return stretch->first == entryNumber ? stretch
                                         : mStretches.emplace_hint(std::next(stretch), entryNumber, stretch->second);
}

std::size_t EventMemberCache::EndOf(Stretches::const_iterator stretch) const
{
    const auto next = std::next(stretch);
    return next == mStretches.end() ? mIndex.GetEntryCount() : next->first;
}

// False when there is no room for the codes of the stretch.
bool EventMemberCache::EnsureBlock(Stretches::iterator stretch)
{
    if (stretch->second.block != nullptr) {
        return true;
    }
    const std::uint32_t first = mIndex.GetEntry(stretch->first).begin;
    const std::uint32_t rows = mIndex.GetEntry(EndOf(stretch) - 1).end - first;
    const std::size_t columns = mKeySets.Get(stretch->second.keySet).size();
    if (columns * rows > mBudget) {
        return false;
    }
    stretch->second.block = std::make_shared<Block>(first, rows, columns);
    mBudget -= columns * rows;
    stretch->second.block->budget = &mBudget;
    return true;
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

std::size_t EventMemberCache::CountMissing(std::size_t first, std::size_t end, std::int64_t start)
{
    std::size_t missing = 0;
    while (first < end) {
        const auto stretch = StretchOf(first);
        const std::size_t next = std::min(EndOf(stretch), end);
        const bool isWanted = stretch->second.keySet != 0 && stretch->second.readSince > start;
        for (; isWanted && first < next && EnsureBlock(stretch); ++first) {
            missing += mIndex.Count(mIndex.GetEntry(first), EventLogIndex::FilterFor(start));
        }
        first = next;
    }
    return missing;
}

// What is known while all is read in one go. Both the rows and those of each entry come by ascending rowid: the next
// row of its entry is the one that comes.
struct EventMemberCache::Reading {
    Reading(const EventLogIndex& index, std::size_t stretches, std::int64_t startTime)
        : start(startTime), entryOfId(index.GetIds())
    {
        wantedOfEntry.Assign(index.GetEntryCount(), static_cast<std::uint32_t>(stretches));
        nextOfEntry.Assign(index.GetEntryCount(), static_cast<std::uint32_t>(index.GetRowCount()));
    }

    std::int64_t start;
    IdTable entryOfId;
    std::vector<Stretch*> wanted;
    PackedColumn wantedOfEntry; // number of its stretch among these, from 1; 0 for entries that are not wanted
    PackedColumn nextOfEntry;
    std::int64_t firstRow = std::numeric_limits<std::int64_t>::max();
    std::int64_t lastRow = std::numeric_limits<std::int64_t>::min();
    std::size_t rowsToMeet = 0;
};

void EventMemberCache::ReadAll(std::int64_t start)
{
    Reading reading(mIndex, mStretches.size(), start);
    for (auto stretch = mStretches.begin(); stretch != mStretches.end(); ++stretch) {
        if (stretch->second.keySet != 0 && stretch->second.readSince > start && EnsureBlock(stretch)) {
            Want(reading, stretch);
        }
    }
    std::string error;
    const bool isRead = FT::sql::ScanRows(mDb, "rowid, event_id, extra",
        "from event_info where rowid between " + std::to_string(reading.firstRow) + " and " +
            std::to_string(reading.lastRow),
        [&](const FT::sql::ScannedRow& row) { TakeRow(reading, row); }, error);
    for (Stretch* const stretch : reading.wanted) {
        stretch->readSince = isRead ? start : stretch->readSince;
        stretch->block->hasGaps = stretch->block->hasGaps || reading.rowsToMeet != 0;
    }
}

void EventMemberCache::Want(Reading& reading, Stretches::iterator stretch)
{
    reading.wanted.push_back(&stretch->second);
    for (std::size_t number = stretch->first; number < EndOf(stretch); ++number) {
        const Entry entry = mIndex.GetEntry(number);
        const std::uint32_t first = mIndex.FirstSince(entry, reading.start);
        if (first == entry.end) {
            continue;
        }
        reading.wantedOfEntry.Set(number, static_cast<std::uint32_t>(reading.wanted.size()));
        reading.nextOfEntry.Set(number, first);
        reading.firstRow = std::min(reading.firstRow, mIndex.GetRowId(first));
        reading.lastRow = std::max(reading.lastRow, mIndex.GetRowId(entry.end - 1));
        reading.rowsToMeet += entry.end - first;
    }
}

void EventMemberCache::TakeRow(Reading& reading, const FT::sql::ScannedRow& row)
{
    const auto eventId = static_cast<std::int32_t>(row.GetInteger(1));
    const std::uint32_t number = reading.entryOfId.Find(mIndex.GetIds(), eventId);
    if (number == IdTable::NONE || reading.wantedOfEntry[number] == 0) {
        return;
    }
    const std::uint32_t end = mIndex.GetEntry(number).end;
    const std::int64_t rowId = row.GetInteger(0);
    std::uint32_t position = reading.nextOfEntry[number];
    while (position != end && mIndex.GetRowId(position) < rowId) {
        ++position;
    }
    reading.nextOfEntry.Set(number, position);
    if (position != end && mIndex.GetRowId(position) == rowId) {
        const Stretch& stretch = *reading.wanted[reading.wantedOfEntry[number] - 1];
        TakeExtra(*stretch.block, position, mKeySets.Get(stretch.keySet), row.GetText(2));
        --reading.rowsToMeet;
    }
}

bool EventMemberCache::Load(std::size_t entryNumber, const std::vector<std::uint32_t>& positions, std::int64_t start,
    const std::vector<std::string>& keys)
{
    Begin();
    mRawExtras.clear();
    auto stretch = StretchOf(entryNumber);
    if (!HoldsKeys(stretch->second, keys)) {
        SplitAt(entryNumber + 1);
        stretch = SplitAt(entryNumber);
        AddKeys(stretch->second, mKeySets.NumberOf(keys));
    }
    const KeySets::Keys& held = mKeySets.Get(stretch->second.keySet);
    const Entry entry = mIndex.GetEntry(entryNumber);
    mLoaded = EnsureBlock(stretch) ? stretch->second.block
                                   : std::make_shared<Block>(entry.begin, entry.end - entry.begin, held.size());
    mColumnOfKey.clear();
    for (const std::string& key : keys) {
        const auto column = std::find(held.begin(), held.end(), key) - held.begin();
        mColumnOfKey.push_back(mLoaded->PlaceOf(0, static_cast<std::size_t>(column)));
    }
    if (stretch->second.readSince <= start && !mLoaded->hasGaps) {
        return true;
    }
    std::vector<std::uint32_t> missing;
    std::copy_if(positions.begin(), positions.end(), std::back_inserter(missing),
        [this](std::uint32_t position) { return IsShort(position); });
    if (missing.empty()) {
        return true;
    }
    SqlCursor(mDb, "BEGIN").Step();
    const bool isRead = mIndex.IsCurrent() && ReadMissing(missing, held);
    SqlCursor(mDb, "COMMIT").Step();
    return isRead;
}

bool EventMemberCache::HoldsKeys(const Stretch& stretch, const std::vector<std::string>& keys) const
{
    const KeySets::Keys& held = mKeySets.Get(stretch.keySet);
    return !held.empty() && std::all_of(keys.begin(), keys.end(), [&held](const std::string& key) {
        return std::find(held.begin(), held.end(), key) != held.end();
    });
}

// Whether one of the members asked for isn't known, or was not kept.
bool EventMemberCache::IsShort(std::uint32_t position) const
{
    bool isShort = false;
    for (std::size_t key = 0; key < mColumnOfKey.size(); ++key) {
        isShort = isShort || GetCode(position, key) <= MemberStore::RAW;
    }
    return isShort;
}

bool EventMemberCache::ReadMissing(const std::vector<std::uint32_t>& missing, const KeySets::Keys& keys)
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
            TakeExtra(*mLoaded, missing[row], keys, mExtraOfRow->GetText(0));
            if (IsShort(missing[row])) {
                mRawExtras.emplace(missing[row], mExtraOfRow->GetText(0));
            }
        }
    }
    mExtraOfRow->Reset();
    return isRead;
}

void EventMemberCache::TakeExtra(
    Block& block, std::uint32_t position, const KeySets::Keys& keys, std::string_view extra)
{
    if (block.codes[block.PlaceOf(position, 0)] != MemberStore::UNKNOWN) {
        return;
    }
    TakeMembers(extra, keys);
    for (std::size_t column = 0; column < mCodes.size(); ++column) {
        const MemberStore::Code code = HasRoom(block, mCodes[column]) ? mCodes[column] : MemberStore::RAW;
        block.hasGaps = block.hasGaps || code == MemberStore::RAW;
        block.codes.Set(block.PlaceOf(position, column), code);
    }
}

// The codes of the members of one row.
void EventMemberCache::TakeMembers(std::string_view extra, const KeySets::Keys& keys)
{
    mCodes.assign(keys.size(), extra.empty() ? MemberStore::NO_EXTRA : MemberStore::RAW);
    if (extra.empty()) {
        return;
    }
    if (ReadPlainMembers(extra, keys, mValues)) {
        for (std::size_t column = 0; column < keys.size(); ++column) {
            mCodes[column] = mMembers.CodeOf(mValues[column]);
        }
        return;
    }
    Json::Value root;
    std::string error;
    const bool isJson = ParseJson(extra, root, error);
    for (std::size_t column = 0; isJson && column < keys.size(); ++column) {
        mCodes[column] = mMembers.CodeOf(MemberText(root, keys[column]));
    }
    // Without JSON all stay RAW: each reading of it is an error in the log.
}

// Whether the code fits, or all may get wider.
bool EventMemberCache::HasRoom(Block& block, MemberStore::Code code)
{
    if (block.codes.Fits(code) || block.budget == nullptr) {
        return true;
    }
    const std::size_t more = (block.codes.WidthWith(code) - block.codes.GetWidth()) * block.codes.GetCount();
    if (more > mBudget) {
        return false;
    }
    mBudget -= more;
    return true;
}

EventMember EventMemberCache::Get(std::uint32_t position, std::size_t keyNumber) const
{
    const MemberStore::Code code = GetCode(position, keyNumber);
    if (MemberStore::IsInteger(code)) {
        return {EventMember::Kind::INTEGER, MemberStore::IntegerOf(code), {}};
    }
    if (MemberStore::IsText(code)) {
        return {EventMember::Kind::TEXT, 0, mMembers.TextOf(code)};
    }
    return code == MemberStore::NO_EXTRA ? EventMember{EventMember::Kind::NO_EXTRA, 0, {}}
                                         : EventMember{EventMember::Kind::RAW, 0, mRawExtras.at(position)};
}
