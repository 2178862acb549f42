#include "arborist/stores/common_part/event_times.h"

#include "arborist/stores/common_part/event_selection.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/utilities/file_util.h"

namespace EventTimes {
namespace {

constexpr char SELECT_TIMES[] = "SELECT DISTINCT event_info_flow.occurrence_time FROM event_info JOIN event_info_flow ON "
                                "event_info_flow.event_pid = event_info._ID WHERE ";

} // namespace

std::vector<std::int64_t> Read(const EventIdList& ids, const std::string& eventDbPath)
{
    std::vector<std::int64_t> times;
    FT::sql::SqlDatabase database;
    if (!FileUtil::FileExists(eventDbPath) || !database.Open(eventDbPath)) {
        return times;
    }
    database.Restrict(FT::sql::SqlAccess::READ_ONLY);
    FT::sql::SqlCursor rows(database.GetHandle(), EventSelection::GenerateSql(ids, SELECT_TIMES));
    while (rows.Step()) {
        times.push_back(rows.GetInteger(0));
        if (rows.GetType(0) != FT::sql::SqlCursor::ColumnType::INTEGER) {
            times.push_back(rows.GetInteger(0) + 1);
        }
    }
    return times;
}

} // namespace EventTimes
