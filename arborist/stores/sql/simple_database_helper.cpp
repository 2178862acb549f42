#include "arborist/stores/sql/simple_database_helper.h"

namespace FT::sql {

bool SimpleDatabaseHelper::CreateTable(SqlTable& table) const
{
    return table.Create();
}

bool SimpleDatabaseHelper::RemoveTable(SqlTable& table) const
{
    return table.Remove();
}

bool SimpleDatabaseHelper::TruncateTable(SqlTable& table) const
{
    return table.Truncate();
}

bool SimpleDatabaseHelper::AddRecord(SqlTable& table, const SqlRecord& record) const
{
    return table.AddRecord(record);
}

bool SimpleDatabaseHelper::UpdateRecord(SqlTable& table, const SqlRecord& record) const
{
    return table.UpdateRecord(record);
}

bool SimpleDatabaseHelper::DeleteRecord(SqlTable& table, const std::string& condition) const
{
    return table.DeleteRecords(condition);
}

bool SimpleDatabaseHelper::CreateInfoOnTable(SqlTable& table, const std::string& sql) const
{
    return table.Query(sql);
}

const SqlRecord* SimpleDatabaseHelper::GetRecordByKeyId(SqlTable& table, std::int32_t key) const
{
    return table.GetRecordByKeyId(key);
}

std::uint64_t SimpleDatabaseHelper::GetRecordCount(SqlTable& table, const std::string& condition) const
{
    table.Open(condition);
    return table.GetRecordCount();
}

std::uint64_t SimpleDatabaseHelper::GetRecordCountByFullSql(SqlTable& table, const std::string& sql) const
{
    if (sql.empty()) {
        return UINT64_MAX;
    }
    table.Query(sql);
    return table.GetRecordCount();
}

const SqlValue* SimpleDatabaseHelper::GetFieldValueByIndex(
    const SqlTable& table, std::uint64_t index, std::uint64_t count, const std::string& name) const
{
    if (index >= count) {
        return nullptr;
    }
    const SqlRecord* const record = table.GetRecord(index);
    return record == nullptr ? nullptr : record->GetValue(name);
}

const SqlValue* SimpleDatabaseHelper::GetFieldValueByRecord(const SqlRecord& record, const std::string& name) const
{
    return record.GetValue(name);
}

} // namespace FT::sql
