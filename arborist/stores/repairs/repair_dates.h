#ifndef ARBORIST_STORES_REPAIRS_REPAIR_DATES_H
#define ARBORIST_STORES_REPAIRS_REPAIR_DATES_H

#include <string>

#include "arborist/stores/kept_connection.h"

class RepairDbUtil;

/// Answers what RepairDbUtil answers, with its log lines, for many questions in a row, over a connection that is kept.
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
    KeptConnection<RepairDbUtil> mConnection;
};

#endif
