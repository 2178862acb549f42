#ifndef ARBORIST_STORES_REPAIRS_REPAIR_DATES_H
#define ARBORIST_STORES_REPAIRS_REPAIR_DATES_H

#include <string>

#include "arborist/stores/kept_connection.h"

class RepairDbUtil;

/// Looks up repair dates over a connection that stays open between queries, with the answers and log lines of
/// RepairDbUtil. For many queries in a row.
///
/// Not thread-safe.
class RepairDates {
public:
    RepairDates();
    ~RepairDates();
    RepairDates(const RepairDates&) = delete;
    RepairDates& operator=(const RepairDates&) = delete;

    /// See RepairDbUtil::QueryRepairDate.
    std::string Query(const std::string& repairId);
    /// See RepairDbUtil::HasFailed.
    bool HasFailed() const { return mHasFailed; }

private:
    KeptConnection<RepairDbUtil> mConnection;
    bool mHasFailed = false;
};

#endif
