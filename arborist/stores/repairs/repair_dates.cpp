#include "arborist/stores/repairs/repair_dates.h"

#include <utility>

#include "arborist/stores/repairs/repair_db_util.h"
#include "arborist/utilities/device_paths.h"

RepairDates::RepairDates() = default;

RepairDates::~RepairDates() = default;

std::string RepairDates::Query(const std::string& repairId)
{
    std::string path = DevicePaths::RepairDatabase();
    const Platform::FileIdentity identity(path);
    const bool isSameFile = mRepairs != nullptr && identity.IsSet() && path == mPath && identity == mIdentity;
    std::string date;
    if (isSameFile && mRepairs->QueryAgain(repairId, date)) {
        return date;
    }
    mRepairs.reset(); // first, since closing may change the file
    mRepairs = std::make_unique<RepairDbUtil>();
    mPath = std::move(path);
    mIdentity = identity;
    return mRepairs->QueryRepairDate(repairId);
}
