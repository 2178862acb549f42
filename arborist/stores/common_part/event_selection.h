#ifndef ARBORIST_STORES_COMMON_PART_EVENT_SELECTION_H
#define ARBORIST_STORES_COMMON_PART_EVENT_SELECTION_H

#include <cstdint>
#include <string>
#include <vector>

#include "arborist/stores/common_part/event_id_list.h"

namespace FT::sql {
class SqlDatabase;
}

namespace Json {
class Value;
}

/// Which events of the log a derived table is made of: by id, by age, by software version, and none from before the
/// last reset or update. Nothing is locked.
namespace EventSelection {

/// Appends a row for each selected event, in the order in which SQLite delivers them; SelectedRows tells what it holds.
/// The log is only read, but for a missing one, which comes into being empty. What fails logs a line and leaves `rows`
/// as they were.
void GetLumbraDataByFilter(const EventIdList& ids, const std::string& eventDbPath, std::vector<Json::Value>& rows);

/// `baseSql` with its condition: the events with these ids of the last thirty days; without ids, those of a default
/// class of the last seven.
std::string GenerateSql(const EventIdList& ids, const std::string& baseSql);

/// Key of the newest row of Settings::VERSION_NAME in the log's table of versions; 0 when it isn't known.
std::int64_t QueryVersion(const FT::sql::SqlDatabase& database);

} // namespace EventSelection

#endif
