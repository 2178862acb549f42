#ifndef ARBORIST_STORES_SQL_SQL_TABLE_H
#define ARBORIST_STORES_SQL_SQL_TABLE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "arborist/stores/sql/sql_operator.h"

namespace FT::sql {

/// A table by name and fields: builds its statements, runs them and keeps the rows of the last one.
///
/// The caller owns the array of fields, which must outlive the table and its records. It ends at its count or at a
/// field made from FieldUseEnd. Every operation that runs a statement, Exists included, drops the rows of the previous
/// one and so invalidates pointers to its records and values. Texts are put into the statements without escaping, names
/// without quotes.
///
/// The stores leave Remove, Truncate, Open, DeleteRecords, GetRecordByKeyId and GetTotalRecordCount alone: they are
/// kept for the tests.
class SqlTable {
public:
    SqlTable(const Sqlite3Db& database, std::string tableName, SqlField* fields, std::size_t count);
    SqlTable(const SqlTable&) = delete;
    SqlTable& operator=(const SqlTable&) = delete;
    virtual ~SqlTable() = default;

    /// Takes the fields up to the end mark and numbers them. Of two fields with the same name, a look-up by name finds
    /// the later.
    void InitFields(SqlField* fields, std::size_t count);

    const std::string& GetName() const { return name; }
    /// The field map to build a SqlRecord of this table from.
    const FieldMap* GetFields() const { return &fieldMap; }
    std::uint64_t GetRecordCount() const { return sqlOperator.GetCount(); }
    /// The database's error message if the last statement failed.
    const std::string& GetErrorMessage() const { return sqlOperator.GetErrorMessage(); }
    const SqlRecord* GetRecord(std::uint64_t index) const { return sqlOperator.GetRecord(index); }
    /// The first row, whether or not the statement succeeded.
    const SqlRecord* GetTopRecord() const { return GetRecord(0); }

    /// True if the last statement succeeded.
    bool IsOk() const { return sqlOperator.IsOk(); }

    bool Exists();
    /// Creates the table. True also if it exists already, whatever its columns.
    bool Create();
    /// Drops the table. True also if there is none.
    bool Remove();
    /// Removes all rows. Like Open and DeleteRecords, false if the table is missing.
    bool Truncate();
    bool Open();
    bool Open(const std::string& condition);
    /// Runs any statement and reads its rows with the fields of this table.
    bool Query(const std::string& sql);
    bool AddRecord(const SqlRecord& record);
    bool UpdateRecord(const SqlRecord& record);
    bool DeleteRecords(const std::string& condition);
    const SqlRecord* GetRecordByKeyId(long long key);
    /// -1 if the rows can't be counted.
    std::int32_t GetTotalRecordCount();

    std::string GetDefinition() const;
    std::string GetFieldsDefinition() const;
    std::string GetFieldsString() const;
    std::string GetAddString(const SqlRecord& record) const;
    /// An update of every column but the first, which is the key. A record without a key updates every row.
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
