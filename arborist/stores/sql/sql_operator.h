#ifndef ARBORIST_STORES_SQL_SQL_OPERATOR_H
#define ARBORIST_STORES_SQL_SQL_OPERATOR_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_record.h"

namespace FT::sql {

/// Runs statements given as text and holds the rows of the last one, all of them.
///
/// Every statement drops the rows of the one before: pointers to records and values live until then. Connection, list
/// and map aren't owned and must outlive the operator.
class SqlOperator {
public:
    /// Keeps no rows: there are no fields to hold them.
    explicit SqlOperator(const Sqlite3Db& database);
    SqlOperator(const Sqlite3Db& database, const FieldList* list, const FieldMap* map);
    SqlOperator(const SqlOperator&) = delete;
    SqlOperator& operator=(const SqlOperator&) = delete;
    virtual ~SqlOperator();

    /// Runs a statement and keeps its rows, those too that came before it failed. Columns go to fields by position.
    /// Failure answers false with a line at ERROR.
    bool Execute(const std::string& sql);
    /// The same without keeping rows.
    bool ExecuteNoCallback(const std::string& sql);
    /// True when the last statement succeeded.
    bool IsOk() const { return resultCode == 0; }

    /// What the database says of the last statement; empty when it succeeded, and where there is no database.
    const std::string& GetErrorMessage() const { return errorMessage; }

    std::uint64_t GetCount() const { return records.size(); }
    /// Null when there is no such row; asks nothing else, so the rows of a failed statement are seen.
    const SqlRecord* GetRecord(std::uint64_t index) const;
    /// The first row; null also when the statement failed.
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
