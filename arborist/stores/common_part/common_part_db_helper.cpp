#include "arborist/stores/common_part/common_part_db_helper.h"

#include <string_view>
#include <unordered_set>

#include "arborist/frame/log.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/stores/common_part/derived_tables.h"
#include "arborist/stores/common_part/event_id_list.h"
#include "arborist/stores/common_part/external_databases.h"
#include "arborist/stores/common_part/text_limits.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/file_util.h"

namespace {

using LumbraDataList = ThresholdOrLumbraBean::LumbraDataList;
using TableState = ThresholdOrLumbraBean::TableState;

std::string ParentOf(const std::string& path)
{
    return path.substr(0, path.rfind('/'));
}

// The columns are those of the first item; the others only add events.
std::vector<std::shared_ptr<Param>> ColumnsOf(const LumbraDataList& dataItems)
{
    std::vector<std::shared_ptr<Param>> columns;
    if (dataItems.front() != nullptr) {
        for (const auto& [id, param] : dataItems.front()->GetParamMap()) {
            if (param != nullptr) {
                columns.push_back(param);
            }
        }
    }
    columns.push_back(std::make_shared<Param>(Param{"occurrence_time", "int", "25", ""}));
    return columns;
}

} // namespace

CommonPartDbHelper& CommonPartDbHelper::GetInstance()
{
    static CommonPartDbHelper instance;
    return instance;
}

bool CommonPartDbHelper::Init()
{
    const std::lock_guard<std::mutex> lock(initMutex);
    const std::string directory = ParentOf(DevicePaths::DerivedDatabase());
    if (!FileUtil::FileExists(directory) && !FileUtil::ForceCreateDirectory(directory)) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: create database dir fail.", "CommonPartDbHelper::Init");
        return false;
    }
    return true;
}

bool CommonPartDbHelper::IsSuccessCreateJankDb(
    const std::string& eventDbPath, const std::shared_ptr<CommonPart>& commonPart, bool looksAtTables)
{
    if (commonPart == nullptr || commonPart->GetCombineCommon() == nullptr) {
        return false;
    }
    bool isBuilt = false;
    bool isStopped = false;
    for (const auto& bean : commonPart->GetCombineCommon()->GetThresholdLumbraList()) {
        if (bean == nullptr || bean->GetLumbraDataList().empty()) {
            continue;
        }
        EventIdList ids;
        TableState state = TableState::NOT_BUILT;
        // A bean with two ids of 0 skips those that follow, too: rule sets are tested against this.
        isStopped = isStopped || !DerivedTables::GetEventIdList(bean->GetLumbraDataList(), ids);
        if (!isStopped) {
            const DerivedTables::Table table{bean->GetName(), ColumnsOf(bean->GetLumbraDataList())};
            TableState* const result = looksAtTables ? &state : nullptr;
            isBuilt = bean->TakesEvents() ? IsSuccessCreatePerfDb(table, ids, eventDbPath, result)
                                          : IsSuccessCreateLumbraPlusDb(table, result);
        }
        if (looksAtTables) {
            bean->SetTableState(state);
        }
    }
    return isBuilt && !isStopped;
}

bool CommonPartDbHelper::IsSuccessCreatePerfDb(
    const DerivedTables::Table& table, const EventIdList& ids, const std::string& eventDbPath, TableState* state)
{
    const std::lock_guard<std::mutex> lock(perfDbMutex);
    return DerivedTables::BuildFromEvents(table, ids, eventDbPath, state);
}

bool CommonPartDbHelper::IsSuccessCreateLumbraPlusDb(const DerivedTables::Table& table, TableState* state)
{
    const std::lock_guard<std::mutex> lock(plusDbMutex);
    return DerivedTables::BuildFixed(table, state);
}

void CommonPartDbHelper::CopyDbAndCreateTable(const std::shared_ptr<CommonPart>& commonPart)
{
    if (commonPart == nullptr || commonPart->GetCombineCommon() == nullptr) {
        return;
    }
    TextLimits limits;
    for (const auto& bean : commonPart->GetCombineCommon()->GetDefDbTableCommonList()) {
        if (bean == nullptr) {
            continue;
        }
        bean->SetNoCopy(Evidence::NoCopy::FOLDER_MISSING, "");
        bean->SetLacksCopies(false);
        bean->SetLacksTables(false);
        for (const auto& dbPath : bean->GetDbPathList()) {
            const std::string path = dbPath == nullptr ? "" : DevicePaths::OnDevice(dbPath->GetPathValue());
            if (path.empty() || !FileUtil::FileExists(path)) {
                continue;
            }
            // If several paths exist, the bean keeps the copies of the last one only.
            const ExternalDatabases::Copies copies = ExternalDatabases::CopyDbFile(path, bean->GetDbName());
            bean->SetCopyDbFileList(copies.files);
            bean->SetNoCopy(copies.missing, dbPath->GetPathValue());
            bean->SetLacksCopies(!copies.isWhole);
            if (copies.missing == Evidence::NoCopy::SETTING_EMPTY) {
                TroubleWatch::Tell(
                    Evidence::Trouble::Kind::NO_COPY_FOLDER, {}, {bean->GetName(), {}, bean->GetLine()});
            }
            bean->SetLacksTables(
                !IsCreateDbByFileComplete(bean->GetCopyDbFileList(), bean->GetCreateTableList(), limits));
        }
    }
}

// A file that is listed again gets the statements again, which fail then where they created a table.
bool CommonPartDbHelper::IsCreateDbByFileComplete(
    const std::vector<std::string>& files, const DefDbTableBean::CreateTableList& createTables, TextLimits& limits)
{
    bool isComplete = true;
    std::unordered_set<std::string_view> served;
    for (const std::string& file : files) {
        const bool isFirst = served.insert(file).second;
        for (const auto& createTable : createTables) {
            if (!file.empty() && createTable != nullptr && !CreateTable(file, createTable->GetSql(), limits)) {
                FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: create table %s fail.",
                    "CommonPartDbHelper::IsCreateDbByFileComplete", createTable->GetTableName().c_str());
                isComplete = isComplete && !isFirst;
            }
        }
    }
    return isComplete;
}

bool CommonPartDbHelper::CreateTable(const std::string& dbPath, const std::string& sql, TextLimits& limits)
{
    const std::lock_guard<std::mutex> lock(createTableMutex);
    return ExternalDatabases::CreateTable(dbPath, sql, limits);
}
