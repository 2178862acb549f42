#include "arborist/frame/repair.h"

#include "arborist/stores/repairs/repair_db_util.h"

void UpdateRepairDb(const std::string& repairId)
{
    RepairDbUtil().SaveRepairDataToDb(repairId);
}
