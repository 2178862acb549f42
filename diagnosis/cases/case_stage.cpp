#include "diagnosis/cases/case_stage.h"

#include <filesystem>
#include <fstream>

#include "diagnosis/bundle/bundle_file.h"
#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/bundle/repair_records.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/cases/case_databases.h"
#include "diagnosis/log_db/event_log.h"
#include "diagnosis/process/tree_removal.h"
#include "diagnosis/sqlite/connection.h"

namespace diagnosis::cases {

namespace fs = std::filesystem;

namespace {

using Problem = std::optional<Failure>;

Problem NotWritten(const std::string& path, const std::string& reason)
{
    return Failure{FailureCode::NO_SCRATCH, path + ": " + reason};
}

Problem WriteFile(const fs::path& path, const std::string& content)
{
    std::error_code error;
    fs::create_directories(path.parent_path(), error);
    std::ofstream file(path, std::ios::binary);
    file << content;
    return file.flush() ? std::nullopt : NotWritten(path.generic_string(), "can't be written");
}

Problem WriteLog(const std::vector<LoggedEvent>& events, const std::string& path)
{
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);
    EventLogWriter writer(EventLogWriter::Durability::NONE);
    if (auto failure = writer.Open(path)) {
        return failure;
    }
    for (const LoggedEvent& event : events) {
        if (auto failure = writer.Add(event)) {
            return failure;
        }
    }
    return writer.Finish();
}

// The table of the library's own store, so that a detection finds the dates.
Problem WriteRepairs(const std::vector<RepairRecord>& repairs, const std::string& path)
{
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);
    Connection database;
    if (!database.Open(path, Connection::Mode::CREATE)
        || !database.Execute("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; BEGIN; CREATE TABLE repair_data"
                             " (_id INTEGER PRIMARY KEY NOT NULL, repair_id TEXT, repair_date TEXT)")) {
        return NotWritten(path, database.GetError());
    }
    auto insert = database.Prepare("INSERT INTO repair_data (repair_id, repair_date) VALUES (?1, ?2)");
    for (auto repair = repairs.begin(); repair != repairs.end() && !database.HasError(); ++repair) {
        insert->Bind(1, repair->id);
        insert->Bind(2, repair->date);
        insert->Step();
        insert->Reset();
    }
    const bool isWritten = !database.HasError() && database.Execute("COMMIT");
    return isWritten ? std::nullopt : NotWritten(path, database.GetError());
}

} // namespace

Problem CaseStage::Build(const TestCase& testCase, const Bundle& description, std::string& folder)
{
    if (auto failure = mScratch.Make()) {
        return failure;
    }
    folder = mScratch.Path("case");
    RemoveTree(folder.c_str());
    const std::string data = folder + "/" + description.settings.at(Settings::PROGRAM_DATA_DIR) + "/";
    auto failure = WriteFile(folder + "/bundle.json", BundleText(description));
    if (!failure) {
        failure = WriteEventLog(testCase, data + EVENT_LOG);
    }
    if (!failure && !testCase.repairs.empty()) {
        failure = WriteRepairs(testCase.repairs, data + REPAIR_RECORDS);
    }
    if (!failure) {
        failure = WriteFiles(testCase, folder);
    }
    const std::string device = description.settings.at(Settings::DEVICE_ROOT_DIR);
    return failure ? failure : WriteDatabases(testCase, folder, device, mScratch.Path("archive"));
}

Problem CaseStage::WriteEventLog(const TestCase& testCase, const std::string& path)
{
    if (!testCase.events) {
        return std::nullopt;
    }
    if (!testCase.events->empty()) {
        return WriteLog(*testCase.events, path);
    }
    if (mEmptyLog.empty()) {
        const std::string empty = mScratch.Path("empty.db");
        if (auto failure = WriteLog({}, empty)) {
            return failure;
        }
        mEmptyLog = empty;
    }
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);
    fs::create_hard_link(mEmptyLog, path, error);
    return error ? WriteLog({}, path) : std::nullopt; // a file system without links
}

Problem CaseStage::WriteFiles(const TestCase& testCase, const std::string& folder)
{
    for (const auto& [path, content] : testCase.files) {
        const std::string name = NameOnDevice(testCase.bundle.settings.at(Settings::DEVICE_ROOT_DIR), path);
        if (auto failure = WriteFile(fs::path(folder) / name, content)) {
            return failure;
        }
    }
    return std::nullopt;
}

} // namespace diagnosis::cases
