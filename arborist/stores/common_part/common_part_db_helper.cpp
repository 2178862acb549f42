#include "arborist/stores/common_part/common_part_db_helper.h"

#include <iterator>

#include <json/value.h>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/common_part/derived_table_writer.h"
#include "arborist/stores/common_part/lower_case.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_operator.h"
#include "arborist/stores/sql/sql_table.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/file_util.h"
#include "arborist/utilities/time_util.h"

namespace {

constexpr char LUMBRA_PLUS_DATA[] = "lumbraPlusData";

std::string ParentOf(const std::string& path)
{
    return path.substr(0, path.rfind('/'));
}

const char* ColumnSuffix(const std::string& type)
{
    const std::string word = LowerCase(type);
    if (word == "string" || word == "text") {
        return " NOT NULL DEFAULT ''";
    }
    if (word == "int" || word == "long" || word == "integer") {
        return " NOT NULL DEFAULT 0";
    }
    return "";
}

// The one row of a table that takes no events. It is the same whatever the device.
Json::Value FixedRow()
{
    Json::Value row(Json::objectValue);
    row["ERRCODE"] = 1;
    row["DEVICE_TYPE"] = "tv";
    row["SUBERRCODE"] = 2;
    row["EXTERRINFO"] = "false";
    row["LU_TRACE_ID"] = "123456789";
    row["occurrence_time"] = static_cast<Json::Int64>(TimeUtil::GetTimeOfDay());
    return row;
}

} // namespace

CommonPartDbHelper& CommonPartDbHelper::GetInstance()
{
    static CommonPartDbHelper instance;
    return instance;
}

void CommonPartDbHelper::PrepareForWriting(FT::sql::SqlDatabase& database, const FT::sql::SqlLimits& limits)
{
    database.Restrict(FT::sql::SqlAccess::OWN_FILE, limits);
    if (!FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(Settings::TEMPORARY_STORES, "").empty()) {
        database.WriteWithoutWaiting();
    }
}

bool CommonPartDbHelper::Init()
{
    const std::lock_guard<std::mutex> lock(initMutex);
    const std::string directory = ParentOf(DevicePaths::DerivedDatabase());
    if (!FileUtil::FileExists(directory) && !FileUtil::ForceCreateDirectory(directory)) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: create database dir fail.", "CommonPartDbHelper::Init");
        return false;
    }
    return true;
}

bool CommonPartDbHelper::IsSuccessCreateJankDb(
    const std::string& eventDbPath, const std::shared_ptr<CommonPart>& commonPart)
{
    if (commonPart == nullptr || commonPart->GetCombineCommon() == nullptr) {
        return false;
    }
    bool isBuilt = false;
    for (const auto& bean : commonPart->GetCombineCommon()->GetThresholdLumbraList()) {
        if (bean == nullptr || bean->GetLumbraDataList().empty()) {
            continue;
        }
        EventIdList ids;
        if (!GetEventIdList(bean->GetLumbraDataList(), ids)) {
            // The beans that follow stay unbuilt, too: rule sets are tested against this.
            return false;
        }
        const ParamList columns = ColumnsOf(bean->GetLumbraDataList());
        isBuilt = bean->GetType() == LUMBRA_PLUS_DATA
            ? IsSuccessCreateLumbraPlusDb(columns, bean->GetName())
            : IsSuccessCreatePerfDb(ids, columns, bean->GetName(), eventDbPath);
    }
    return isBuilt;
}

// The first item names the columns; the others only add events.
CommonPartDbHelper::ParamList CommonPartDbHelper::ColumnsOf(const LumbraDataList& dataItems)
{
    ParamList columns;
    if (dataItems.front() != nullptr) {
        for (const auto& [id, param] : dataItems.front()->GetParamMap()) {
            if (param != nullptr) {
                columns.push_back(param);
            }
        }
    }
    columns.push_back(std::make_shared<Param>(Param{"occurrence_time", "int", "25", ""}));
    return columns;
}

bool CommonPartDbHelper::GetEventIdList(const LumbraDataList& dataItems, EventIdList& ids)
{
    for (const auto& item : dataItems) {
        if (item == nullptr) {
            continue;
        }
        const std::int32_t min = item->GetAlarmIdMin();
        const std::int32_t max = item->GetAlarmIdMax();
        if (min == 0 && max == 0) {
            return false;
        }
        ids.Append(min == 0 ? max : min, max);
    }
    return true;
}

