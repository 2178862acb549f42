#include "arborist/stores/sql/sql_record.h"

#include <utility>

namespace FT::sql {

SqlRecord::SqlRecord(const FieldMap* fieldMap) : fields(fieldMap)
{
    if (fields != nullptr) {
        InitColumnCount(fields->size());
    }
}

SqlRecord::SqlRecord(const SqlRecord& other) : fields(other.fields)
{
    if (fields != nullptr) {
        values = other.values;
    }
}

void SqlRecord::InitColumnCount(std::size_t count)
{
    values.resize(count);
}

void SqlRecord::InitColumnValue(std::size_t position, std::string text, FieldType type)
{
    values[position].SetValue(std::move(text), type);
}

const SqlField* SqlRecord::GetFieldByName(const std::string& name) const
{
    if (fields == nullptr) {
        return nullptr;
    }
    const auto found = fields->find(name);
    return found == fields->end() ? nullptr : found->second;
}

const SqlValue* SqlRecord::GetValue(std::size_t position) const
{
    return position < values.size() ? &values[position] : nullptr;
}

const SqlValue* SqlRecord::GetValue(const std::string& name) const
{
    const SqlField* const field = GetFieldByName(name);
    return field == nullptr ? nullptr : GetValue(static_cast<std::size_t>(field->GetIndex()));
}

const SqlValue* SqlRecord::GetValue(const SqlField& field) const
{
    return GetValue(field.GetName());
}

SqlValue* SqlRecord::FindValue(std::size_t position)
{
    return const_cast<SqlValue*>(GetValue(position));
}

SqlValue* SqlRecord::FindValue(const std::string& name)
{
    return const_cast<SqlValue*>(GetValue(name));
}

void SqlRecord::SetNull(const SqlField& field)
{
    SetNull(field.GetName());
}

void SqlRecord::SetNull(const std::string& name)
{
    if (SqlValue* const value = FindValue(name)) {
        value->SetNull();
    }
}

void SqlRecord::SetNull(std::size_t position)
{
    if (SqlValue* const value = FindValue(position)) {
        value->SetNull();
    }
}

void SqlRecord::SetInteger(const SqlField& field, long long number)
{
    SetInteger(field.GetName(), number);
}

void SqlRecord::SetInteger(const std::string& name, long long number)
{
    if (SqlValue* const value = FindValue(name)) {
        value->SetInteger(number);
    }
}

void SqlRecord::SetInteger(std::size_t position, long long number)
{
    if (SqlValue* const value = FindValue(position)) {
        value->SetInteger(number);
    }
}

void SqlRecord::SetDouble(const SqlField& field, double number)
{
    SetDouble(field.GetName(), number);
}

void SqlRecord::SetDouble(const std::string& name, double number)
{
    if (SqlValue* const value = FindValue(name)) {
        value->SetDouble(number);
    }
}

void SqlRecord::SetDouble(std::size_t position, double number)
{
    if (SqlValue* const value = FindValue(position)) {
        value->SetDouble(number);
    }
}

void SqlRecord::SetString(const SqlField& field, const std::string& text)
{
    SetString(field.GetName(), text);
}

void SqlRecord::SetString(const std::string& name, const std::string& text)
{
    if (SqlValue* const value = FindValue(name)) {
        value->SetString(text);
    }
}

void SqlRecord::SetString(std::size_t position, const std::string& text)
{
    if (SqlValue* const value = FindValue(position)) {
        value->SetString(text);
    }
}

void SqlRecord::SetString(const std::string& name, const std::string& text, int)
{
    SetString(name, text);
}

std::string SqlRecord::ToSql(const FieldList& fieldList) const
{
    std::string list;
    for (std::size_t position = 0; position < fieldList.size(); ++position) {
        const SqlField* const field = fieldList[position];
        const SqlValue* const value = field == nullptr ? nullptr : GetValue(*field);
        if (value == nullptr) {
            continue;
        }
        list += value->ToSql(field->GetType());
        if (position + 1 != fieldList.size()) {
            list += ", ";
        }
    }
    return list;
}

} // namespace FT::sql
