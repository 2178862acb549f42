#include "arborist/stores/common_part/silent_look.h"

#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/stores/sql/sql_database.h"

std::size_t SilentLook::CountRows(const FT::sql::SqlDatabase& database, const std::string& table)
{
    FT::sql::SqlCursor cursor(database.GetHandle(), "select count(*) from " + table);
    return cursor.Step() ? static_cast<std::size_t>(cursor.GetInteger(0)) : 0;
}

bool SilentLook::FindsRowOrFails(const FT::sql::SqlDatabase& database, const std::string& sql)
{
    FT::sql::SqlCursor cursor(database.GetHandle(), sql);
    return cursor.Step() || !cursor.IsOk();
}
