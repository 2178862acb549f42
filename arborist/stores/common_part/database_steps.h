#ifndef ARBORIST_STORES_COMMON_PART_DATABASE_STEPS_H
#define ARBORIST_STORES_COMMON_PART_DATABASE_STEPS_H

#include <string>

#include "arborist/stores/sql/sql_database.h"

/// Prepares an open database for writing: restricts what statements may do, and sets whether they wait for the disk
/// (Settings::TEMPORARY_STORES).
void PrepareForWriting(FT::sql::SqlDatabase& database, const FT::sql::SqlLimits& limits = {});

/// True if an open database has a table of this name. False, with a line, if it can't be read.
bool IsTableExist(const FT::sql::SqlDatabase& database, const std::string& tableName);

#endif
