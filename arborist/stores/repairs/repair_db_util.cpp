#include "arborist/stores/repairs/repair_db_util.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <iterator>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/repairs/repair_table_reader.h"
#include "arborist/stores/sql/simple_database_helper.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/file_util.h"
#include "arborist/utilities/native_path.h"
#include "arborist/utilities/time_util.h"

namespace {

constexpr char ID[] = "_id";
constexpr char REPAIR_ID[] = "repair_id";
constexpr char REPAIR_DATE[] = "repair_date";

// Limit on the rows that one query keeps. They are the rows of one repair; the first one counts.
constexpr std::size_t MOST_ROWS = 250'000;

// Enough steps to visit every row of the file: a row takes at least ten bytes or so and a few steps.
std::uint64_t StepsForAllRows(const std::string& path)
{
    constexpr std::uint64_t LEAST_STEPS = 10'000'000;
    constexpr std::uint64_t STEPS_FOR_A_BYTE = 4;
    constexpr std::uint64_t MOST_BELIEVED = 1ULL << 34; // a file with holes may claim any size
    return LEAST_STEPS + STEPS_FOR_A_BYTE * std::min(FileUtil::GetFileSize(path), MOST_BELIEVED);
}

// The table together with the fields that it refers to, which are declared first so that they outlive it.
struct RepairTable {
    RepairTable(const FT::sql::SqlDatabase& database, const std::string& name)
        : fields{FT::sql::SqlField(ID, FT::sql::TypeInteger, FT::sql::FlagPrimaryKey, FT::sql::FlagNotNull),
              FT::sql::SqlField(REPAIR_ID, FT::sql::TypeText), FT::sql::SqlField(REPAIR_DATE, FT::sql::TypeText),
              FT::sql::SqlField(FT::sql::FieldUseEnd)},
          table(database.GetHandle(), name, fields.data(), fields.size())
    {
    }

    std::array<FT::sql::SqlField, 4> fields;
    FT::sql::SqlTable table;
};

void LogTableExists(const std::string& tableName)
{
    FT::Log::GetInstance().Output(FT::LEVEL_DEBUG, "FUNc:%s: table %s already exist.",
        "RepairDbUtil::CreateRepairRecordTable", tableName.c_str());
}

} // namespace

RepairDbUtil::RepairDbUtil() : mDatabase(std::make_unique<FT::sql::SqlDatabase>())
{
    OpenDb();
}

RepairDbUtil::~RepairDbUtil()
{
    CloseDb();
}

bool RepairDbUtil::OpenDb()
{
    static constexpr char NAME[] = "RepairDbUtil::OpenDb";
    if (mDatabase->IsOpen()) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: RepairDbUtil::OpenDb open database already open", NAME);
    }
    mReader.reset();
    const std::string path = DevicePaths::RepairDatabase();
    const std::string folder = std::filesystem::path(NativePath(path)).parent_path().string();
    if (!FileUtil::FileExists(folder) && !FileUtil::ForceCreateDirectory(folder)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: create dir %s fail.", NAME, folder.c_str());
        return false;
    }
    if (!mDatabase->Open(path)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR,
            "FUNc:%s: RepairDbUtil::OpenDb open database fail dbname: %s", NAME, path.c_str());
        return false;
    }
    // The file is ours, but somebody may have replaced its table by a view or a trigger of their own.
    mDatabase->Restrict(FT::sql::SqlAccess::OWN_FILE, {.steps = StepsForAllRows(path), .rows = MOST_ROWS});
    if (!FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(Settings::TEMPORARY_STORES, "").empty()) {
        mDatabase->WriteWithoutWaiting(); // an empty table: it can be made again
    }
    CreateRepairRecordTable(RepairTableReader::TABLE_NAME);
    return mDatabase->IsOpen();
}

void RepairDbUtil::CloseDb()
{
    if (mDatabase != nullptr) {
        mReader.reset();
        mDatabase->Close();
    }
}

bool RepairDbUtil::QueryAgain(const std::string& repairId, std::string& date)
{
    if (!mDatabase->IsOpen()) {
        return false;
    }
    if (mReader == nullptr) {
        mReader = std::make_unique<RepairTableReader>(*mDatabase);
    }
    const RepairTableReader::Lock lock(*mReader);
    if (!mReader->IsThere()) {
        return false;
    }
    LogTableExists(RepairTableReader::TABLE_NAME);
    date = QueryRepairDate(repairId);
    return true;
}

