#include "arborist/frame/repair.h"

#include "arborist/stores/repair_db_util.h"

void UpdateRepairDb(const std::string& repairId)
{
    RepairDbUtil().SaveRepairDataToDb(repairId);
}
