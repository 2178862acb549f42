#ifndef ARBORIST_STORES_SQL_SQL_RECORD_H
#define ARBORIST_STORES_SQL_SQL_RECORD_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "arborist/stores/sql/sql_field.h"
#include "arborist/stores/sql/sql_value.h"

namespace FT::sql {

/// The fields of a table in the order of its columns, not owned.
using FieldList = std::vector<SqlField*>;
/// The fields of a table by column name, not owned.
using FieldMap = std::map<std::string, SqlField*>;

/// One row: a value for each column, in column order, and the table's field map, from which the columns have their
/// names.
///
/// Does not own the map, which must outlive the record. For a column that the map or the row doesn't have, setters do
/// nothing and getters return null. The stores set columns by name; the other setters and GetColumnCount are kept for
/// the tests.
class SqlRecord {
public:
    /// Creates one default value for each entry of `fieldMap`; none for null.
    explicit SqlRecord(const FieldMap* fieldMap);
    /// A copy of a record without a map is empty.
    SqlRecord(const SqlRecord& other);
    SqlRecord(SqlRecord&&) noexcept = default;
    SqlRecord& operator=(const SqlRecord&) = default;
    SqlRecord& operator=(SqlRecord&&) noexcept = default;
    virtual ~SqlRecord() = default;

    void InitColumnCount(std::size_t count);
    /// `position` must be below the column count.
    void InitColumnValue(std::size_t position, std::string text, FieldType type);
    std::size_t GetColumnCount() const { return values.size(); }

    const SqlField* GetFieldByName(const std::string& name) const;
    /// The pointers are valid as long as the record; a record that a table owns lives until the table's next statement.
    const SqlValue* GetValue(std::size_t position) const;
    const SqlValue* GetValue(const std::string& name) const;
    const SqlValue* GetValue(const SqlField& field) const;

    void SetNull(const SqlField& field);
    void SetNull(const std::string& name);
    void SetNull(std::size_t position);
    void SetInteger(const SqlField& field, long long number);
    void SetInteger(const std::string& name, long long number);
    void SetInteger(std::size_t position, long long number);
    void SetDouble(const SqlField& field, double number);
    void SetDouble(const std::string& name, double number);
    void SetDouble(std::size_t position, double number);
    void SetString(const SqlField& field, const std::string& text);
    void SetString(const std::string& name, const std::string& text);
    void SetString(std::size_t position, const std::string& text);
    /// Ignores the third argument, the greatest length of the text, on purpose: SQLite's texts have no length limit.
    void SetString(const std::string& name, const std::string& text, int ignoredLength);

    /// The list of values of an insert: "null, 'a', 7". Skips a field without a value, its comma included.
    std::string ToSql(const FieldList& fieldList) const;

private:
    SqlValue* FindValue(std::size_t position);
    SqlValue* FindValue(const std::string& name);

    const FieldMap* fields;
    std::vector<SqlValue> values;
};

} // namespace FT::sql

#endif
