#include "diagnosis/bundle/bundle_bounds.h"

#include <filesystem>

#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/bundle/repair_records.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

constexpr int MOST_LINKS = 40;
// What SQLite reads or makes beside a database.
constexpr const char* COMPANIONS[] = {"-wal", "-journal", "-shm"};

// The first link from the end of the path upwards; nothing if it has none.
fs::path LinkIn(const fs::path& path)
{
    std::error_code error;
    for (fs::path part = path; part.has_relative_path(); part = part.parent_path()) {
        if (fs::is_symlink(part, error)) {
            return part;
        }
    }
    return {};
}

// The path without links. Follows a link to nothing, too: opening it makes the file to which it leads. What can't be
// looked at can't be opened either, and stays as it is.
fs::path Destination(const fs::path& path)
{
    std::error_code error;
    if (fs::path real = fs::canonical(path, error); !error) {
        return real;
    }
    fs::path destination = path;
    for (int links = 0; links < MOST_LINKS; ++links) {
        const fs::path real = fs::weakly_canonical(destination, error);
        const fs::path link = error ? fs::path() : LinkIn(real);
        if (link.empty()) {
            return error ? destination : real;
        }
        destination = link.parent_path() / fs::read_symlink(link, error) / real.lexically_relative(link);
    }
    return path;
}

// `real` has no links.
bool IsBelow(const std::string& folder, const std::string& real)
{
    return folder == "/" || real == folder || real.compare(0, folder.size() + 1, folder + "/") == 0;
}

bool IsInside(const std::string& folder, const fs::path& path)
{
    return IsBelow(folder, Destination(path).generic_string());
}

} // namespace

std::optional<std::string> PlaceOutside(const std::string& folder, const Bundle& bundle)
{
    const std::string data = bundle.settings.at(Settings::PROGRAM_DATA_DIR);
    for (const std::string& name : {bundle.settings.at(Settings::DEVICE_ROOT_DIR), data}) {
        if (!IsInside(folder, fs::path(folder) / name)) {
            return name;
        }
    }
    for (const char* database : {EVENT_LOG, DERIVED_DATABASE, REPAIR_RECORDS}) {
        const std::string name = data + "/" + database;
        const std::string real = Destination(fs::path(folder) / name).generic_string();
        if (!IsBelow(folder, real)) {
            return name;
        }
        for (const char* companion : COMPANIONS) {
            std::error_code error; // beside the database, it leads elsewhere only as a link
            if (fs::is_symlink(real + companion, error) && !IsInside(folder, real + companion)) {
                return name + companion;
            }
        }
    }
    return std::nullopt;
}

bool AreRulesOutside(const std::string& folder, const Bundle& bundle)
{
    return !IsInside(folder, fs::path(folder) / bundle.ruleFileDir);
}

} // namespace diagnosis
