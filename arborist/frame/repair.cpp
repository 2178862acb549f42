#include "arborist/frame/repair.h"

#include "arborist/frame/stopping.h"
#include "arborist/stores/repairs/repair_db_util.h"

void UpdateRepairDb(const std::string& repairId)
{
    // A host may call this from within a detection: what is recorded is recorded, even if that detection is to end.
    const StopScope unstoppable(nullptr);
    RepairDbUtil().SaveRepairDataToDb(repairId);
}
