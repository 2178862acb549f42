#ifndef ARBORIST_STORES_EVENT_LOG_TABLE_TREE_H
#define ARBORIST_STORES_EVENT_LOG_TABLE_TREE_H

#include <string>

#include "arborist/stores/sql/sql_database.h"

/// The tree of pages that holds the rows of a table.
namespace TableTree {

/// True if the tree is in order: a search for a row number finds the row exactly if a scan finds it, whatever was
/// searched for before, and neither meets a page that can't be read. Reads each page once, in a twentieth of the time
/// of SQLite's own check.
///
/// False says nothing: the tree may be damaged, or be of a kind that this doesn't know (rows longer than a page, a log
/// in WAL mode). Ask FileCheck then. Call it within a ReadTransaction.
bool IsInOrder(const FT::sql::Sqlite3Db& database, const std::string& table);

} // namespace TableTree

#endif
