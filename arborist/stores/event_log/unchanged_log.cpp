#include "arborist/stores/event_log/unchanged_log.h"

#include "arborist/utilities/time_util.h"

bool UnchangedLog::IsIn(const FT::sql::Sqlite3Db& database, const Snapshot& snapshot)
{
    return snapshot != nullptr && snapshot->GetOrigin().dataVersion != NO_DATA_VERSION &&
        snapshot->GetOrigin().lastMoment >= TimeUtil::GetLastMoment() &&
        ReadDataVersion(database) == snapshot->GetOrigin().dataVersion;
}

std::unique_ptr<const UnchangedLog> UnchangedLog::Open(const FT::sql::Sqlite3Db& database, const Snapshot& snapshot)
{
    if (snapshot == nullptr) {
        return nullptr;
    }
    std::unique_ptr<const UnchangedLog> log(new UnchangedLog(database, snapshot));
    return IsIn(database, snapshot) ? std::move(log) : nullptr;
}
