#ifndef ARBORIST_STORES_SQL_SQL_OPERATOR_H
#define ARBORIST_STORES_SQL_SQL_OPERATOR_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_record.h"

namespace FT::sql {

/// Runs SQL statements and keeps all rows of the last one.
///
/// Each statement drops the rows of the previous one and so invalidates pointers to its records and values. Does not
/// own the connection, the list and the map, which must outlive the operator.
class SqlOperator {
public:
    /// Without fields; keeps no rows.
    explicit SqlOperator(const Sqlite3Db& database);
    SqlOperator(const Sqlite3Db& database, const FieldList* list, const FieldMap* map);
    SqlOperator(const SqlOperator&) = delete;
    SqlOperator& operator=(const SqlOperator&) = delete;
    virtual ~SqlOperator();

    /// Runs a statement and keeps its rows, including those read before a failure. Assigns columns to fields by
    /// position. On failure returns false and logs a line at ERROR.
    bool Execute(const std::string& sql);
    /// The same without keeping rows.
    bool ExecuteNoCallback(const std::string& sql);
    /// True if the last statement succeeded.
    bool IsOk() const { return resultCode == 0; }

    /// The database's error message for the last statement; empty if it succeeded or there is no database.
    const std::string& GetErrorMessage() const { return errorMessage; }

    std::uint64_t GetCount() const { return records.size(); }
    /// Null if there is no such row. Rows read before a failure are returned, too.
    const SqlRecord* GetRecord(std::uint64_t index) const;
    /// The first row; null if there is none or the statement failed.
    const SqlRecord* GetTopRecord() const;
    const SqlValue* GetTopRecordFirstValue() const;
    void Clear();

private:
    using RowCallback = int (*)(void*, int, char**, char**);
    struct KeepingRows;
    struct WithoutRows;

    static int LoadRecord(void* context, int columnCount, char** columnTexts, char** columnNames);
    bool IsFull(int columnCount, char** columnTexts);
    void KeepRow(int columnCount, char** columnTexts);
    template <typename Way>
    bool Run(const std::string& sql, RowCallback callback);

    const Sqlite3Db& db;
    std::string errorMessage;
    std::int32_t resultCode = 1;
    const FieldList* fieldList;
    const FieldMap* fieldMap;
    std::vector<SqlRecord> records;
    std::uint64_t keptBytes = 0;
};

} // namespace FT::sql

#endif
