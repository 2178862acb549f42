#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_EVENT_COUNTS_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_EVENT_COUNTS_H

#include <cstdint>
#include <limits>
#include <map>

namespace diagnosis::lint {

/// The number of rows of each event in an event log.
class EventCounts {
public:
    /// The rows of each event that has any.
    using RowsByEvent = std::map<std::int64_t, std::uint64_t>;

    explicit EventCounts(const RowsByEvent& rows = {})
    {
        for (const auto& [event, number] : rows) {
            mSums.emplace_hint(mSums.end(), event, mAll);
            mAll = {mAll.events + 1, mAll.rows + number};
        }
    }

    /// Whether some event from `first` to `last`, both included, has a row.
    bool HasAny(std::int64_t first, std::int64_t last) const
    {
        const auto found = mSums.lower_bound(first);
        return found != mSums.end() && found->first <= last;
    }

    /// How many events from `first` to `last`, both included, have rows, and how many rows.
    struct Held {
        std::uint64_t events = 0;
        std::uint64_t rows = 0;
    };
    Held Of(std::int64_t first, std::int64_t last) const
    {
        const Held upTo = Before(last + 1);
        const Held below = Before(first);
        return first > last ? Held{} : Held{upTo.events - below.events, upTo.rows - below.rows};
    }

    /// The number of rows of all events.
    std::uint64_t Rows() const { return mAll.rows; }

private:
    /// Of the events below `event`.
    Held Before(std::int64_t event) const
    {
        const auto next = mSums.lower_bound(event);
        return next == mSums.end() ? mAll : next->second;
    }

    /// For each event that has rows, the sums of the events below it: rules may ask for the same events many times.
    std::map<std::int64_t, Held> mSums;
    Held mAll;
};

} // namespace diagnosis::lint

#endif
