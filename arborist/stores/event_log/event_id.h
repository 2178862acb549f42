#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_ID_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_ID_H

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>

#include "arborist/stores/sql/sql_cursor.h"

/// The number that SQLite compares with the id of a query, if column 0 has the id. Only a whole number is sure to be equal
/// to it: text compares as the number that it begins with, or not at all. `Reading` is a row of a cursor or a scan.
template <typename Reading>
std::int64_t EventIdIn(const Reading& reading, bool isInteger)
{
    constexpr double BEYOND_IDS = 1e12; // fits into 64 bits, and no rule can name an id as great
    return isInteger ? reading.GetInteger(0)
                     : static_cast<std::int64_t>(std::clamp(reading.GetReal(0), -BEYOND_IDS, BEYOND_IDS));
}

/// The same if a rule can name it.
inline std::optional<std::int32_t> EventIdOf(const FT::sql::SqlCursor& row)
{
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t id = EventIdIn(row, row.GetType(0) == FT::sql::SqlCursor::ColumnType::INTEGER);
    return id < Limits::min() || id > Limits::max() ? std::nullopt : std::optional(static_cast<std::int32_t>(id));
}

#endif
