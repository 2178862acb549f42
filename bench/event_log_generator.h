#ifndef ARBORIST_BENCH_EVENT_LOG_GENERATOR_H
#define ARBORIST_BENCH_EVENT_LOG_GENERATOR_H

#include <cstdint>
#include <string>

/// An event log of any size, as a monitoring service writes it: times ascend with row numbers, and each row's extra is
/// a small JSON object. Equal arguments give equal rows.
struct EventLogShape {
    std::int64_t rows = 1000000;
    /// Different event ids, in blocks of 1,000 consecutive ones; block n, from 0, begins at FirstIdOfBlock(n).
    std::int32_t ids = 6000;
    /// Rows are spread evenly over this many days before `now`.
    std::int32_t days = 30;
    std::int64_t now = 1700000000;
};

/// Distance between the first ids of two blocks; each block is in the middle of its range.
constexpr std::int32_t BLOCK_DISTANCE = 10000000;
constexpr std::int32_t FirstIdOfBlock(std::int32_t block)
{
    return (block + 1) * BLOCK_DISTANCE + BLOCK_DISTANCE / 2;
}

/// Version of three rows in four; half of the others have another version and half have none.
inline constexpr char GENERATED_VERSION[] = "2.1.0";

/// Writes the log anew, with the folders above it. Extras have the members "level" (0 to 4), "module" (one of 40
/// texts), "pid" (different in most rows), "temp" (20 to 99) and, in one row of three, "COUNT".
void GenerateEventLog(const std::string& path, const EventLogShape& shape);

#endif
