#include "arborist/deduction/error_ids.h"

#include <algorithm>
#include <cstring>

#include "arborist/model/event.h"

namespace {

// Up to so many comparisons are cheaper than a set.
constexpr std::size_t FEW_COMPARISONS = 64;

template <typename Number>
std::uint64_t LettersAt(const char* text)
{
    Number letters;
    std::memcpy(&letters, text, sizeof(letters));
    return letters;
}

// The last eight letters as a number. Of a shorter text all letters are in it, some of them twice: nothing is read
// beyond its ends, and nothing loops.
std::uint64_t TailOf(std::string_view text)
{
    const char* end = text.data() + text.size();
    if (text.size() >= 8) {
        return LettersAt<std::uint64_t>(end - 8);
    }
    if (text.size() >= 4) {
        return LettersAt<std::uint32_t>(text.data()) << 32 | LettersAt<std::uint32_t>(end - 4);
    }
    if (text.empty()) {
        return 0;
    }
    return LettersAt<std::uint8_t>(text.data()) << 16 | LettersAt<std::uint8_t>(text.data() + text.size() / 2) << 8 |
           LettersAt<std::uint8_t>(end - 1);
}

// Whether one of the eight bytes of `letters` is `letter`: a byte of the difference is zero there, and borrows.
bool HoldsLetter(std::uint64_t letters, char letter)
{
    constexpr std::uint64_t ONES = 0x0101010101010101ULL;
    constexpr std::uint64_t TOPS = 0x8080808080808080ULL;
    const std::uint64_t difference = letters ^ (ONES * static_cast<unsigned char>(letter));
    return ((difference - ONES) & ~difference & TOPS) != 0;
}

bool HoldsSeparator(std::uint64_t letters)
{
    return HoldsLetter(letters, '/') || HoldsLetter(letters, '&');
}

// `tail` is that of `id`.
bool HoldsSeparator(std::string_view id, std::uint64_t tail)
{
    bool holds = HoldsSeparator(tail);
    while (!holds && id.size() > sizeof(tail)) {
        id.remove_suffix(sizeof(tail));
        holds = HoldsSeparator(TailOf(id));
    }
    return holds;
}

bool AreUnambiguousAmongFew(const ErrorIds::Events& events, const ErrorIds::Indexes& inError)
{
    for (std::size_t event = 0; event < events.size(); ++event) {
        const std::string& id = events[event]->GetId();
        const auto hasSameId = [&](std::size_t other) { return other != event && events[other]->GetId() == id; };
        if (HoldsSeparator(id, TailOf(id)) || std::any_of(inError.begin(), inError.end(), hasSameId)) {
            return false;
        }
    }
    return true;
}

// Ids of one gate mostly differ in length or at their end. The letters that differ stand at the top of the number,
// where a product alone would not bring them down.
std::size_t QuickHash(std::uint64_t tail, std::size_t length)
{
    const std::uint64_t letters = tail + length;
    return static_cast<std::size_t>(((letters ^ (letters >> 32)) * 0x9E3779B97F4A7C15ULL) >> 32);
}

} // namespace

bool ErrorIds::AreUnambiguous(const Events& events, const Indexes& inError)
{
    return inError.size() * events.size() <= FEW_COMPARISONS ? AreUnambiguousAmongFew(events, inError)
                                                             : AreUnambiguousAmongMany(events, inError);
}

bool ErrorIds::AreUnambiguousAmongMany(const Events& events, const Indexes& inError)
{
    mIds.clear();
    std::size_t places = 64;
    while (places < inError.size() * 8) {
        places *= 2;
    }
    mMarks.assign(places, 0);
    for (const std::size_t event : inError) {
        if (!Add(events[event]->GetId())) {
            return false;
        }
    }
    // One pass over all ids, which a gate may have very many of: each is read once.
    return std::none_of(events.begin(), events.end(), [this](const auto& event) {
        const std::string& id = event->GetId();
        const std::uint64_t tail = TailOf(id);
        return HoldsSeparator(id, tail) || (IsMarked(id, tail) && !IsError(event->GetResult()) && mIds.count(id) != 0);
    });
}

bool ErrorIds::Add(const std::string& id)
{
    mMarks[QuickHash(TailOf(id), id.size()) & (mMarks.size() - 1)] = 1;
    return mIds.insert(id).second;
}

bool ErrorIds::IsMarked(const std::string& id, std::uint64_t tail) const
{
    return mMarks[QuickHash(tail, id.size()) & (mMarks.size() - 1)] != 0;
}
