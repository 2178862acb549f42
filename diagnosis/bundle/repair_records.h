#ifndef ARBORIST_DIAGNOSIS_BUNDLE_REPAIR_RECORDS_H
#define ARBORIST_DIAGNOSIS_BUNDLE_REPAIR_RECORDS_H

#include <cstdint>
#include <limits>
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

/// What is read at most of a database that may be foreign: no device has as many repairs, nor as long ids.
struct RepairLimits {
    std::int64_t records = std::numeric_limits<std::int64_t>::max();
    /// Of an id or a date. A record with a longer one is left out.
    std::uint64_t bytes = std::numeric_limits<std::uint64_t>::max();
};
inline constexpr RepairLimits LIMITS_OF_LINES = {10'000, 1'000};

/// Reads the records of the database at `path`, in the order in which they were first written. A database that does not
/// exist has none.
std::optional<Failure> ReadRepairRecords(
    const std::string& path, std::vector<RepairRecord>& records, const RepairLimits& limits = {});

/// Drops the records that are later than `moment`, in seconds, and returns them. A date that is none stays.
std::vector<RepairRecord> TakeLaterRepairs(std::vector<RepairRecord>& records, std::int64_t moment);

/// Deletes the records of the database at `path` that are later than `moment`, in seconds, and returns them. A date that
/// is none stays, and so does everything in a database that can't be read.
std::vector<RepairRecord> DeleteLaterRepairs(const std::string& path, std::int64_t moment);

} // namespace diagnosis

#endif
