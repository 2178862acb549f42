#include "arborist/stores/common_part/derived_tables.h"

#include <json/value.h>

#include "arborist/frame/log.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/stores/common_part/database_steps.h"
#include "arborist/stores/common_part/derived_table_writer.h"
#include "arborist/stores/common_part/event_selection.h"
#include "arborist/stores/common_part/lower_case.h"
#include "arborist/stores/common_part/silent_look.h"
#include "arborist/stores/sql/sql_operator.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/time_util.h"

namespace DerivedTables {
namespace {

using RowList = std::vector<Json::Value>;

// The log formats in which the two builds differ. A host's logger receives them as they are.
struct FromEvents {
    static constexpr char FUNCTION[] = "CommonPartDbHelper::IsSuccessCreatePerfDb";
    static constexpr char NO_ROWS[] = "FUNc:%s: createJankDB : Get lumbra DB fail-lumbraDatas is null.";
};

struct Fixed {
    static constexpr char FUNCTION[] = "CommonPartDbHelper::IsSuccessCreateLumbraPlusDb";
    // Never logged, as BuildFixed always has its row.
    static constexpr char NO_ROWS[] = "FUNc:%s: createJankDB : Step 2 get lumbra DB fail-lumbraDatas is null";
};

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

// Uses the type as the rule set spells it: SQLite derives the affinity of the column from it.
std::string GenerateCreateSql(const Table& table)
{
    std::string sql = "CREATE TABLE " + table.name + " (_ID integer primary key autoincrement";
    for (const auto& column : table.columns) {
        if (column != nullptr && !column->key.empty()) {
            sql += ", " + column->key + " " + column->type + ColumnSuffix(column->type);
        }
    }
    return sql + ");";
}

RowList FixedRows()
{
    Json::Value row(Json::objectValue);
    row["ERRCODE"] = 1;
    row["DEVICE_TYPE"] = "tv";
    row["SUBERRCODE"] = 2;
    row["EXTERRINFO"] = "false";
    row["LU_TRACE_ID"] = "123456789";
    row["occurrence_time"] = static_cast<Json::Int64>(TimeUtil::GetTimeOfDay());
    return {row};
}

void SetState(State* state, State value)
{
    if (state != nullptr) {
        *state = value;
    }
}

template <typename Build>
bool OpenWithoutTable(FT::sql::SqlDatabase& database, const std::string& tableName)
{
    database.Open(DevicePaths::DerivedDatabase());
    if (!database.IsOpen()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: open JankEventDb fail.", Build::FUNCTION);
        return false;
    }
    PrepareForWriting(database);
    if (!FT::sql::SqlOperator(database.GetHandle()).ExecuteNoCallback("drop table if exists " + tableName)) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: createJankDB : Delete all tables fail.", Build::FUNCTION);
        return false;
    }
    return true;
}

bool Create(const FT::sql::SqlDatabase& database, const Table& table)
{
    return FT::sql::SqlOperator(database.GetHandle()).ExecuteNoCallback(GenerateCreateSql(table));
}

// `columnLeftOut` receives the name of a column whose value in a row can't be used; empty if there is none.
bool IsSetedDataToTable(
    FT::sql::SqlDatabase& database, const Table& table, const RowList& rows, std::string& columnLeftOut)
{
    if (table.name.empty() || table.columns.empty() || rows.empty()) {
        return false;
    }
    if (!IsTableExist(database, table.name)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: table %s not exist.",
            "CommonPartDbHelper::IsSetedDataToTable", table.name.c_str());
        return false;
    }
    DerivedTableWriter writer(database, table.name, table.columns, GenerateCreateSql(table));
    writer.Write(rows);
    columnLeftOut = writer.GetColumnLeftOut();
    return true;
}

template <typename Build>
bool Fill(FT::sql::SqlDatabase& database, const Table& table, const RowList& rows, std::string& columnLeftOut)
{
    if (rows.empty()) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, Build::NO_ROWS, Build::FUNCTION);
        return false;
    }
    if (!IsSetedDataToTable(database, table, rows, columnLeftOut)) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: insert data into table %s fail.", Build::FUNCTION, table.name.c_str());
        return false;
    }
    return true;
}

} // namespace

bool GetEventIdList(const ThresholdOrLumbraBean::LumbraDataList& dataItems, EventIdList& ids)
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

bool BuildFromEvents(const Table& table, const EventIdList& ids, const std::string& eventDbPath, State* state)
{
    SetState(state, State::NOT_BUILT);
    FT::sql::SqlDatabase database;
    if (!OpenWithoutTable<FromEvents>(database, table.name)) {
        return false;
    }
    if (!Create(database, table)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: createJankDB : Step Create table %s fail.",
            FromEvents::FUNCTION, table.name.c_str());
        return false;
    }
    RowList rows;
    bool isSelectionWhole = false;
    EventSelection::GetLumbraDataByFilter(ids, eventDbPath, rows, state == nullptr ? nullptr : &isSelectionWhole);
    std::string columnLeftOut;
    const bool isFilled = Fill<FromEvents>(database, table, rows, columnLeftOut);
    if (!columnLeftOut.empty()) {
        TroubleWatch::Tell(
            Evidence::Trouble::Kind::BAD_EXTRA, "a boolean, a list or an object", {columnLeftOut, eventDbPath});
    }
    if (state != nullptr) {
        const bool isWhole = isSelectionWhole && columnLeftOut.empty() &&
            SilentLook::CountRows(database, table.name) == rows.size();
        *state = isWhole ? State::WHOLE : State::INCOMPLETE;
    }
    return isFilled;
}

bool BuildFixed(const Table& table, State* state)
{
    SetState(state, State::NOT_BUILT);
    FT::sql::SqlDatabase database;
    if (!OpenWithoutTable<Fixed>(database, table.name)) {
        return false;
    }
    if (!Create(database, table)) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: createJankDB : Step 3 Create table fail.", Fixed::FUNCTION);
        return false;
    }
    std::string ignored;
    const bool isFilled = Fill<Fixed>(database, table, FixedRows(), ignored);
    SetState(state, isFilled ? State::WHOLE : State::INCOMPLETE);
    return isFilled;
}

} // namespace DerivedTables
