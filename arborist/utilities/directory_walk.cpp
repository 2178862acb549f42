#include "arborist/utilities/directory_walk.h"

#include <cerrno>
#include <cstddef>
#include <utility>
#include <vector>

#include "arborist/frame/stopping.h"
#include "arborist/utilities/platform.h"

namespace {

// A folder on the way to the current entry.
struct Level {
    Platform::Folder folder;
    std::size_t length; // of the path of the folder
};

// True if a folder that gave this error has no entries for us.
bool PassesForEmpty(int error)
{
    return error == EACCES || error == ENOENT || error == ENOTDIR;
}

} // namespace

bool DirectoryWalk::Run(const std::string& path, const Visit& visit)
{
    std::vector<Level> levels;
    Platform::Folder top(path);
    bool isWhole = top.IsOpen() || PassesForEmpty(errno);
    if (top.IsOpen()) {
        levels.push_back({std::move(top), path.size()});
    }
    std::string entry = path;
    while (!levels.empty()) {
        Platform::Folder& folder = levels.back().folder;
        if (!folder.Next()) {
            isWhole = isWhole && (errno == 0 || PassesForEmpty(errno));
            levels.pop_back();
            continue;
        }
        StopPoint::Pass();
        entry.resize(levels.back().length);
        entry.append(entry.back() == '/' ? "" : "/").append(folder.Name());
        if (!visit(entry)) {
            return isWhole;
        }
        if (!folder.IsFolder()) {
            continue;
        }
        Platform::Folder below = folder.OpenEntry();
        if (below.IsOpen()) {
            levels.push_back({std::move(below), entry.size()});
        } else {
            isWhole = isWhole && PassesForEmpty(errno);
        }
    }
    return isWhole;
}
