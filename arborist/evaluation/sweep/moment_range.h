#ifndef ARBORIST_EVALUATION_SWEEP_MOMENT_RANGE_H
#define ARBORIST_EVALUATION_SWEEP_MOMENT_RANGE_H

#include <cstdint>
#include <vector>

/// Seconds since the epoch, in any order; the same may be listed twice.
using Moments = std::vector<std::int64_t>;

/// The moments of a sweep, both ends inclusive. All rules are asked at the first one, and then at those moments at which an
/// answer may change.
struct MomentRange {
    std::int64_t first = 0;
    std::int64_t last = 0;

    bool HasChangeAt(std::int64_t moment) const { return moment > first && moment <= last; }
    /// Adds a moment at which something may change, unless it lies outside.
    void Add(std::int64_t moment, Moments& moments) const
    {
        if (HasChangeAt(moment)) {
            moments.push_back(moment);
        }
    }
};

#endif
