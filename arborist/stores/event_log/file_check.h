#ifndef ARBORIST_STORES_EVENT_LOG_FILE_CHECK_H
#define ARBORIST_STORES_EVENT_LOG_FILE_CHECK_H

#include <string>

#include "arborist/stores/sql/sql_database.h"

/// Asks SQLite for damage that reading alone may not show: where keys are out of order, a search misses rows that a
/// scan finds.
namespace FileCheck {

struct Result {
    enum class State {
        SOUND,
        /// Pages can't be read, and everything else is in order: a row is found by every way to it, or fails by each.
        UNREADABLE_PAGES,
        /// Whether a row is found may depend on the way to it.
        DISORDER,
    };

    State state = State::SOUND;
    /// The first of SQLite's messages; empty if the file is sound.
    std::string message{};
};

/// Checks the whole file. Never UNREADABLE_PAGES: an unreadable page of an index hides rows that the table has.
Result OfFile(const FT::sql::Sqlite3Db& database);

/// Checks `table` alone.
Result OfTable(const FT::sql::Sqlite3Db& database, const std::string& table);

/// The greater damage of two.
Result WorseOf(Result one, Result other);

} // namespace FileCheck

#endif
