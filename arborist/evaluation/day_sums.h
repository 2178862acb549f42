#ifndef ARBORIST_EVALUATION_DAY_SUMS_H
#define ARBORIST_EVALUATION_DAY_SUMS_H

#include <algorithm>
#include <cstdint>

#include "arborist/stores/event_log/event_rows.h"

/// Adds like a signed 32-bit number and wraps on overflow.
inline void AddWrapping(std::int32_t& sum, std::int32_t summand)
{
    sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum) + static_cast<std::uint32_t>(summand));
}

/// The same for a difference.
inline void SubtractWrapping(std::int32_t& from, std::int32_t number)
{
    from = static_cast<std::int32_t>(static_cast<std::uint32_t>(from) - static_cast<std::uint32_t>(number));
}

/// The greatest count. Day 0 has no rows, so that no peak is less than its count.
inline std::int32_t PeakOf(const EventRows::DayCounts& days)
{
    std::int32_t peak = 0;
    for (const std::int32_t count : days) {
        peak = std::max(peak, count);
    }
    return peak;
}

#endif