bool RepairDbUtil::CreateRepairRecordTable(const std::string& tableName)
{
    RepairTable repairs(*mDatabase, tableName);
    if (repairs.table.Exists()) {
        LogTableExists(tableName);
        return true;
    }
    return FT::sql::SimpleDatabaseHelper().CreateTable(repairs.table);
}

void RepairDbUtil::SaveRepairDataToDb(const std::string& repairId)
{
    if (!mDatabase->IsOpen()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: RepairDbUtil::SaveRepairDataToDb database not open",
            "RepairDbUtil::SaveRepairDataToDb");
        return;
    }
    mDatabase->WriteSafely();
    const bool isKnown = QueryRepairId(repairId);
    const std::string date = TimeUtil::GetFormatTime(TimeUtil::GetTimeOfDay());
    if (isKnown) {
        UpDateRepairData(repairId, date);
    } else {
        InsertRepairData(repairId, date);
    }
}

std::string RepairDbUtil::QueryRepairDate(const std::string& repairId)
{
    mHasFailed = !mDatabase->IsOpen();
    if (mHasFailed) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: RepairDbUtil::QueryRepairDate database not open",
            "RepairDbUtil::QueryRepairDate");
        return "";
    }
    std::int32_t id = 0;
    std::string date;
    const bool isRecorded = GetRepairDataRecord(repairId, id, date);
    mHasFailed = mHasFailed || (isRecorded && date.empty());
    return date;
}

bool RepairDbUtil::QueryRepairId(const std::string& repairId)
{
    if (!mDatabase->IsOpen()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: RepairDbUtil::QueryRepairId database not open",
            "RepairDbUtil::QueryRepairId");
        return false;
    }
    return RepairTableReader(*mDatabase).Holds(repairId);
}

bool RepairDbUtil::GetRepairDataRecord(const std::string& repairId, std::int32_t& id, std::string& date)
{
    if (!mDatabase->IsOpen()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: RepairDbUtil::GetRepairDataRecord database not open",
            "RepairDbUtil::GetRepairDataRecord");
        return false;
    }
    RepairTable repairs(*mDatabase, RepairTableReader::TABLE_NAME);
    // The id is not escaped: an id with a single quote makes the statement fail. Hosts see that failure; it stays.
    FT::sql::SimpleDatabaseHelper().GetRecordCountByFullSql(
        repairs.table, "select _id,repair_id,repair_date from repair_data where repair_id='" + repairId + "'");
    mHasFailed = !repairs.table.IsOk();
    const FT::sql::SqlRecord* const record = repairs.table.GetTopRecord();
    if (record == nullptr) {
        return false;
    }
    if (const FT::sql::SqlValue* const value = record->GetValue(ID)) {
        id = static_cast<std::int32_t>(value->AsInteger());
    }
    if (const FT::sql::SqlValue* const value = record->GetValue(REPAIR_DATE)) {
        date = value->AsString();
    }
    return true;
}

void RepairDbUtil::InsertRepairData(const std::string& repairId, const std::string& date)
{
    if (!mDatabase->IsOpen()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: RepairDbUtil::InsertRepairData database not open",
            "RepairDbUtil::InsertRepairData");
        return;
    }
    RepairTable repairs(*mDatabase, RepairTableReader::TABLE_NAME);
    FT::sql::SqlRecord record(repairs.table.GetFields());
    record.SetString(REPAIR_ID, repairId);
    record.SetString(REPAIR_DATE, date);
    mDatabase->BeginTransaction();
    FT::sql::SimpleDatabaseHelper().AddRecord(repairs.table, record);
    mDatabase->CommitTransaction();
}

void RepairDbUtil::UpDateRepairData(const std::string& repairId, const std::string& date)
{
    if (!mDatabase->IsOpen()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: RepairDbUtil::UpDateRepairData database not open",
            "RepairDbUtil::UpDateRepairData");
        return;
    }
    std::int32_t id = 0;
    std::string oldDate;
    if (!GetRepairDataRecord(repairId, id, oldDate)) {
        return;
    }
    RepairTable repairs(*mDatabase, RepairTableReader::TABLE_NAME);
    FT::sql::SqlRecord record(repairs.table.GetFields());
    record.SetInteger(ID, id);
    record.SetString(REPAIR_ID, repairId);
    record.SetString(REPAIR_DATE, date);
    mDatabase->BeginTransaction();
    FT::sql::SimpleDatabaseHelper().UpdateRecord(repairs.table, record);
    mDatabase->CommitTransaction();
}
