#include "arborist/stores/common_part/event_selection.h"

#include <limits>
#include <algorithm>
#include <iterator>

#include <json/value.h>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/common_part/database_steps.h"
#include "arborist/stores/common_part/selected_rows.h"
#include "arborist/stores/common_part/silent_look.h"
#include "arborist/stores/repairs/reset_time_parser.h"
#include "arborist/stores/sql/simple_database_helper.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_table.h"
#include "arborist/utilities/file_util.h"
#include "arborist/utilities/time_util.h"

namespace EventSelection {
namespace {

constexpr char SELECT_EVENTS[] =
    "SELECT event_info.extra, event_info_flow.occurrence_time FROM event_info LEFT OUTER JOIN event_info_flow ON "
    "event_info_flow.event_pid = event_info._ID WHERE ";
// The events of a bean that names no ids.
constexpr char DEFAULT_EVENTS[] = "( event_info.event_id >= 902000000 AND event_info.event_id < 902500000 OR "
                                  "event_info.event_id = 902500007 ) ";
constexpr std::int64_t SEVEN_DAYS = 604800;
constexpr std::int64_t THIRTY_DAYS = 2592000;

std::string Setting(const char* key)
{
    return FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(key, "");
}

// The last reset or update in seconds since the epoch: earlier events don't describe the device as it is now.
std::int64_t LatestResetOrUpdate(const std::string& directory)
{
    ResetTimeParser parser(directory);
    parser.ParseLogService();
    return std::max(parser.GetResetTime(), parser.GetUpdateTime());
}

// The condition that a time is later, or not later, than the last moment that counts; empty if every moment counts.
std::string ComparedWithLastMoment(const std::string& column, const char* relation)
{
    const std::int64_t last = TimeUtil::GetLastMoment();
    return last == std::numeric_limits<std::int64_t>::max()
        ? "" : " AND " + column + " " + relation + " " + std::to_string(last);
}

// Whether an event of the selection has no time, or a text in its place. An event that is found under its own key alone
// is none if it is later than the last moment that counts.
bool HasUnseenEvents(const FT::sql::SqlDatabase& database, const std::string& selection)
{
    const std::string later = ComparedWithLastMoment("own.occurrence_time", ">");
    const std::string hidden = later.empty() ? "" : " AND event_info._ID NOT IN (SELECT own._ID FROM event_info_flow"
        " AS own WHERE own._ID IS NOT NULL AND typeof(own.occurrence_time) = 'integer'" + later + ")";
    return SilentLook::FindsRowOrFails(database, SELECT_EVENTS + selection + hidden +
        " AND (event_info_flow.event_pid IS NULL OR typeof(event_info_flow.occurrence_time) <> 'integer') LIMIT 1");
}

} // namespace

void GetLumbraDataByFilter(
    const EventIdList& ids, const std::string& eventDbPath, std::vector<Json::Value>& rows, bool* isWhole)
{
    static constexpr char NAME[] = "CommonPartDbHelper::GetLumbraDataByFilter";
    if (isWhole != nullptr) {
        *isWhole = false;
    }
    FT::sql::SqlDatabase database;
    // Opening creates a missing log as an empty file, which is then rejected for its missing tables.
    database.Open(eventDbPath);
    if (!database.IsOpen()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: open db %s fail.", NAME,
            FileUtil::ExtractFileName(eventDbPath).c_str());
        return;
    }
    database.Restrict(FT::sql::SqlAccess::READ_ONLY);
    if (!IsTableExist(database, "event_info") || !IsTableExist(database, "event_info_flow")) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN,
            "FUNc:%s: lumbra db not exist or table event_info not exist or table event_info_flow not exist.", NAME);
        return;
    }
    std::string sql = GenerateSql(ids, SELECT_EVENTS);
    const std::string appFileDir = Setting(Settings::APP_FILE_DIR);
    FT::Log::GetInstance().Output(FT::LEVEL_DEBUG, "FUNc:%s: AppFileDir: %s", NAME, appFileDir.c_str());
    const std::int64_t minTime = LatestResetOrUpdate(appFileDir);
    const std::int64_t version = QueryVersion(database);
    if (version != 0) {
        sql += " AND event_info.version_id = " + std::to_string(version);
    }
    const bool isEachRowRead = SelectedRows::QueryDataSet(database, sql, rows, minTime);
    if (isWhole != nullptr) {
        *isWhole = isEachRowRead && !HasUnseenEvents(database, ConditionOf(ids));
    }
}

std::string ConditionOf(const EventIdList& ids)
{
    return ids.IsEmpty() ? DEFAULT_EVENTS : ids.ToSql();
}

std::int64_t PeriodOf(const EventIdList& ids)
{
    return ids.IsEmpty() ? SEVEN_DAYS : THIRTY_DAYS;
}

std::string GenerateSql(const EventIdList& ids, const std::string& baseSql)
{
    const std::int64_t now = TimeUtil::GetTimeOfDay();
    const std::int64_t floor = now - PeriodOf(ids);
    return baseSql + ConditionOf(ids) + " AND event_info_flow.occurrence_time > " + std::to_string(floor)
        + ComparedWithLastMoment("event_info_flow.occurrence_time", "<=");
}

std::int64_t QueryVersion(const FT::sql::SqlDatabase& database)
{
    static constexpr char NAME[] = "CommonPartDbHelper::QueryVersion";
    if (!database.IsOpen()) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: database was not exist, open database failed.", NAME);
        return 0;
    }
    const std::string versionName = Setting(Settings::VERSION_NAME);
    FT::Log::GetInstance().Output(FT::LEVEL_DEBUG, "FUNc:%s: version name: %s", NAME, versionName.c_str());
    if (versionName.empty()) {
        return 0;
    }
    FT::sql::SqlField fields[] = {{"_ID", FT::sql::TypeInteger}, {"VERSION_NAME", FT::sql::TypeText},
        FT::sql::SqlField(FT::sql::FieldUseEnd)};
    FT::sql::SqlTable table(database.GetHandle(), "event_version", fields, std::size(fields));
    // The name is not escaped: a quote in it makes the statement fail, so that no version is known.
    const std::uint64_t count = FT::sql::SimpleDatabaseHelper().GetRecordCountByFullSql(
        table, "select * from event_version where VERSION_NAME = '" + versionName + "' ORDER BY _ID DESC");
    for (std::uint64_t index = 0; index < count; ++index) {
        const FT::sql::SqlValue* const id = table.GetRecord(index)->GetValue("_ID");
        if (id != nullptr && id->AsInteger() != 0) {
            return id->AsInteger();
        }
    }
    return 0;
}

} // namespace EventSelection
