#include "arborist/stores/repairs/repair_dates.h"

#include "arborist/stores/repairs/repair_db_util.h"
#include "arborist/utilities/device_paths.h"

RepairDates::RepairDates() = default;

RepairDates::~RepairDates() = default;

std::string RepairDates::Query(const std::string& repairId)
{
    const std::string path = DevicePaths::RepairDatabase();
    RepairDbUtil* const kept = mConnection.Find(path);
    std::string date;
    if (kept != nullptr && kept->QueryAgain(repairId, date)) {
        mHasFailed = kept->HasFailed();
        return date;
    }
    RepairDbUtil& made = mConnection.Make(path);
    date = made.QueryRepairDate(repairId);
    mHasFailed = made.HasFailed();
    return date;
}
