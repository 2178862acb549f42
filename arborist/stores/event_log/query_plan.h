#ifndef ARBORIST_STORES_EVENT_LOG_QUERY_PLAN_H
#define ARBORIST_STORES_EVENT_LOG_QUERY_PLAN_H

#include <string>

#include "arborist/stores/sql/sql_database.h"

/// Reads from SQLite's query plans how a statement would run. A version of SQLite that words its plans differently only
/// makes reading slower; no answer changes.
namespace QueryPlan {

/// True if `query`, the EventQuery of any id, scans event_info in its own order and looks up the partners of each row
/// by row number. Then the queries of all ids read the same pages of event_info.
bool IsScanOfEvents(const FT::sql::Sqlite3Db& database, const std::string& query);

/// The name by which event_info gives its row number; empty if there is none. A table may declare columns of its own
/// under the names that SQLite uses for row numbers, so that the name alone proves nothing.
std::string RowNameOfEvents(const FT::sql::Sqlite3Db& database);

} // namespace QueryPlan

#endif
