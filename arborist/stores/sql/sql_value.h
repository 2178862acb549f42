#ifndef ARBORIST_STORES_SQL_SQL_VALUE_H
#define ARBORIST_STORES_SQL_SQL_VALUE_H

#include <string>

#include "arborist/stores/sql/sql_field.h"

namespace FT::sql {

/// One column of one row, kept as text. Its type matters only when it is read as a number or written as SQL. The stores
/// set texts and whole numbers; SetNull, SetDouble and AsDouble are kept for the tests.
class SqlValue {
public:
    SqlValue() = default;
    SqlValue(const SqlValue&) = default;
    SqlValue(SqlValue&&) noexcept = default;
    SqlValue& operator=(const SqlValue&) = default;
    SqlValue& operator=(SqlValue&&) noexcept = default;
    virtual ~SqlValue() = default;

    /// Sets text and type from a row of the database: an empty text becomes a null value.
    void SetValue(std::string text, FieldType valueType);
    void SetNull();
    /// Sets a value that is not null, even for an empty text.
    void SetString(std::string text);
    void SetInteger(long long number);
    /// Writes eight digits behind the point and cuts the text off after 127 characters.
    void SetDouble(double number);

    bool IsNull() const { return isNull; }
    /// Empty for a null value.
    const std::string& AsString() const { return value; }
    /// The number at the front of the text; 0 if there is none, the nearest limit if it is out of range.
    long long AsInteger() const;
    double AsDouble() const;

    /// The value as it appears in a statement: "null", quoted for TypeText, unchanged for every other type. The type of
    /// the field decides, not the value's own.
    std::string ToSql(FieldType fieldType) const;

private:
    std::string value;
    bool isNull = true;
    FieldType type = TypeNone;
};

} // namespace FT::sql

#endif
