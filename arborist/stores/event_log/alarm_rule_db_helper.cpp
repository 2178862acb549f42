#include "arborist/stores/event_log/alarm_rule_db_helper.h"

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/frame/stopping.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/file_util.h"

AlarmRuleDbHelper::AlarmRuleDbHelper() : mSearch(mDatabase.GetHandle())
{
    OpenDatabase();
}

bool AlarmRuleDbHelper::OpenDatabase()
{
    const std::string path = DevicePaths::EventLog();
    // Ask first: SQLite would create the missing file, and an empty log passes for a quiet device.
    if (!FileUtil::FileExists(path)) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_WARN, "FUNc:%s: log.db is not exist.", "AlarmRuleDbHelper::OpenDatabase");
        return false;
    }
    if (!mDatabase.Open(path)) {
        return false;
    }
    // Changes of the monitoring service may wait in a file beside the log; closing must not move them into it.
    mDatabase.Restrict(FT::sql::SqlAccess::READ_ONLY);
    return true;
}

bool AlarmRuleDbHelper::EnsureOpen()
{
    if (mDatabase.IsOpen() || OpenDatabase()) {
        return true;
    }
    FT::Log::GetInstance().Output(
        FT::LEVEL_WARN, "FUNc:%s: Open log.db fail.", "AlarmRuleDbHelper::GetEventList");
    return false;
}

std::string AlarmRuleDbHelper::CurrentVersion()
{
    return FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(Settings::VERSION_NAME, "");
}

AlarmRuleDbHelper::EventList AlarmRuleDbHelper::GetEventList(
    std::int32_t eventId, std::int64_t startTime, bool fromUpdate)
{
    if (!EnsureOpen()) {
        return {};
    }
    EventQuery& query = mSearch.GetQuery();
    query.Run(eventId, startTime);
    if (query.GetCount() == 0) {
        return {};
    }
    const std::string version = CurrentVersion();
    EventLogSearch::LogVersionName(version);
    return query.GetEvents(fromUpdate, version);
}

AlarmRuleDbHelper::Reading AlarmRuleDbHelper::VisitEvents(const Query& query, const Visitor& visitor)
{
    StopPoint::Pass();
    Query rest = query;
    const std::int64_t end = query.GetLoggedEnd();
    while (!(rest.firstId < end ? EnsureOpen() : mDatabase.IsOpen())) {
        if (rest.firstId + std::int64_t{1} >= end) {
            return Reading::UNREADABLE;
        }
        ++rest.firstId;
        ++rest.idsBefore;
    }
    return mSearch.Visit(rest, CurrentVersion(), visitor);
}
