#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_EVENT_COUNTS_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_EVENT_COUNTS_H

#include <cstdint>
#include <limits>
#include <map>

namespace diagnosis::lint {

/// The number of rows of each event in an event log.
class EventCounts {
public:
    void Add(std::int64_t event, std::uint64_t rows)
    {
        mRows[event] += rows;
        mSums.clear();
    }

    /// Whether some event from `first` to `last`, both included, has a row.
    bool HasAny(std::int64_t first, std::int64_t last) const
    {
        const auto found = mRows.lower_bound(first);
        return found != mRows.end() && found->first <= last;
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
    std::uint64_t Rows() const { return Before(std::numeric_limits<std::int64_t>::max()).rows; }

private:
    /// Of the events below `event`. Sums up at the first call after Add, as rules may ask for the same ones again.
    Held Before(std::int64_t event) const
    {
        if (mSums.size() != mRows.size()) {
            mSums.clear();
            Held sum;
            for (const auto& [id, rows] : mRows) {
                mSums.emplace_hint(mSums.end(), id, sum);
                sum = {sum.events + 1, sum.rows + rows};
            }
            mAll = sum;
        }
        const auto next = mSums.lower_bound(event);
        return next == mSums.end() ? mAll : next->second;
    }

    /// Events that have rows.
    std::map<std::int64_t, std::uint64_t> mRows;
    /// For each event, the sums of the events below it.
    mutable std::map<std::int64_t, Held> mSums;
    mutable Held mAll;
};

} // namespace diagnosis::lint

#endif
