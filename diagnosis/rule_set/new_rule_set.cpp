#include "diagnosis/rule_set/new_rule_set.h"

#include <filesystem>
#include <fstream>

#include "diagnosis/log_db/import_log.h"
#include "diagnosis/process/process_state.h"
#include "diagnosis/rule_set/start_files.h"

namespace diagnosis::rule_set {

namespace {

namespace fs = std::filesystem;

constexpr char EVENTS[] = "events.jsonl";
// Where the library looks for the log below the bundle's ProgramDataDir.
constexpr char LOG[] = "programdata/Comms/Lumbra/workDir/0/log.db";
// That of bundle.json.
constexpr char ZONE[] = "UTC";

Failure NotWritten(const std::string& path, const std::string& reason)
{
    return {FailureCode::NOT_WRITTEN, path + ": " + reason};
}

std::optional<Failure> MakeEmptyFolder(const std::string& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error || !fs::is_directory(folder, error)) {
        return NotWritten(folder, "can't be created" + (error ? ": " + error.message() : ""));
    }
    const bool isEmpty = fs::is_empty(folder, error);
    return error  ? std::optional(NotWritten(folder, "can't be read: " + error.message()))
        : isEmpty ? std::nullopt
                  : std::optional(NotWritten(folder, "is not empty; nothing was written"));
}

std::optional<Failure> Write(const std::string& folder, const StartFile& file)
{
    const fs::path path = fs::path(folder) / file.path;
    std::error_code error;
    fs::create_directories(path.parent_path(), error);
    std::ofstream stream(path, std::ios::binary);
    stream << file.content;
    return stream.flush() ? std::nullopt : std::optional(NotWritten(path.generic_string(), "can't be written"));
}

std::optional<Failure> WriteLog(const std::string& folder)
{
    const std::string log = folder + "/" + LOG;
    std::error_code error;
    fs::create_directories(fs::path(log).parent_path(), error);
    const TimeZoneGuard zone(ZONE);
    const auto failures = ImportEventLog(folder + "/" + EVENTS, log);
    return failures.empty() ? std::nullopt : std::optional(failures.front());
}

} // namespace

std::optional<Failure> MakeRuleSet(const std::string& folder, std::vector<std::string>& paths)
{
    if (auto failure = MakeEmptyFolder(folder)) {
        return failure;
    }
    for (const StartFile& file : StartFiles()) {
        if (auto failure = Write(folder, file)) {
            return failure;
        }
        paths.emplace_back(file.path);
    }
    paths.emplace_back(LOG);
    return WriteLog(folder);
}

} // namespace diagnosis::rule_set
