#ifndef ARBORIST_STORES_COMMON_PART_DERIVED_TABLES_H
#define ARBORIST_STORES_COMMON_PART_DERIVED_TABLES_H

#include <memory>
#include <string>
#include <vector>

#include "arborist/model/condition.h"

class EventIdList;

/// The tables of the derived database (DevicePaths::DerivedDatabase). Each is dropped, made and filled anew.
namespace DerivedTables {

/// Name and columns as the rule set gives them. A parameter's key is the name of a column and its type the column's; a
/// null parameter or an empty key counts for none.
struct Table {
    std::string name;
    std::vector<std::shared_ptr<Param>> columns;
};

/// Builds a table of the events of `eventDbPath` with these ids. False, with a line, when a step fails or no event is
/// found; what was done stays.
bool BuildFromEvents(const Table& table, const EventIdList& ids, const std::string& eventDbPath);

/// Builds a table of one row, which is the same whatever the device; reads no event log. False, with a line, when a
/// step fails.
bool BuildFixed(const Table& table);

} // namespace DerivedTables

#endif
