#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_LOG_READER_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_LOG_READER_H

#include <memory>

#include "arborist/stores/event_log/event_log_snapshot.h"
#include "arborist/stores/sql/sql_database.h"

/// Reads the event log into a snapshot. Null if the query for an id can't even be prepared.
///
/// Checks the tables first in which a query searches, as a search may miss in a damaged table what a scan finds. Then
/// reads an undamaged log in one pass, which touches everything that the query for any id touches, so that no such
/// query can fail. If the pass fails, reads each row by itself, and leaves an id with an unreadable row to its own
/// query. If rows may be found or not, depending on the way to them, leaves every id to its own query.
std::shared_ptr<const EventLogSnapshot> ReadEventLog(const FT::sql::Sqlite3Db& database);

#endif
