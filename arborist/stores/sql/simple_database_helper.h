#ifndef ARBORIST_STORES_SQL_SIMPLE_DATABASE_HELPER_H
#define ARBORIST_STORES_SQL_SIMPLE_DATABASE_HELPER_H

#include <cstdint>
#include <string>

#include "arborist/stores/sql/sql_table.h"

namespace FT::sql {

/// The operations on tables that the stores share. Has no state: make one where it is needed.
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

    /// Reads the rows of the table, those of `condition` if it isn't empty, and counts them. When the table can't be
    /// read, the rows that came before the failure count.
    std::uint64_t GetRecordCount(SqlTable& table, const std::string& condition) const;
    /// The same for a whole statement; an empty one gives all ones.
    std::uint64_t GetRecordCountByFullSql(SqlTable& table, const std::string& sql) const;

    /// Null when `index` is not below `count`, the row isn't there or has no such column.
    const SqlValue* GetFieldValueByIndex(
        const SqlTable& table, std::uint64_t index, std::uint64_t count, const std::string& name) const;
    const SqlValue* GetFieldValueByRecord(const SqlRecord& record, const std::string& name) const;
};

} // namespace FT::sql

#endif
