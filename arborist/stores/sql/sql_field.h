#ifndef ARBORIST_STORES_SQL_SQL_FIELD_H
#define ARBORIST_STORES_SQL_SQL_FIELD_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace FT::sql {

enum FieldType : std::int32_t {
    TypeNone = 0,
    TypeInteger = 1,
    TypeText = 2,
    TypeReal = 3,
};

enum FieldFlag : std::int32_t {
    FlagNotNull = 1, ///< in the second place: the column is NOT NULL
    FlagPrimaryKey = 3, ///< in the first place: the column is the primary key
    FlagNone = 4, ///< in the first place: a plain column
};

enum FieldUse : std::int32_t {
    FieldUseEnd = 1, ///< the field ends an array of fields
};

/// One column of a table. An array of them describes a table; its creator owns it. See SqlTable. IsPrimaryKey completes
/// the set; nothing calls it.
class SqlField {
public:
    /// A plain column that may be null.
    SqlField(std::string columnName, FieldType columnType);
    /// The first flag marks a primary key, the second a column that may not be null.
    SqlField(std::string columnName, FieldType columnType, FieldFlag keyFlag, FieldFlag nullFlag);
    /// Marks the end of an array of fields.
    explicit SqlField(FieldUse use);
    SqlField(const SqlField&) = default;
    SqlField& operator=(const SqlField&) = default;
    virtual ~SqlField() = default;

    const std::string& GetName() const { return name; }
    FieldType GetType() const { return type; }
    /// "INTEGER", "TEXT" or "REAL"; empty for any other type.
    std::string GetTypeStr() const;
    /// Position in its table; the largest number if it belongs to none.
    std::uint64_t GetIndex() const { return index; }
    void SetIndex(std::uint64_t position) { index = position; }
    bool IsPrimaryKey() const { return isPrimaryKey; }
    /// True if the column may be null.
    bool IsNull() const { return isNullable; }
    bool IsEndingField() const { return isEndingField; }

    /// The column's definition in a create statement: "_id INTEGER PRIMARY KEY NOT NULL".
    std::string GetDefinition() const;

private:
    std::string name;
    FieldType type = TypeNone;
    bool isPrimaryKey = false;
    bool isNullable = true;
    std::uint64_t index = UINT64_MAX;
    bool isEndingField = false;
};

} // namespace FT::sql

#endif
