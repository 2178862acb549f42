#ifndef ARBORIST_STORES_COMMON_PART_SELECTED_ROWS_H
#define ARBORIST_STORES_COMMON_PART_SELECTED_ROWS_H

#include <cstdint>
#include <string>
#include <vector>

namespace FT::sql {
class SqlDatabase;
}

namespace Json {
class Value;
}

/// Turns the events that were selected for a derived table into its rows.
namespace SelectedRows {

/// Runs a statement that selects an event's `extra` and its time, in this order, and appends a row for each event after
/// `minTime`: the object of its `extra` with the member "occurrence_time", or this member alone if the `extra` is no
/// object. Leaves out totals of a statistic. On failure logs a line; rows read before it stay. True if all rows were
/// read, and every `extra` that is not empty is a JSON object.
bool QueryDataSet(const FT::sql::SqlDatabase& database, const std::string& sql, std::vector<Json::Value>& rows,
                  std::int64_t minTime);

} // namespace SelectedRows

#endif
