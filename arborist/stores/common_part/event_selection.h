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

/// Selects the events of the log for a derived table: by id, age and software version, and only after the last reset or
/// update. Locks nothing.
namespace EventSelection {

/// Appends a row for each selected event, in the order in which SQLite returns them; see SelectedRows for the content
/// of a row. Only reads the log, but creates an empty file if it is missing. On failure logs a line and leaves `rows`
/// unchanged.
///
/// Sets `isWhole`, if it is not null, to whether the log was read to its end, every `extra` in it could be read, and it
/// has a time for every event with these ids; the selection can't see an event without one. That costs another
/// statement, which logs nothing.
void GetLumbraDataByFilter(const EventIdList& ids, const std::string& eventDbPath, std::vector<Json::Value>& rows,
                           bool* isWhole = nullptr);

/// The condition that an event has one of these ids, or one of the default class without ids.
std::string ConditionOf(const EventIdList& ids);

/// The seconds for which an event stays selected.
std::int64_t PeriodOf(const EventIdList& ids);

/// `baseSql` followed by its condition: the events of the last thirty days with these ids; without ids, the events of
/// the last seven days of a default class.
std::string GenerateSql(const EventIdList& ids, const std::string& baseSql);

/// Key of the newest row of Settings::VERSION_NAME in the log's table of versions; 0 if there is none.
std::int64_t QueryVersion(const FT::sql::SqlDatabase& database);

} // namespace EventSelection

#endif
