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

/// What a derived table takes over of the events that were selected for it.
namespace SelectedRows {

/// Runs a statement that selects an event's `extra` and its time, in this order, and appends a row for each event after
/// `minTime`: the object of its `extra` with the member "occurrence_time", or this member alone where the `extra` is no
/// object. Totals of a statistic fall away. What fails logs a line; the rows that came before stay.
void QueryDataSet(const FT::sql::SqlDatabase& database, const std::string& sql, std::vector<Json::Value>& rows,
                  std::int64_t minTime);

} // namespace SelectedRows

#endif
