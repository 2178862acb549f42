#include "arborist/stores/sql/sql_field.h"

#include <utility>

#include "arborist/stores/sql/sql_text.h"

namespace FT::sql {

SqlField::SqlField(std::string columnName, FieldType columnType) : name(std::move(columnName)), type(columnType) {}

SqlField::SqlField(std::string columnName, FieldType columnType, FieldFlag keyFlag, FieldFlag nullFlag)
    : name(std::move(columnName)), type(columnType), isPrimaryKey(keyFlag == FlagPrimaryKey),
      isNullable(nullFlag != FlagNotNull)
{
}

SqlField::SqlField(FieldUse use) : isEndingField(use == FieldUseEnd) {}

std::string SqlField::GetTypeStr() const
{
    switch (type) {
    case TypeInteger:
        return "INTEGER";
    case TypeText:
        return "TEXT";
    case TypeReal:
        return "REAL";
    default:
        return "";
    }
}

std::string SqlField::GetDefinition() const
{
    std::string definition = name + " " + GetTypeStr();
    if (isPrimaryKey) {
        definition += " PRIMARY KEY";
    }
    if (!isNullable) {
        definition += " NOT NULL";
    }
    TrimLeft(definition);
    return definition;
}

} // namespace FT::sql
