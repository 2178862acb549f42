#include "tools/arborist/bundle/bundle_overlay.h"

#include <filesystem>

#include "arborist/frame/settings.h"
#include "tools/arborist/repair_db/repair_records.h"
#include "tools/arborist/sqlite/database_files.h"

namespace command {

namespace fs = std::filesystem;

namespace {

/// How a file gets into the overlay: the library writes into its own databases, never into the log.
enum class Way { LINK, COPY };

std::optional<Failure> Lay(const fs::path& source, const fs::path& target, Way way)
{
    std::error_code error;
    fs::create_directories(target.parent_path(), error);
    if (!fs::exists(source, error)) {
        return std::nullopt;
    }
    const bool isCopied = way == Way::COPY ? fs::is_regular_file(source, error) : IsTouchedByReading(source.string());
    if (isCopied) {
        return CopyDatabase(source.string(), target.string());
    }
    // A folder in the place of a database is one here, too.
    fs::create_symlink(source, target, error);
    return error ? std::optional(Failure{"no_scratch", target.string() + ": " + error.message(), ExitStatus::INTERNAL})
                 : std::nullopt;
}

} // namespace

std::optional<Failure> LayOverlay(const std::string& folder, Scratch& scratch,
    std::map<std::string, std::string>& settings, PathNames& names)
{
    std::string& data = settings[Settings::PROGRAM_DATA_DIR];
    const std::string root = data.empty() ? MACHINE_DATA : data;
    const fs::path overlay = scratch.Path("programdata");
    const std::pair<const char*, Way> files[] = {
        {EVENT_LOG, Way::LINK}, {DERIVED_DATABASE, Way::COPY}, {REPAIR_RECORDS, Way::COPY}};
    for (const auto& [file, way] : files) {
        if (auto failure = Lay(fs::path(folder) / root / file, overlay / file, way)) {
            return failure;
        }
    }
    names.Add(overlay.string(), root);
    data = overlay.string();
    // Without a folder the library refuses to copy, and tells so.
    if (std::string& databases = settings[Settings::APP_DATABASE_DIR]; !databases.empty()) {
        const std::string copies = scratch.Path("databases");
        names.Add(copies, databases);
        databases = copies;
    }
    return std::nullopt;
}

} // namespace command
