#ifndef ARBORIST_STORES_COMMON_PART_DATABASE_STEPS_H
#define ARBORIST_STORES_COMMON_PART_DATABASE_STEPS_H

#include <string>

#include "arborist/stores/sql/sql_database.h"

/// Says of an open database that the library writes what statements may do to it, and whether they wait for the disk
/// (Settings::TEMPORARY_STORES).
void PrepareForWriting(FT::sql::SqlDatabase& database, const FT::sql::SqlLimits& limits = {});

/// Whether an open database has a table of this name. False also when it can't be read, with a line.
bool IsTableExist(const FT::sql::SqlDatabase& database, const std::string& tableName);

#endif
