#include "diagnosis/process/tree_removal.h"

#include <filesystem>
#include <string>
#include <vector>

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

// A file that may not be written can't be removed either, unlike elsewhere.
void RemoveEntry(const fs::path& path)
{
    std::error_code error;
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add, error);
    fs::remove(path, error);
}

void RemoveWithContent(const fs::path& path)
{
    std::error_code error;
    std::vector<fs::path> entries; // the listing is closed before an entry goes
    if (fs::symlink_status(path, error).type() == fs::file_type::directory) {
        for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
            entries.push_back(entry->path());
        }
    }
    for (const fs::path& entry : entries) {
        RemoveWithContent(entry);
    }
    RemoveEntry(path);
}

} // namespace

void RemoveTree(const char* path)
{
    RemoveWithContent(path);
}

} // namespace diagnosis
