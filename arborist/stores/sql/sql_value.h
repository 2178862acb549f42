#ifndef ARBORIST_STORES_SQL_SQL_VALUE_H
#define ARBORIST_STORES_SQL_SQL_VALUE_H

#include <string>

#include "arborist/stores/sql/sql_field.h"

namespace FT::sql {

/// One column of one row, held as text. Types count only when it is read or written back as SQL.
class SqlValue {
public:
    SqlValue() = default;
    SqlValue(const SqlValue&) = default;
    SqlValue(SqlValue&&) noexcept = default;
    SqlValue& operator=(const SqlValue&) = default;
    SqlValue& operator=(SqlValue&&) noexcept = default;
    virtual ~SqlValue() = default;

    /// Takes text and type as a row brings them: an empty text is a null value.
    void SetValue(std::string text, FieldType valueType);
    void SetNull();
    /// Not null afterwards, not even with an empty text.
    void SetString(std::string text);
    void SetInteger(long long number);
    /// Eight digits behind the point. A number of more than 127 characters loses its tail.
    void SetDouble(double number);

    bool IsNull() const { return isNull; }
    /// Empty for a null value.
    const std::string& AsString() const { return value; }
    /// The number at the front of the text, 0 when there is none; out of range gives the nearest end.
    long long AsInteger() const;
    double AsDouble() const;

    /// The value inside a statement: "null", quoted for TypeText, as it stands for every other type. What counts is
    /// the type of the field, not the value's own.
    std::string ToSql(FieldType fieldType) const;

private:
    std::string value;
    bool isNull = true;
    FieldType type = TypeNone;
};

} // namespace FT::sql

#endif
