#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_EVENT_COUNTS_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_EVENT_COUNTS_H

#include <cstdint>
#include <map>

namespace diagnosis::lint {

/// How many rows of each event an event log holds.
class EventCounts {
public:
    void Add(std::int64_t event, std::uint64_t rows) { mRows[event] += rows; }

    /// Whether some event from `first` to `last`, both included, has a row.
    bool HasAny(std::int64_t first, std::int64_t last) const
    {
        const auto found = mRows.lower_bound(first);
        return found != mRows.end() && found->first <= last;
    }

private:
    /// Events that have rows.
    std::map<std::int64_t, std::uint64_t> mRows;
};

} // namespace diagnosis::lint

#endif
