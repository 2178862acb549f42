#include "diagnosis/sweep/timeline.h"

#include <algorithm>

namespace diagnosis {

const char* SweptStateText(SweptState state)
{
    switch (state) {
    case SweptState::TRUE:
        return "true";
    case SweptState::FALSE:
        return "false";
    case SweptState::NOT_JUDGED:
        break;
    }
    return "not_judged";
}

void Timeline::Set(std::int64_t from, SweptState state, const std::string& word)
{
    if (!mIntervals.empty() && mIntervals.back().from == from) {
        mIntervals.pop_back();
    }
    if (!mIntervals.empty() && mIntervals.back().state == state && mIntervals.back().word == word) {
        return;
    }
    mIntervals.push_back({from, from, state, word});
}

void Timeline::Close(std::int64_t until)
{
    while (!mIntervals.empty() && mIntervals.back().from > until) {
        mIntervals.pop_back();
    }
    for (std::size_t place = 0; place < mIntervals.size(); ++place) {
        mIntervals[place].until = place + 1 < mIntervals.size() ? mIntervals[place + 1].from - 1 : until;
    }
}

std::optional<std::int64_t> Timeline::GetFirst(SweptState state) const
{
    const auto first = std::find_if(mIntervals.begin(), mIntervals.end(),
        [state](const SweptInterval& interval) { return interval.state == state; });
    return first == mIntervals.end() ? std::nullopt : std::optional(first->from);
}

std::uint64_t Timeline::GetSeconds(SweptState state) const
{
    std::uint64_t seconds = 0;
    for (const SweptInterval& interval : mIntervals) {
        seconds += interval.state == state ? static_cast<std::uint64_t>(interval.until - interval.from) + 1 : 0;
    }
    return seconds;
}

std::size_t Timeline::GetTimes(SweptState state) const
{
    std::size_t times = 0;
    for (std::size_t place = 0; place < mIntervals.size(); ++place) {
        const bool isBegun = place > 0 && mIntervals[place - 1].state == state;
        times += mIntervals[place].state == state && !isBegun ? 1 : 0;
    }
    return times;
}

} // namespace diagnosis
