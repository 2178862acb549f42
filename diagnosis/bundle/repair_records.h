#ifndef ARBORIST_DIAGNOSIS_BUNDLE_REPAIR_RECORDS_H
#define ARBORIST_DIAGNOSIS_BUNDLE_REPAIR_RECORDS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis {

/// Path of the library's repair records below the fixed root.
inline constexpr char REPAIR_RECORDS[] = "Comms/Lumbra/zxdetectrepair/databases/repair_record.db";

/// One row of the repair records.
struct RepairRecord {
    std::string id;
    /// Local time "YYYY-MM-DD HH:MM:SS" of the latest repair.
    std::string date;
};

/// Reads all records of the database at `path`, in the order in which they were first written. A database that does not
/// exist has none.
std::optional<Failure> ReadRepairRecords(const std::string& path, std::vector<RepairRecord>& records);

/// Drops the records that are later than `moment`, in seconds, and returns them. A date that is none stays.
std::vector<RepairRecord> TakeLaterRepairs(std::vector<RepairRecord>& records, std::int64_t moment);

/// Deletes the records of the database at `path` that are later than `moment`, in seconds, and returns them. A date that
/// is none stays, and so does everything in a database that can't be read.
std::vector<RepairRecord> DeleteLaterRepairs(const std::string& path, std::int64_t moment);

} // namespace diagnosis

#endif
