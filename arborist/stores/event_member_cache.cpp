#include "arborist/stores/event_member_cache.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <functional>
#include <iterator>
#include <optional>

#include <json/value.h>

#include "arborist/stores/json_members.h"
#include "arborist/utilities/json_text.h"
#include "arborist/utilities/time_util.h"

namespace {

using FT::sql::SqlCursor;

// What a handle says. From FIRST_TUPLE on, less that, it is the place of a tuple of texts; with INTEGER_BIT the rest is
// the value of the only key.
constexpr std::uint32_t UNKNOWN = 0;
constexpr std::uint32_t RAW = 1;
constexpr std::uint32_t NO_EXTRA = 2;
constexpr std::uint32_t FIRST_TUPLE = 3;
constexpr std::uint32_t INTEGER_BIT = 0x80000000U;
constexpr std::int64_t INTEGER_OFFSET = 0x40000000;

// More keys than this for one event id, and they take turns.
constexpr std::size_t MOST_KEYS = 8;
// The texts and the table that finds them take up to this many bytes, and one more for every two rows.
constexpr std::size_t SMALLEST_STORE = 65536;
constexpr std::size_t LONGEST_TEXT = 0xFFFF;
constexpr std::uint32_t NO_TUPLE = 0xFFFFFFFFU;
// Bytes of a text's length in front of it.
constexpr std::size_t TEXT_HEAD = 2;
// Where the day stands in "YYYY-MM-DD HH:MM:SS"; a row's time fits 32 bits, so that its year has four digits.
constexpr std::size_t DAY_IN_TIME = 8;

// A number whose decimal form is the text.
std::optional<std::int64_t> CanonicalInteger(std::string_view text)
{
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    if (text.empty() || text.size() > 11 || (text.front() != '-' && (text.front() < '0' || text.front() > '9'))) {
        return std::nullopt;
    }
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    const char* const digits = text.data() + (text.front() == '-' ? 1 : 0);
    const bool hasLeadingZero = digits != end && *digits == '0' && text.size() != 1;
    if (error != std::errc() || rest != end || hasLeadingZero) {
        return std::nullopt;
    }
    return number;
}

std::size_t LengthAt(const std::string& tuples, std::size_t place)
{
    return static_cast<std::size_t>(static_cast<unsigned char>(tuples[place])) << 8 |
        static_cast<unsigned char>(tuples[place + 1]);
}

void AppendText(std::string& tuple, std::string_view text)
{
    tuple += static_cast<char>(static_cast<unsigned char>(text.size() >> 8));
    tuple += static_cast<char>(static_cast<unsigned char>(text.size() & 0xFF));
    tuple += text;
}

} // namespace

EventMemberCache::EventMemberCache(const EventLogIndex& index, const FT::sql::Sqlite3Db& database)
    : mIndex(index), mDb(database)
{
    Clear();
}

void EventMemberCache::Clear()
{
    mExtraOfRow.reset();
    mHandles = {};
    mDays = {};
    mKeySetOfEntry = {};
    mKeySets = {KeySet()};
    mTuples = {};
    mTupleTable = {};
    mTupleCount = 0;
    mNumberOfKeySet = {{KeySet(), 0}};
    mRawExtras.clear();
}

