#include "arborist/deduction/error_ids.h"

#include <algorithm>
#include <cstring>

#include "arborist/model/event.h"

namespace {

// Up to so many comparisons are cheaper than a set.
constexpr std::size_t FEW_COMPARISONS = 64;

// The last eight letters at most, as a number.
std::uint64_t TailOf(std::string_view text)
{
    std::uint64_t tail = 0;
    if (text.size() >= sizeof(tail)) {
        std::memcpy(&tail, text.data() + text.size() - sizeof(tail), sizeof(tail));
        return tail;
    }
    for (const char letter : text) {
        tail = tail << 8 | static_cast<unsigned char>(letter);
    }
    return tail;
}

// Whether one of the eight bytes of `letters` is `letter`: a byte of the difference is zero there, and borrows.
bool HoldsLetter(std::uint64_t letters, char letter)
{
    constexpr std::uint64_t ONES = 0x0101010101010101ULL;
    constexpr std::uint64_t TOPS = 0x8080808080808080ULL;
    const std::uint64_t difference = letters ^ (ONES * static_cast<unsigned char>(letter));
    return ((difference - ONES) & ~difference & TOPS) != 0;
}

// Eight letters at a time: this reads every id beside an event in error.
bool HoldsSeparator(std::string_view id)
{
    for (;;) {
        const std::uint64_t letters = TailOf(id);
        if (HoldsLetter(letters, '/') || HoldsLetter(letters, '&')) {
            return true;
        }
        if (id.size() <= sizeof(letters)) {
            return false;
        }
        id.remove_suffix(sizeof(letters));
    }
}

bool AreUnambiguousAmongFew(const ErrorIds::Events& events, const ErrorIds::Indexes& inError)
{
    for (std::size_t event = 0; event < events.size(); ++event) {
        const std::string& id = events[event]->GetId();
        const auto hasSameId = [&](std::size_t other) { return other != event && events[other]->GetId() == id; };
        if (HoldsSeparator(id) || std::any_of(inError.begin(), inError.end(), hasSameId)) {
            return false;
        }
    }
    return true;
}

// Ids of one gate mostly differ in length or at their end.
std::size_t QuickHash(const std::string& id)
{
    return static_cast<std::size_t>(((TailOf(id) + id.size()) * 0x9E3779B97F4A7C15ULL) >> 32);
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
    std::size_t bits = 64;
    while (bits < inError.size() * 8) {
        bits *= 2;
    }
    mBits.assign(bits, false);
    for (const std::size_t event : inError) {
        if (!Add(events[event]->GetId())) {
            return false;
        }
    }
    return std::none_of(events.begin(), events.end(), [this](const auto& event) {
        return HoldsSeparator(event->GetId()) || (!IsError(event->GetResult()) && Holds(event->GetId()));
    });
}

bool ErrorIds::Add(const std::string& id)
{
    mBits[QuickHash(id) & (mBits.size() - 1)] = true;
    return mIds.insert(id).second;
}

bool ErrorIds::Holds(const std::string& id) const
{
    return mBits[QuickHash(id) & (mBits.size() - 1)] && mIds.count(id) != 0;
}
