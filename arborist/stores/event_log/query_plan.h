#ifndef ARBORIST_STORES_EVENT_LOG_QUERY_PLAN_H
#define ARBORIST_STORES_EVENT_LOG_QUERY_PLAN_H

#include <string>

#include "arborist/stores/sql/sql_database.h"

/// How SQLite would run a statement, and what follows from that. Words that a version of SQLite says otherwise are
/// taken for another plan, which costs time and no answer.
namespace QueryPlan {

/// Whether `query`, the EventQuery of any id, goes through all of event_info in its own order and finds the partners of
/// each row by their row numbers: then every id's query meets the same pages of event_info.
bool IsScanOfEvents(const FT::sql::Sqlite3Db& database, const std::string& query);

/// The column that is the row number of event_info. A table may declare columns of its own under each of the names that
/// SQLite gives to row numbers, so that the name alone says nothing. Empty where there is none.
std::string RowNameOfEvents(const FT::sql::Sqlite3Db& database);

} // namespace QueryPlan

#endif
