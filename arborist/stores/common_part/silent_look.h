#ifndef ARBORIST_STORES_COMMON_PART_SILENT_LOOK_H
#define ARBORIST_STORES_COMMON_PART_SILENT_LOOK_H

#include <cstddef>
#include <string>

namespace FT::sql {
class SqlDatabase;
}

/// Questions about a database that log nothing, whatever becomes of them.
namespace SilentLook {

/// Number of rows of a table; 0 if it can't be read.
std::size_t CountRows(const FT::sql::SqlDatabase& database, const std::string& table);

/// True if the statement returns a row or fails.
bool FindsRowOrFails(const FT::sql::SqlDatabase& database, const std::string& sql);

} // namespace SilentLook

#endif
