#include "arborist/deduction/error_ids.h"

#include <algorithm>

#include "arborist/model/event.h"

namespace {

// Up to this many comparisons take less time than building a set.
constexpr std::size_t FEW_COMPARISONS = 64;

// Smallest filter size that keeps false positives rare.
constexpr std::size_t LEAST_MARKS = 512;

bool AreUnambiguousAmongFew(const ErrorIds::Events& events, const ErrorIds::Indexes& inError)
{
    for (std::size_t event = 0; event < events.size(); ++event) {
        const Event& asked = *events[event];
        const auto hasSameId = [&](std::size_t other) { return other != event && events[other]->HasSameIdAs(asked); };
        if (asked.HasSeparatorInId() || std::any_of(inError.begin(), inError.end(), hasSameId)) {
            return false;
        }
    }
    return true;
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
    std::size_t places = LEAST_MARKS;
    while (places < inError.size() * 8) {
        places *= 2;
    }
    mMarks.assign(places, 0);
    for (const std::size_t event : inError) {
        if (!Add(*events[event])) {
            return false;
        }
    }
    // A single pass, as a gate may have very many events.
    return std::none_of(events.begin(), events.end(), [this](const auto& event) {
        return event->HasSeparatorInId() ||
            (IsMarked(*event) && !IsError(event->GetResult()) && mIds.count(event->GetId()) != 0);
    });
}

bool ErrorIds::Add(const Event& event)
{
    mMarks[event.GetIdSketch() & (mMarks.size() - 1)] = 1;
    return mIds.insert(event.GetId()).second;
}

bool ErrorIds::IsMarked(const Event& event) const
{
    return mMarks[event.GetIdSketch() & (mMarks.size() - 1)] != 0;
}
