#include "arborist/frame/repair.h"

#include "arborist/frame/stopping.h"
#include "arborist/stores/repairs/repair_db_util.h"

void UpdateRepairDb(const std::string& repairId)
{
    // A host may call this from within a detection: what is recorded is recorded, even if that detection is to end or
    // has waited for locks long enough. A request that nobody makes waits for its own.
    StopRequest neverRequested;
    const StopScope unstoppable(&neverRequested);
    RepairDbUtil().SaveRepairDataToDb(repairId);
}
