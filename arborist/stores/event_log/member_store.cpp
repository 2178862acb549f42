#include "arborist/stores/event_log/member_store.h"

#include <charconv>
#include <optional>

#include "arborist/utilities/text_hash.h"

namespace {

constexpr std::uint32_t EMPTY_SLOT = 0xFFFFFFFFU;
constexpr std::size_t FIRST_SLOTS = 64;
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

} // namespace

void MemberStore::Reset(std::size_t bytes)
{
    mTexts = std::string();
    mEnds = std::vector<std::uint32_t>();
    mTable.assign(FIRST_SLOTS, EMPTY_SLOT);
    mLimit = bytes;
}

MemberStore::Code MemberStore::CodeOf(std::string_view member)
{
    const std::optional<std::int64_t> number = CanonicalInteger(member);
    return number && *number >= -MOST_INTEGER && *number <= MOST_INTEGER ? CodeOfInteger(*number) : CodeOfText(member);
}

MemberStore::Code MemberStore::CodeOfText(std::string_view text)
{
    if (text.size() > LONGEST_TEXT) {
        return RAW;
    }
    if (const std::uint32_t known = SlotOf(text); known != EMPTY_SLOT) {
        return FIRST_TEXT + 4 * known;
    }
    if (!HasSlot() || !HasRoom(sizeof(mEnds[0]) + text.size())) {
        return RAW;
    }
    const auto number = static_cast<std::uint32_t>(mEnds.size());
    SlotOf(text) = number;
    mTexts += text;
    mEnds.push_back(static_cast<std::uint32_t>(mTexts.size()));
    return FIRST_TEXT + 4 * number;
}

bool MemberStore::HasRoom(std::size_t bytes) const
{
    return mTexts.size() + (mEnds.size() + mTable.size()) * sizeof(std::uint32_t) + bytes <= mLimit;
}

// Doubles a table that is full. False when there is no room.
bool MemberStore::HasSlot()
{
    if (mEnds.size() < mTable.size() / 4 * 3) {
        return true;
    }
    const std::size_t slots = 2 * mTable.size();
    if (!HasRoom(slots * sizeof(std::uint32_t))) {
        return false;
    }
    mTable.assign(slots, EMPTY_SLOT);
    for (std::uint32_t number = 0; number < mEnds.size(); ++number) {
        SlotOf(GetText(number)) = number;
    }
    return true;
}

// The slot of the text, or the empty one where it would be.
std::uint32_t& MemberStore::SlotOf(std::string_view text)
{
    const std::size_t mask = mTable.size() - 1;
    std::size_t slot = TextHash()(text) & mask;
    while (mTable[slot] != EMPTY_SLOT && GetText(mTable[slot]) != text) {
        slot = (slot + 1) & mask;
    }
    return mTable[slot];
}
