#ifndef ARBORIST_STORES_REPAIRS_REPAIR_DATES_H
#define ARBORIST_STORES_REPAIRS_REPAIR_DATES_H

#include <memory>
#include <string>

#include "arborist/utilities/platform.h"

class RepairDbUtil;

/// Answers what RepairDbUtil answers, with its log lines, for many questions in a row: the connection stays open while
/// the file is the same, unchanged. Opening costs several times what a question costs.
///
/// Used by one thread.
class RepairDates {
public:
    RepairDates();
    ~RepairDates();
    RepairDates(const RepairDates&) = delete;
    RepairDates& operator=(const RepairDates&) = delete;

    /// See RepairDbUtil::QueryRepairDate.
    std::string Query(const std::string& repairId);

private:
    std::unique_ptr<RepairDbUtil> mRepairs;
    std::string mPath;
    Platform::FileIdentity mIdentity;
};

#endif
