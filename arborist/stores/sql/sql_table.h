#ifndef ARBORIST_STORES_SQL_SQL_TABLE_H
#define ARBORIST_STORES_SQL_SQL_TABLE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "arborist/stores/sql/sql_operator.h"

namespace FT::sql {

/// A table by name and fields: builds its statements, runs them and holds the rows of the last one.
///
/// The array of fields belongs to the caller and must outlive the table and its records. It ends at its count or at
/// a field made from FieldUseEnd. Every operation that runs a statement, Exists included, drops the rows of the one
/// before, and with them the pointers to records and values. Texts go into the statements as they are, names unquoted.
class SqlTable {
public:
    SqlTable(const Sqlite3Db& database, std::string tableName, SqlField* fields, std::size_t count);
    SqlTable(const SqlTable&) = delete;
    SqlTable& operator=(const SqlTable&) = delete;
    virtual ~SqlTable() = default;

    /// Takes the fields up to the ending one and numbers them. Of two with one name the later is found by name.
    void InitFields(SqlField* fields, std::size_t count);

    const std::string& GetName() const { return name; }
    /// What a SqlRecord for this table is built from.
    const FieldMap* GetFields() const { return &fieldMap; }
    std::uint64_t GetRecordCount() const { return sqlOperator.GetCount(); }
    /// What the database says of the last statement, when that failed.
    const std::string& GetErrorMessage() const { return sqlOperator.GetErrorMessage(); }
    const SqlRecord* GetRecord(std::uint64_t index) const { return sqlOperator.GetRecord(index); }
    /// The first row, whether or not the statement succeeded.
    const SqlRecord* GetTopRecord() const { return GetRecord(0); }

    /// True when the last statement succeeded.
    bool IsOk() const { return sqlOperator.IsOk(); }

    bool Exists();
    /// True also when the table exists, whatever its columns.
    bool Create();
    /// True also when there is nothing to remove.
    bool Remove();
    /// False when the table is missing, like Open and DeleteRecords.
    bool Truncate();
    bool Open();
    bool Open(const std::string& condition);
    /// Runs any statement; its rows are read with the fields of this table.
    bool Query(const std::string& sql);
    bool AddRecord(const SqlRecord& record);
    bool UpdateRecord(const SqlRecord& record);
    bool DeleteRecords(const std::string& condition);
    const SqlRecord* GetRecordByKeyId(long long key);
    /// -1 when the table can't be counted.
    std::int32_t GetTotalRecordCount();

    std::string GetDefinition() const;
    std::string GetFieldsDefinition() const;
    std::string GetFieldsString() const;
    std::string GetAddString(const SqlRecord& record) const;
    /// Sets every column but the first, which is the key. A record without a key updates every row.
    std::string GetUpdateString(const SqlRecord& record) const;

private:
    bool ExistsWithoutFields();

    std::string name;
    SqlOperator sqlOperator;
    FieldList fieldList;
    FieldMap fieldMap;
};

} // namespace FT::sql

#endif
