#include "arborist/stores/event_log/member_store.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <optional>

namespace {

constexpr MemberStore::Handle EMPTY_SLOT = 0xFFFFFFFFU;
constexpr std::size_t FIRST_SLOTS = 64;
constexpr std::size_t TEXT_HEAD = 2;
constexpr std::size_t LONGEST_TEXT = 0xFFFF;
constexpr std::size_t LONGEST_INTEGER = 11;

// A number whose decimal form is the text.
std::optional<std::int64_t> CanonicalInteger(std::string_view text)
{
    if (text.empty() || text.size() > LONGEST_INTEGER) {
        return std::nullopt;
    }
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    const char firstDigit = text.front() == '-' && text.size() > 1 ? text[1] : text.front();
    const bool isOnlyZero = text.size() == 1;
    if (error != std::errc() || rest != end || (firstDigit == '0' && !isOnlyZero)) {
        return std::nullopt;
    }
    return number;
}

bool IsFull(std::size_t count, const std::vector<MemberStore::Handle>& table)
{
    return count >= table.size() / 4 * 3;
}

std::size_t HashOf(std::string_view text)
{
    return std::hash<std::string_view>()(text);
}

std::size_t HashOf(const MemberStore::Handle* codes, std::size_t count)
{
    std::size_t hash = count;
    for (std::size_t code = 0; code < count; ++code) {
        hash = (hash ^ codes[code]) * 0x9E3779B97F4A7C15U;
    }
    return hash >> 24;
}

// The slot that `isHere` accepts the place of, or the empty one where it would be.
template <typename IsHere>
MemberStore::Handle& FindSlot(std::vector<MemberStore::Handle>& table, std::size_t hash, IsHere isHere)
{
    const std::size_t mask = table.size() - 1;
    std::size_t slot = hash & mask;
    while (table[slot] != EMPTY_SLOT && !isHere(table[slot])) {
        slot = (slot + 1) & mask;
    }
    return table[slot];
}

} // namespace

void MemberStore::Reset(std::size_t bytes)
{
    mTexts = {};
    mTuples = {};
    mTextCount = 0;
    mTupleCount = 0;
    mTextTable.assign(FIRST_SLOTS, EMPTY_SLOT);
    mTupleTable.assign(FIRST_SLOTS, EMPTY_SLOT);
    mLimit = bytes;
}

bool MemberStore::HasRoom(std::size_t bytes) const
{
    const std::size_t handles = mTuples.size() + mTextTable.size() + mTupleTable.size();
    return mTexts.size() + handles * sizeof(Handle) + bytes <= mLimit;
}

// Doubles a table that is full. `hashOf` tells the hash of what stands at a place. False when there is no room.
template <typename HashOfPlace>
bool MemberStore::HasSlot(std::vector<Handle>& table, std::size_t count, HashOfPlace hashOf)
{
    if (!IsFull(count, table)) {
        return true;
    }
    if (!HasRoom(2 * table.size() * sizeof(Handle))) {
        return false;
    }
    std::vector<Handle> before(2 * table.size(), EMPTY_SLOT);
    before.swap(table);
    for (const Handle place : before) {
        if (place != EMPTY_SLOT) {
            FindSlot(table, hashOf(place), [](Handle) { return false; }) = place;
        }
    }
    return true;
}

MemberStore::Handle MemberStore::Store(const std::vector<std::string_view>& values)
{
    mCodes.clear();
    for (const std::string_view value : values) {
        mCodes.push_back(CodeFor(value));
        if (mCodes.back() == RAW) {
            return RAW;
        }
    }
    return mCodes.size() == 1 ? mCodes.front() : CodeForTuple();
}

MemberStore::Handle MemberStore::CodeFor(std::string_view value)
{
    const std::optional<std::int64_t> number = CanonicalInteger(value);
    if (number && *number >= -INTEGER_OFFSET && *number < INTEGER_OFFSET) {
        return INTEGER_BIT | static_cast<Handle>(*number + INTEGER_OFFSET);
    }
    return CodeForText(value);
}

MemberStore::Handle MemberStore::CodeForText(std::string_view text)
{
    if (text.size() > LONGEST_TEXT) {
        return RAW;
    }
    const auto find = [&]() -> Handle& {
        return FindSlot(
            mTextTable, HashOf(text), [&](Handle place) { return TextOf(FIRST_PLACE + place) == text; });
    };
    if (const Handle known = find(); known != EMPTY_SLOT) {
        return FIRST_PLACE + known;
    }
    const auto hashOf = [this](Handle place) { return HashOf(TextOf(FIRST_PLACE + place)); };
    if (!HasSlot(mTextTable, mTextCount, hashOf) || !HasRoom(TEXT_HEAD + text.size())) {
        return RAW;
    }
    ++mTextCount;
    const auto place = static_cast<Handle>(mTexts.size());
    find() = place;
    mTexts += static_cast<char>(static_cast<unsigned char>(text.size() >> 8));
    mTexts += static_cast<char>(static_cast<unsigned char>(text.size() & 0xFF));
    mTexts += text;
    return FIRST_PLACE + place;
}

MemberStore::Handle MemberStore::CodeForTuple()
{
    const auto find = [this]() -> Handle& {
        return FindSlot(mTupleTable, HashOf(mCodes.data(), mCodes.size()), [&](Handle place) {
            return mTuples[place - 1] == mCodes.size() &&
                std::equal(mCodes.begin(), mCodes.end(), mTuples.begin() + place);
        });
    };
    if (const Handle known = find(); known != EMPTY_SLOT) {
        return FIRST_PLACE + known;
    }
    const auto hashOf = [this](Handle place) { return HashOf(&mTuples[place], mTuples[place - 1]); };
    if (!HasSlot(mTupleTable, mTupleCount, hashOf) || !HasRoom((1 + mCodes.size()) * sizeof(Handle))) {
        return RAW;
    }
    ++mTupleCount;
    mTuples.push_back(static_cast<Handle>(mCodes.size()));
    const auto place = static_cast<Handle>(mTuples.size());
    find() = place;
    mTuples.insert(mTuples.end(), mCodes.begin(), mCodes.end());
    return FIRST_PLACE + place;
}

std::string_view MemberStore::TextOf(Handle code) const
{
    const char* const place = mTexts.data() + (code - FIRST_PLACE);
    const std::size_t length =
        static_cast<std::size_t>(static_cast<unsigned char>(place[0])) << 8 | static_cast<unsigned char>(place[1]);
    return {place + TEXT_HEAD, length};
}
