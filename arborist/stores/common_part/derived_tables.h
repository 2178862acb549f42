#ifndef ARBORIST_STORES_COMMON_PART_DERIVED_TABLES_H
#define ARBORIST_STORES_COMMON_PART_DERIVED_TABLES_H

#include <memory>
#include <string>
#include <vector>

#include "arborist/model/common_part.h"

class EventIdList;

/// Builds the tables of the derived database (DevicePaths::DerivedDatabase). Each is dropped, created and filled anew.
namespace DerivedTables {

/// Name and columns of a table, from the rule set. A parameter gives the name of a column as its key and the column's
/// type; null parameters and empty keys are ignored.
struct Table {
    std::string name;
    std::vector<std::shared_ptr<Param>> columns;
};
using State = ThresholdOrLumbraBean::TableState;

/// Adds the ids of the events that the items of a bean select. False if an item selects the id 0.
bool GetEventIdList(const ThresholdOrLumbraBean::LumbraDataList& dataItems, EventIdList& ids);

/// Builds a table from the events with these ids in `eventDbPath`. False, with a line, if a step fails or no event is
/// found; earlier steps are not undone.
/// Sets `state`, if it is not null, which takes one more query. The table is whole if no step failed, no row was lost,
/// the log was read whole, and every value for a column could be used; it may be empty.
bool BuildFromEvents(
    const Table& table, const EventIdList& ids, const std::string& eventDbPath, State* state = nullptr);

/// Builds a table of one row that is the same on every device, without reading the event log. False, with a line, if a
/// step fails. Sets `state`, if it is not null.
bool BuildFixed(const Table& table, State* state = nullptr);

} // namespace DerivedTables

#endif
