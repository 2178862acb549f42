#include "arborist/stores/common_part/database_search.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "arborist/stores/common_part/lower_case.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/file_util.h"

namespace {

// Links can lead from directory to directory without end. What lies deeper is still found by the walks from above.
constexpr std::size_t MOST_LEVELS = 64;

bool IsLink(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::is_symlink(path, ignored);
}

} // namespace

// What a walk met.
struct DatabaseSearch::Entry {
    std::string path;
    bool isDirectory = false;
    bool isLink = false;
    /// For a file that matches: its one position in mMatches.
    MatchList match;
    /// For a directory: behind the last entry below it.
    std::size_t end = 0;
};

// One walk of the file system, and the lists of the directories in it: what a walk of one of them would meet stands
// directly behind it.
class DatabaseSearch::Walk {
public:
    Walk(DatabaseSearch& search, std::vector<Entry> entries, bool recursive, std::size_t depth)
        : mSearch(search), mEntries(std::move(entries)), mIsRecursive(recursive), mDepth(depth)
    {
        FindEnds();
    }

    MatchList List()
    {
        // From the last to the first, so that the lists of the directories inside are there when they are needed.
        std::map<std::size_t, MatchList> lists;
        for (std::size_t index = mEntries.size(); index-- > 0;) {
            if (mEntries[index].isDirectory && !mEntries[index].isLink && mIsRecursive) {
                lists[index] = ListRange(index + 1, mEntries[index].end, lists);
            }
        }
        return ListRange(0, mEntries.size(), lists);
    }

private:
    void FindEnds()
    {
        std::vector<std::size_t> open;
        for (std::size_t index = 0; index <= mEntries.size(); ++index) {
            while (!open.empty() && (index == mEntries.size() || !IsBelow(mEntries[index], mEntries[open.back()]))) {
                mEntries[open.back()].end = index;
                open.pop_back();
            }
            if (index < mEntries.size() && mEntries[index].isDirectory) {
                open.push_back(index);
            }
        }
    }

    static bool IsBelow(const Entry& entry, const Entry& directory)
    {
        return entry.path.size() > directory.path.size() && entry.path[directory.path.size()] == '/' &&
            entry.path.compare(0, directory.path.size(), directory.path) == 0;
    }

    MatchList ListRange(std::size_t first, std::size_t last, const std::map<std::size_t, MatchList>& lists)
    {
        MatchList found;
        for (std::size_t index = first; index < last; ++index) {
            const Entry& entry = mEntries[index];
            if (!entry.match.empty()) {
                mSearch.Append(found, entry.match);
            } else if (entry.isDirectory && mIsRecursive) {
                mSearch.Append(found, entry.isLink ? FindBehind(entry) : lists.at(index));
            }
        }
        return found;
    }

    const MatchList& FindBehind(const Entry& link)
    {
        return mSearch.FindBelow(DevicePaths::RealPath(link.path, mSearch.mRootOfDevice), mIsRecursive, mDepth + 1);
    }

    DatabaseSearch& mSearch;
    std::vector<Entry> mEntries;
    bool mIsRecursive;
    std::size_t mDepth;
};

DatabaseSearch::DatabaseSearch(const std::string& pattern)
    : mPattern(LowerCase(pattern)), mRootOfDevice(DevicePaths::RealRootOfDevice())
{
}

std::vector<std::string> DatabaseSearch::Find(const std::string& directory, bool recursive)
{
    std::string realPath;
    FileUtil::PathToRealPath(directory, realPath);
    std::vector<std::string> files;
    for (const std::size_t match : FindBelow(realPath, recursive, 0)) {
        files.push_back(mMatches[match]);
    }
    return files;
}

const DatabaseSearch::MatchList& DatabaseSearch::FindBelow(
    const std::string& realPath, bool recursive, std::size_t depth)
{
    const auto [list, isNew] = mFoundBelow.try_emplace(realPath);
    if (!isNew || realPath.empty() || depth > MOST_LEVELS) {
        return list->second;
    }
    std::vector<std::string> paths;
    FileUtil::GetDirFiles(realPath, paths);
    std::vector<Entry> entries;
    entries.reserve(paths.size());
    for (std::string& path : paths) {
        entries.push_back(Look(std::move(path)));
    }
    list->second = Walk(*this, std::move(entries), recursive, depth).List();
    return list->second;
}

DatabaseSearch::Entry DatabaseSearch::Look(std::string path)
{
    Entry entry;
    entry.path = std::move(path);
    // What a link of a captured device leads to lies in the captured device, never on this machine.
    const bool isLink = IsLink(entry.path);
    const std::string target = isLink ? DevicePaths::RealPath(entry.path, mRootOfDevice) : entry.path;
    entry.isDirectory = FileUtil::IsDirectory(target);
    entry.isLink = entry.isDirectory && isLink;
    if (!entry.isDirectory && mPattern.Matches(LowerCase(DevicePaths::PathOnDevice(entry.path, mRootOfDevice)))) {
        std::string realPath;
        if (FileUtil::PathToRealPath(target, realPath)) {
            entry.match.push_back(mMatches.size());
            mMatches.push_back(std::move(realPath));
        }
    }
    return entry;
}

void DatabaseSearch::Append(MatchList& list, const MatchList& more)
{
    const std::size_t room = MOST_LISTINGS - list.size();
    mIsCutShort = mIsCutShort || more.size() > room;
    list.insert(list.end(), more.begin(), more.begin() + static_cast<std::ptrdiff_t>(std::min(room, more.size())));
}
