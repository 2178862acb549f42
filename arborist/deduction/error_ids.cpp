#include "arborist/deduction/error_ids.h"

#include <algorithm>
#include <cstring>

#include "arborist/model/event.h"

namespace {

// Up to so many comparisons are cheaper than a set.
constexpr std::size_t FEW_COMPARISONS = 64;

bool HoldsSeparator(const std::string& id)
{
    return std::memchr(id.data(), '/', id.size()) != nullptr || std::memchr(id.data(), '&', id.size()) != nullptr;
}

bool AreUniqueAmongFew(const ErrorIds::Events& events)
{
    for (const auto& event : events) {
        if (!IsError(event->GetResult())) {
            continue;
        }
        for (const auto& other : events) {
            if (&other != &event && other->GetId() == event->GetId()) {
                return false;
            }
        }
    }
    return true;
}

// Ids of one gate mostly differ in length or at their end.
std::size_t QuickHash(const std::string& id)
{
    std::uint64_t tail = 0;
    const std::size_t length = std::min(id.size(), sizeof(tail));
    std::memcpy(&tail, id.data() + id.size() - length, length);
    return static_cast<std::size_t>(((tail + id.size()) * 0x9E3779B97F4A7C15ULL) >> 32);
}

} // namespace

bool ErrorIds::AreUnambiguous(const Events& events, std::size_t errorCount)
{
    for (const auto& event : events) {
        if (HoldsSeparator(event->GetId())) {
            return false;
        }
    }
    return errorCount * events.size() <= FEW_COMPARISONS ? AreUniqueAmongFew(events)
                                                         : AreUniqueAmongMany(events, errorCount);
}

bool ErrorIds::AreUniqueAmongMany(const Events& events, std::size_t errorCount)
{
    mIds.clear();
    std::size_t bits = 64;
    while (bits < errorCount * 8) {
        bits *= 2;
    }
    mBits.assign(bits, false);
    for (const auto& event : events) {
        if (IsError(event->GetResult()) && !Add(event->GetId())) {
            return false;
        }
    }
    return std::none_of(events.begin(), events.end(), [this](const auto& event) {
        return !IsError(event->GetResult()) && Holds(event->GetId());
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
