#include "diagnosis/bundle/repair_records.h"

#include <filesystem>

#include "diagnosis/sqlite/connection.h"

namespace diagnosis {

std::optional<Failure> ReadRepairRecords(const std::string& path, std::vector<RepairRecord>& records)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        return std::nullopt;
    }
    Connection database;
    if (!database.Open(path, Connection::Mode::READ_ONLY)) {
        return Failure{"bad_repair_records", path + ": " + database.GetError()};
    }
    database.LimitToFile();
    auto rows = database.Prepare("SELECT repair_id, repair_date FROM repair_data ORDER BY _id");
    if (!rows) {
        return Failure{"bad_repair_records", path + ": " + database.GetError()};
    }
    while (rows->Step()) {
        records.push_back({rows->Text(0), rows->Text(1)});
    }
    if (database.HasError()) {
        return Failure{"bad_repair_records", path + ": " + database.GetError()};
    }
    return std::nullopt;
}

} // namespace diagnosis
