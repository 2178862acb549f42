#include "arborist/stores/sql/sql_table.h"

#include <utility>

#include "arborist/frame/log.h"
#include "arborist/stores/sql/sql_text.h"

namespace FT::sql {
namespace {

std::string Where(const std::string& condition)
{
    return condition.empty() ? std::string() : " where " + condition;
}

template <typename Text>
std::string JoinFields(const FieldList& fields, Text text)
{
    std::string joined;
    for (std::size_t position = 0; position < fields.size(); ++position) {
        joined += position == 0 ? "" : ", ";
        joined += text(*fields[position]);
    }
    return joined;
}

} // namespace

SqlTable::SqlTable(const Sqlite3Db& database, std::string tableName, SqlField* fields, std::size_t count)
    : name(std::move(tableName)), sqlOperator(database, &fieldList, &fieldMap)
{
    InitFields(fields, count);
}

void SqlTable::InitFields(SqlField* fields, std::size_t count)
{
    if (fields == nullptr) {
        return;
    }
    for (std::size_t position = 0; position < count && !fields[position].IsEndingField(); ++position) {
        SqlField& field = fields[position];
        // Written only if it changes, so that threads can share an array of fields that is already numbered.
        if (field.GetIndex() != position) {
            field.SetIndex(position);
        }
        fieldList.push_back(&field);
        fieldMap[field.GetName()] = &field;
    }
}

bool SqlTable::Exists()
{
    if (fieldList.empty()) {
        return ExistsWithoutFields();
    }
    const std::string sql = "select count(*) from sqlite_master where type = 'table' and name = '" + name + "'";
    if (!sqlOperator.Execute(sql)) {
        return false;
    }
    const SqlValue* const count = sqlOperator.GetTopRecordFirstValue();
    return count != nullptr && count->AsInteger() > 0;
}

// Without fields the count that the statement returns would be read as a null value.
bool SqlTable::ExistsWithoutFields()
{
    SqlField count("count", TypeInteger);
    InitFields(&count, 1);
    const bool exists = Exists();
    sqlOperator.Clear();
    fieldList.clear();
    fieldMap.clear();
    return exists;
}

bool SqlTable::Create()
{
    return Exists() || sqlOperator.ExecuteNoCallback(GetDefinition());
}

bool SqlTable::Remove()
{
    return !Exists() || sqlOperator.ExecuteNoCallback("drop table " + name);
}

bool SqlTable::Truncate()
{
    return Exists() && sqlOperator.ExecuteNoCallback("delete from " + name);
}

bool SqlTable::Open()
{
    return Open("");
}

bool SqlTable::Open(const std::string& condition)
{
    return Exists() && sqlOperator.Execute("select * from " + name + Where(condition));
}

bool SqlTable::Query(const std::string& sql)
{
    return sqlOperator.Execute(sql);
}

bool SqlTable::AddRecord(const SqlRecord& record)
{
    return sqlOperator.ExecuteNoCallback(GetAddString(record));
}

bool SqlTable::UpdateRecord(const SqlRecord& record)
{
    return sqlOperator.ExecuteNoCallback(GetUpdateString(record));
}

bool SqlTable::DeleteRecords(const std::string& condition)
{
    if (!Exists()) {
        return false;
    }
    const std::string sql = "delete from " + name + Where(condition);
    Log::GetInstance().Output(LEVEL_INFO, "FUNc:%s: delete sql: %s, condition: %s",
        "FT::sql::SqlTable::DeleteRecords", sql.c_str(), condition.c_str());
    return sqlOperator.ExecuteNoCallback(sql);
}

const SqlRecord* SqlTable::GetRecordByKeyId(long long key)
{
    if (!Exists()) {
        return nullptr;
    }
    sqlOperator.Execute("select * from " + name + " where _ID = " + IntegerToStr(key));
    return sqlOperator.GetTopRecord();
}

std::int32_t SqlTable::GetTotalRecordCount()
{
    sqlOperator.Execute("select count(*) from " + name);
    const SqlValue* const count = sqlOperator.GetTopRecordFirstValue();
    return count == nullptr ? -1 : static_cast<std::int32_t>(count->AsInteger());
}

std::string SqlTable::GetDefinition() const
{
    return "CREATE TABLE " + name + " (" + GetFieldsDefinition() + ")";
}

std::string SqlTable::GetFieldsDefinition() const
{
    return JoinFields(fieldList, [](const SqlField& field) { return field.GetDefinition(); });
}

std::string SqlTable::GetFieldsString() const
{
    return JoinFields(fieldList, [](const SqlField& field) { return field.GetName(); });
}

std::string SqlTable::GetAddString(const SqlRecord& record) const
{
    return "insert into " + name + " (" + GetFieldsString() + ") values (" + record.ToSql(fieldList) + ")";
}

std::string SqlTable::GetUpdateString(const SqlRecord& record) const
{
    std::string sql = "update " + name + " set ";
    for (std::size_t position = 1; position < fieldList.size(); ++position) {
        const SqlField& field = *fieldList[position];
        const SqlValue* const value = record.GetValue(field);
        if (value == nullptr) {
            continue;
        }
        sql += field.GetName() + "=" + value->ToSql(field.GetType());
        if (position + 1 != fieldList.size()) {
            sql += ", ";
        }
    }
    const SqlValue* const key = fieldList.empty() ? nullptr : record.GetValue(*fieldList.front());
    if (key != nullptr) {
        // The key's column is always _ID, whatever the name of the first field; SQLite ignores the case of names.
        sql += " where _ID = " + key->ToSql(fieldList.front()->GetType());
    }
    return sql;
}

} // namespace FT::sql