bool CommonPartDbHelper::OpenWithoutTable(
    FT::sql::SqlDatabase& database, const std::string& tableName, const char* function)
{
    database.Open(DevicePaths::DerivedDatabase());
    if (!database.IsOpen()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: open JankEventDb fail.", function);
        return false;
    }
    PrepareForWriting(database, {});
    if (!FT::sql::SqlOperator(database.GetHandle()).ExecuteNoCallback("drop table if exists " + tableName)) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: createJankDB : Delete all tables fail.", function);
        return false;
    }
    return true;
}

bool CommonPartDbHelper::IsSuccessCreatePerfDb(
    const EventIdList& ids, const ParamList& params, const std::string& tableName, const std::string& eventDbPath)
{
    static constexpr char NAME[] = "CommonPartDbHelper::IsSuccessCreatePerfDb";
    const std::lock_guard<std::mutex> lock(perfDbMutex);
    FT::sql::SqlDatabase database;
    if (!OpenWithoutTable(database, tableName, NAME)) {
        return false;
    }
    if (!FT::sql::SqlOperator(database.GetHandle()).ExecuteNoCallback(GenerateCreateSql(params, tableName))) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: createJankDB : Step Create table %s fail.", NAME,
            tableName.c_str());
        return false;
    }
    RowList rows;
    GetLumbraDataByFilter(ids, eventDbPath, rows);
    if (rows.empty()) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_WARN, "FUNc:%s: createJankDB : Get lumbra DB fail-lumbraDatas is null.", NAME);
        return false;
    }
    if (!IsSetedDataToTable(database, tableName, params, rows)) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: insert data into table %s fail.", NAME, tableName.c_str());
        return false;
    }
    return true;
}

bool CommonPartDbHelper::IsSuccessCreateLumbraPlusDb(const ParamList& params, const std::string& tableName)
{
    static constexpr char NAME[] = "CommonPartDbHelper::IsSuccessCreateLumbraPlusDb";
    const std::lock_guard<std::mutex> lock(plusDbMutex);
    FT::sql::SqlDatabase database;
    if (!OpenWithoutTable(database, tableName, NAME)) {
        return false;
    }
    const RowList rows = {FixedRow()};
    if (rows.empty()) {
        // Can't happen as long as the row is made here.
        FT::Log::GetInstance().Output(
            FT::LEVEL_WARN, "FUNc:%s: createJankDB : Step 2 get lumbra DB fail-lumbraDatas is null", NAME);
        return false;
    }
    if (!FT::sql::SqlOperator(database.GetHandle()).ExecuteNoCallback(GenerateCreateSql(params, tableName))) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: createJankDB : Step 3 Create table fail.", NAME);
        return false;
    }
    if (!IsSetedDataToTable(database, tableName, params, rows)) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: insert data into table %s fail.", NAME, tableName.c_str());
        return false;
    }
    return true;
}

// The type goes in as the rule set spells it: SQLite takes the column's affinity from it.
std::string CommonPartDbHelper::GenerateCreateSql(const ParamList& params, const std::string& tableName)
{
    std::string sql = "CREATE TABLE " + tableName + " (_ID integer primary key autoincrement";
    for (const auto& param : params) {
        if (param != nullptr && !param->key.empty()) {
            sql += ", " + param->key + " " + param->type + ColumnSuffix(param->type);
        }
    }
    return sql + ");";
}

bool CommonPartDbHelper::IsTableExist(const FT::sql::SqlDatabase& database, const std::string& tableName)
{
    FT::sql::SqlField fields[] = {{"cnt", FT::sql::TypeInteger}, FT::sql::SqlField(FT::sql::FieldUseEnd)};
    return FT::sql::SqlTable(database.GetHandle(), tableName, fields, std::size(fields)).Exists();
}

bool CommonPartDbHelper::IsSetedDataToTable(
    FT::sql::SqlDatabase& database, const std::string& tableName, const ParamList& params, const RowList& rows)
{
    if (tableName.empty() || params.empty() || rows.empty()) {
        return false;
    }
    if (!IsTableExist(database, tableName)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: table %s not exist.",
            "CommonPartDbHelper::IsSetedDataToTable", tableName.c_str());
        return false;
    }
    DerivedTableWriter(database, tableName, params, GenerateCreateSql(params, tableName)).Write(rows);
    return true;
}