bool EventMemberCache::Load(
    std::size_t entryNumber, const std::vector<std::uint32_t>& positions, const std::vector<std::string>& keys)
{
    if (mHandles.empty()) {
        mHandles.assign(mIndex.GetRowCount(), UNKNOWN);
        mKeySetOfEntry.assign(mIndex.GetEntries().size(), 0);
    }
    mRawExtras.clear();
    UseKeys(entryNumber, keys);
    std::vector<std::uint32_t> missing;
    for (const std::uint32_t position : positions) {
        if (mHandles[position] == UNKNOWN || mHandles[position] == RAW) {
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

void EventMemberCache::UseKeys(std::size_t entryNumber, const std::vector<std::string>& keys)
{
    std::uint32_t& number = mKeySetOfEntry[entryNumber];
    if (!FindColumns(mKeySets[number], keys)) {
        KeySet keySet = mKeySets[number];
        std::copy_if(keys.begin(), keys.end(), std::back_inserter(keySet), [&keySet](const std::string& key) {
            return std::find(keySet.begin(), keySet.end(), key) == keySet.end();
        });
        number = NumberOf(keySet.size() > MOST_KEYS ? keys : keySet);
        FindColumns(mKeySets[number], keys);
        const EventLogIndex::Entry& entry = mIndex.GetEntries()[entryNumber];
        std::fill(mHandles.begin() + entry.begin, mHandles.begin() + entry.end, UNKNOWN);
    }
    mKeySet = &mKeySets[number];
}

bool EventMemberCache::FindColumns(const KeySet& keySet, const std::vector<std::string>& keys)
{
    mColumnOfKey.clear();
    for (const std::string& key : keys) {
        const auto found = std::find(keySet.begin(), keySet.end(), key);
        if (found == keySet.end()) {
            return false;
        }
        mColumnOfKey.push_back(static_cast<std::size_t>(found - keySet.begin()));
    }
    return true;
}

std::uint32_t EventMemberCache::NumberOf(const KeySet& keySet)
{
    const auto [found, isNew] = mNumberOfKeySet.try_emplace(keySet, static_cast<std::uint32_t>(mKeySets.size()));
    if (isNew) {
        mKeySets.push_back(keySet);
    }
    return found->second;
}

bool EventMemberCache::ReadMissing(const std::vector<std::uint32_t>& missing)
{
    if (mExtraOfRow == nullptr) {
        mExtraOfRow = std::make_unique<SqlCursor>(mDb, "select extra from event_info where rowid = ?1");
    }
    if (!mExtraOfRow->IsReady()) {
        return false;
    }
    for (const std::uint32_t position : missing) {
        mExtraOfRow->Restart(mIndex.GetRowId(position));
        if (!mExtraOfRow->Step()) {
            return false;
        }
        ReadRow(position, mExtraOfRow->GetText(0));
    }
    mExtraOfRow->Reset();
    return true;
}

void EventMemberCache::ReadRow(std::uint32_t position, std::string_view extra)
{
    Handle& handle = mHandles[position];
    if (extra.empty()) {
        handle = NO_EXTRA;
        return;
    }
    if (handle != RAW) {
        handle = HandleOf(extra);
    }
    if (handle == RAW) {
        mRawExtras.emplace(position, extra);
    }
}

EventMemberCache::Handle EventMemberCache::HandleOf(std::string_view extra)
{
    if (ReadPlainMembers(extra, *mKeySet, mValues)) {
        return Store(mValues);
    }
    Json::Value root;
    std::string error;
    if (!ParseJson(extra, root, error)) {
        return RAW; // each reading of it is an error in the log
    }
    std::vector<std::string> texts;
    for (const std::string& key : *mKeySet) {
        texts.push_back(MemberText(root, key));
    }
    return Store({texts.begin(), texts.end()});
}

EventMemberCache::Handle EventMemberCache::Store(const std::vector<std::string_view>& values)
{
    if (values.size() == 1) {
        const std::optional<std::int64_t> number = CanonicalInteger(values.front());
        if (number && *number >= -INTEGER_OFFSET && *number < INTEGER_OFFSET) {
            return INTEGER_BIT | static_cast<Handle>(*number + INTEGER_OFFSET);
        }
    }
    std::string tuple;
    for (const std::string_view value : values) {
        if (value.size() > LONGEST_TEXT) {
            return RAW;
        }
        AppendText(tuple, value);
    }
    return Intern(tuple);
}

// A tuple is found by its texts alone: those of another set of keys that begins with the same texts will do.
EventMemberCache::Handle EventMemberCache::Intern(const std::string& tuple)
{
    const std::size_t limit = SMALLEST_STORE + mIndex.GetRowCount() / 2;
    if (mTupleTable.empty()) {
        mTupleTable.assign(std::bit_floor(limit / 2 / sizeof(std::uint32_t)), NO_TUPLE);
    }
    const std::size_t mask = mTupleTable.size() - 1;
    std::size_t slot = std::hash<std::string>()(tuple) & mask;
    for (; mTupleTable[slot] != NO_TUPLE; slot = (slot + 1) & mask) {
        if (mTuples.compare(mTupleTable[slot], tuple.size(), tuple) == 0) {
            return FIRST_TUPLE + mTupleTable[slot];
        }
    }
    const bool isFull = mTupleCount > mask / 4 * 3 || mTuples.size() + tuple.size() > limit / 2;
    if (isFull) {
        return RAW;
    }
    ++mTupleCount;
    mTupleTable[slot] = static_cast<std::uint32_t>(mTuples.size());
    mTuples += tuple;
    return FIRST_TUPLE + mTupleTable[slot];
}

EventMember EventMemberCache::Get(std::uint32_t position, std::size_t keyNumber) const
{
    const Handle handle = mHandles[position];
    if (handle == NO_EXTRA) {
        return {EventMember::Kind::NO_EXTRA, 0, {}};
    }
    if (handle == RAW) {
        return {EventMember::Kind::RAW, 0, mRawExtras.at(position)};
    }
    if ((handle & INTEGER_BIT) != 0) {
        return {EventMember::Kind::INTEGER, static_cast<std::int64_t>(handle & ~INTEGER_BIT) - INTEGER_OFFSET, {}};
    }
    std::size_t place = handle - FIRST_TUPLE;
    for (std::size_t column = mColumnOfKey[keyNumber]; column != 0; --column) {
        place += TEXT_HEAD + LengthAt(mTuples, place);
    }
    const std::string_view text(mTuples.data() + place + TEXT_HEAD, LengthAt(mTuples, place));
    const std::optional<std::int64_t> number = CanonicalInteger(text);
    return {number ? EventMember::Kind::INTEGER : EventMember::Kind::TEXT, number.value_or(0), text};
}

std::int32_t EventMemberCache::GetDayOfMonth(std::uint32_t position)
{
    if (mDays.empty()) {
        mDays.assign(mIndex.GetRowCount(), 0);
    }
    std::uint8_t& day = mDays[position];
    if (day == 0) {
        const std::string time = TimeUtil::GetFormatTime(mIndex.GetTime(position));
        std::from_chars(time.data() + DAY_IN_TIME, time.data() + time.size(), day);
    }
    return day;
}
