#include "arborist/stores/common_part/database_steps.h"

#include <iterator>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/sql/sql_table.h"

void PrepareForWriting(FT::sql::SqlDatabase& database, const FT::sql::SqlLimits& limits)
{
    database.Restrict(FT::sql::SqlAccess::OWN_FILE, limits);
    if (!FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(Settings::TEMPORARY_STORES, "").empty()) {
        database.WriteWithoutWaiting();
    }
}

bool IsTableExist(const FT::sql::SqlDatabase& database, const std::string& tableName)
{
    FT::sql::SqlField fields[] = {{"cnt", FT::sql::TypeInteger}, FT::sql::SqlField(FT::sql::FieldUseEnd)};
    return FT::sql::SqlTable(database.GetHandle(), tableName, fields, std::size(fields)).Exists();
}
