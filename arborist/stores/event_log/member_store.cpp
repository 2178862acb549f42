#include "arborist/stores/event_log/member_store.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <functional>
#include <optional>

namespace {

constexpr MemberStore::Handle EMPTY_SLOT = 0xFFFFFFFFU;
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

std::size_t SlotsWithin(std::size_t bytes)
{
    return std::bit_floor(std::max<std::size_t>(bytes / sizeof(MemberStore::Handle), 4));
}

bool IsFull(std::size_t count, const std::vector<MemberStore::Handle>& table)
{
    return count >= table.size() / 4 * 3;
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
    mTextTable.assign(SlotsWithin(bytes / 8), EMPTY_SLOT);
    mTupleTable.assign(SlotsWithin(bytes / 4), EMPTY_SLOT);
    const std::size_t tables = (mTextTable.size() + mTupleTable.size()) * sizeof(Handle);
    mLimit = bytes - std::min(bytes, tables);
}

bool MemberStore::HasRoom(std::size_t bytes) const
{
    return mTexts.size() + mTuples.size() * sizeof(Handle) + bytes <= mLimit;
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
    Handle& slot = FindSlot(mTextTable, std::hash<std::string_view>()(text),
        [&](Handle place) { return TextOf(FIRST_PLACE + place) == text; });
    if (slot == EMPTY_SLOT) {
        if (IsFull(mTextCount, mTextTable) || !HasRoom(TEXT_HEAD + text.size())) {
            return RAW;
        }
        ++mTextCount;
        slot = static_cast<Handle>(mTexts.size());
        mTexts += static_cast<char>(static_cast<unsigned char>(text.size() >> 8));
        mTexts += static_cast<char>(static_cast<unsigned char>(text.size() & 0xFF));
        mTexts += text;
    }
    return FIRST_PLACE + slot;
}

// A row of fewer members may share the place of one that begins with the same.
MemberStore::Handle MemberStore::CodeForTuple()
{
    std::size_t hash = mCodes.size();
    for (const Handle code : mCodes) {
        hash = (hash ^ code) * 0x9E3779B97F4A7C15U;
    }
    Handle& slot = FindSlot(mTupleTable, hash >> 24, [&](Handle place) {
        return place + mCodes.size() <= mTuples.size() &&
            std::equal(mCodes.begin(), mCodes.end(), mTuples.begin() + place);
    });
    if (slot == EMPTY_SLOT) {
        if (IsFull(mTupleCount, mTupleTable) || !HasRoom(mCodes.size() * sizeof(Handle))) {
            return RAW;
        }
        ++mTupleCount;
        slot = static_cast<Handle>(mTuples.size());
        mTuples.insert(mTuples.end(), mCodes.begin(), mCodes.end());
    }
    return FIRST_PLACE + slot;
}

std::string_view MemberStore::TextOf(Handle code) const
{
    const char* const place = mTexts.data() + (code - FIRST_PLACE);
    const std::size_t length =
        static_cast<std::size_t>(static_cast<unsigned char>(place[0])) << 8 | static_cast<unsigned char>(place[1]);
    return {place + TEXT_HEAD, length};
}
