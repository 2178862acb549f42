#include "arborist/stores/common_part/event_times.h"

#include "arborist/stores/common_part/event_selection.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/utilities/file_util.h"

namespace EventTimes {
namespace {

constexpr char SELECT_TIMES[] = "SELECT DISTINCT event_info_flow.occurrence_time FROM event_info JOIN event_info_flow ON "
                                "event_info_flow.event_pid = event_info._ID WHERE ";

// An event that no row of times names has a time under its own key at best.
constexpr char FIRST_UNSEEN_TIME[] = "SELECT min(own.occurrence_time) FROM event_info LEFT OUTER JOIN event_info_flow ON "
                                     "event_info_flow.event_pid = event_info._ID JOIN event_info_flow AS own ON "
                                     "own._ID = event_info._ID WHERE (event_info_flow.event_pid IS NULL OR "
                                     "typeof(event_info_flow.occurrence_time) <> 'integer') AND ";

void AddTimes(const FT::sql::SqlDatabase& database, const std::string& sql, std::vector<std::int64_t>& times)
{
    using Type = FT::sql::SqlCursor::ColumnType;
    FT::sql::SqlCursor rows(database.GetHandle(), sql);
    while (rows.Step()) {
        if (rows.GetType(0) == Type::NONE) {
            continue;
        }
        times.push_back(rows.GetInteger(0));
        if (rows.GetType(0) != Type::INTEGER) {
            times.push_back(rows.GetInteger(0) + 1);
        }
    }
}

} // namespace

std::vector<std::int64_t> Read(const EventIdList& ids, const std::string& eventDbPath)
{
    std::vector<std::int64_t> times;
    FT::sql::SqlDatabase database;
    if (!FileUtil::FileExists(eventDbPath) || !database.Open(eventDbPath)) {
        return times;
    }
    database.Restrict(FT::sql::SqlAccess::READ_ONLY);
    AddTimes(database, EventSelection::GenerateSql(ids, SELECT_TIMES), times);
    AddTimes(database, FIRST_UNSEEN_TIME + EventSelection::ConditionOf(ids), times);
    return times;
}

} // namespace EventTimes
