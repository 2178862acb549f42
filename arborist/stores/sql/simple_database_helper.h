#ifndef ARBORIST_STORES_SQL_SIMPLE_DATABASE_HELPER_H
#define ARBORIST_STORES_SQL_SIMPLE_DATABASE_HELPER_H

#include <cstdint>
#include <string>

#include "arborist/stores/sql/sql_table.h"

namespace FT::sql {

/// Operations on tables that the stores share. Stateless: create one where it is needed.
///
/// The stores call CreateTable, AddRecord, UpdateRecord, GetRecordCountByFullSql and GetFieldValueByIndex; the rest is kept
/// for the tests.
class SimpleDatabaseHelper {
public:
    bool CreateTable(SqlTable& table) const;
    bool RemoveTable(SqlTable& table) const;
    bool TruncateTable(SqlTable& table) const;
    bool AddRecord(SqlTable& table, const SqlRecord& record) const;
    bool UpdateRecord(SqlTable& table, const SqlRecord& record) const;
    bool DeleteRecord(SqlTable& table, const std::string& condition) const;
    bool CreateInfoOnTable(SqlTable& table, const std::string& sql) const;
    const SqlRecord* GetRecordByKeyId(SqlTable& table, std::int32_t key) const;

    /// Reads the rows of the table, only those that meet `condition` if it isn't empty, and returns their number. On a
    /// failure returns the number of rows read before it.
    std::uint64_t GetRecordCount(SqlTable& table, const std::string& condition) const;
    /// The same for a complete statement; for an empty one returns the largest number.
    std::uint64_t GetRecordCountByFullSql(SqlTable& table, const std::string& sql) const;

    /// Null if `index` is not below `count`, or if the row or the column doesn't exist.
    const SqlValue* GetFieldValueByIndex(
        const SqlTable& table, std::uint64_t index, std::uint64_t count, const std::string& name) const;
    const SqlValue* GetFieldValueByRecord(const SqlRecord& record, const std::string& name) const;
};

} // namespace FT::sql

#endif
