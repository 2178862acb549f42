#include "diagnosis/bundle/repair_records.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "diagnosis/bundle/moment.h"
#include "diagnosis/sqlite/connection.h"

namespace diagnosis {

std::optional<Failure> ReadRepairRecords(
    const std::string& path, std::vector<RepairRecord>& records, const RepairLimits& limits)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        return std::nullopt;
    }
    Connection database;
    if (!database.Open(path, Connection::Mode::READ_ONLY)) {
        return Failure{FailureCode::BAD_REPAIR_RECORDS, path + ": " + database.GetError()};
    }
    database.LimitToFile();
    auto rows = database.Prepare("SELECT repair_id, repair_date FROM repair_data ORDER BY _id LIMIT ?");
    if (!rows) {
        return Failure{FailureCode::BAD_REPAIR_RECORDS, path + ": " + database.GetError()};
    }
    rows->Bind(1, limits.records);
    while (rows->Step()) {
        if (rows->Bytes(0) <= limits.bytes && rows->Bytes(1) <= limits.bytes) {
            records.push_back({rows->Text(0), rows->Text(1)});
        }
    }
    if (database.HasError()) {
        return Failure{FailureCode::BAD_REPAIR_RECORDS, path + ": " + database.GetError()};
    }
    return std::nullopt;
}

std::vector<RepairRecord> TakeLaterRepairs(std::vector<RepairRecord>& records, std::int64_t moment)
{
    const auto later = std::stable_partition(records.begin(), records.end(), [moment](const RepairRecord& record) {
        const auto time = ParseMoment(record.date);
        return !time || *time <= moment;
    });
    std::vector<RepairRecord> taken;
    std::move(later, records.end(), std::back_inserter(taken));
    records.erase(later, records.end());
    return taken;
}

std::vector<RepairRecord> DeleteLaterRepairs(const std::string& path, std::int64_t moment)
{
    std::vector<RepairRecord> records;
    if (ReadRepairRecords(path, records)) {
        return {};
    }
    const std::vector<RepairRecord> later = TakeLaterRepairs(records, moment);
    Connection database;
    auto deletion = !later.empty() && database.Open(path, Connection::Mode::CREATE)
        ? database.Prepare("DELETE FROM repair_data WHERE repair_id = ?1 AND repair_date = ?2") : std::nullopt;
    for (const RepairRecord& record : later) {
        if (deletion) {
            deletion->Bind(1, record.id);
            deletion->Bind(2, record.date);
            deletion->Step();
            deletion->Reset();
        }
    }
    return later;
}

} // namespace diagnosis
