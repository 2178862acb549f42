#include "diagnosis/bundle/bundle_overlay.h"

#include <filesystem>

#include "arborist/frame/settings.h"
#include "diagnosis/bundle/repair_records.h"
#include "diagnosis/sqlite/database_files.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

constexpr char EVENT_LOG_FOLDER[] = "Comms/Lumbra/workDir";
constexpr char COPIES[] = "databases";

std::optional<Failure> Link(const fs::path& source, const fs::path& target)
{
    std::error_code error;
    fs::create_directories(target.parent_path(), error);
    if constexpr (MAKES_LINKS) {
        fs::create_symlink(source, target, error);
    } else {
        fs::create_directory(target, error); // a folder instead of a database is another one as well
    }
    return error ? std::optional(Failure{FailureCode::NO_SCRATCH, target.generic_string() + ": " + error.message()})
                 : std::nullopt;
}

std::optional<Failure> Copy(const fs::path& source, const fs::path& target)
{
    std::error_code error;
    fs::create_directories(target.parent_path(), error);
    if (!fs::exists(source, error)) {
        return std::nullopt;
    }
    // If the source is a folder instead of a database, links it.
    return fs::is_regular_file(source, error) ? CopyDatabase(source.generic_string(), target.generic_string())
                                              : Link(source, target);
}

// The library never writes into the log. Links the folder two levels above it, which has nothing else, instead of the
// file: creating and removing a folder costs a hundredth of a small detection.
std::optional<Failure> LayEventLog(const fs::path& data, const fs::path& overlay)
{
    const fs::path log = data / EVENT_LOG;
    std::error_code error;
    // Without an event log its folder is made all the same, as on a device that has not logged anything yet.
    if (!MAKES_LINKS || !fs::exists(log, error) || IsTouchedByReading(log.generic_string())) {
        return Copy(log, overlay / EVENT_LOG);
    }
    fs::remove_all(overlay / EVENT_LOG_FOLDER, error); // what a bundle without a log left in a scratch folder
    return Link(data / EVENT_LOG_FOLDER, overlay / EVENT_LOG_FOLDER);
}

std::optional<Failure> CopyOwnDatabases(const fs::path& own, const fs::path& overlay)
{
    for (const char* file : {DERIVED_DATABASE, REPAIR_RECORDS}) {
        if (auto failure = Copy(own / file, overlay / file)) {
            return failure;
        }
    }
    return std::nullopt;
}

} // namespace

std::vector<std::string> FoldersOfOverlay()
{
    std::vector<std::string> folders = {COPIES};
    for (const char* file : {REPAIR_RECORDS, EVENT_LOG}) {
        for (fs::path folder = fs::path(file).parent_path(); !folder.empty(); folder = folder.parent_path()) {
            folders.push_back(folder.generic_string());
        }
    }
    return folders;
}

std::optional<Failure> LayOverlay(const std::string& folder, Scratch& scratch,
    std::map<std::string, std::string>& settings, PathNames& names)
{
    std::string& data = settings[Settings::PROGRAM_DATA_DIR];
    const std::string root = data.empty() ? MACHINE_DATA : data;
    const fs::path own = fs::path(folder) / root;
    const fs::path overlay = scratch.Path();
    if (auto failure = LayEventLog(own, overlay)) {
        return failure;
    }
    if (auto failure = CopyOwnDatabases(own, overlay)) {
        return failure;
    }
    // Leave it empty if it is: without a folder the library refuses to copy and reports that.
    if (std::string& databases = settings[Settings::APP_DATABASE_DIR]; !databases.empty()) {
        const std::string copies = scratch.Path(COPIES);
        names.Add(copies, databases);
        databases = copies;
    }
    names.Add(overlay.generic_string(), root);
    data = overlay.generic_string();
    return std::nullopt;
}

std::optional<Failure> LayDatabasesAnew(const std::string& folder, Scratch& scratch, const std::string& root)
{
    const fs::path overlay = scratch.Path();
    std::error_code error;
    for (const char* file : {DERIVED_DATABASE, REPAIR_RECORDS}) {
        for (const char* companion : {"", "-wal", "-shm", "-journal"}) {
            fs::remove(overlay / (file + std::string(companion)), error);
        }
    }
    const fs::path own = fs::path(folder) / (root.empty() ? MACHINE_DATA : root);
    if (!fs::exists(own / EVENT_LOG, error)) {
        fs::remove(overlay / EVENT_LOG, error); // the empty one that building a derived table leaves
    }
    const fs::path copies = scratch.Path(COPIES);
    for (const fs::directory_entry& entry : fs::directory_iterator(copies, error)) {
        std::error_code ignored;
        fs::remove_all(entry.path(), ignored);
    }
    return CopyOwnDatabases(own, overlay);
}

} // namespace diagnosis
