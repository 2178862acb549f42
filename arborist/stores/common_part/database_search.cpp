#include "arborist/stores/common_part/database_search.h"

#include <cstdint>
#include <filesystem>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

#include "arborist/frame/stopping.h"
#include "arborist/stores/common_part/lower_case.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/directory_walk.h"
#include "arborist/utilities/file_util.h"
#include "arborist/utilities/native_path.h"

namespace {

// Limit on entering directories again, which bounds the time where circles of links lead to no file.
constexpr std::size_t MOST_ENTERED = 2 * DatabaseSearch::MOST_LISTINGS_IN_ALL;

bool IsLink(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::is_symlink(NativePath(path), ignored);
}

// An entry that a walk keeps: a directory, a link to a directory or a matching file.
struct Entry {
    enum class Kind { FILE, DIRECTORY, LINK };
    Kind kind;
    /// For a file its index among the matches, for a link the walk of its target.
    std::size_t target = 0;
    /// One past the last entry below a directory; one past the entry for others.
    std::size_t end = 0;
    /// True if a matching file is this entry, is below it or is reached through it.
    bool isUseful = false;
    std::size_t timesEntered = 0;
};

// The entries below a directory in pre-order.
struct Walk {
    std::string path;
    std::size_t level;
    std::vector<Entry> entries{};
    bool isUseful = false;
    std::size_t timesEntered = 0;
    bool isOnItsWay = false;
};

// The entries below a directory and, if links are followed, below their targets. Reads each directory once.
class FoundTree {
public:
    FoundTree(FileNamePattern& pattern, bool followLinks, std::size_t mostEntries)
        : mPattern(pattern), mFollowLinks(followLinks), mEntriesLeft(mostEntries),
          mRootOfDevice(DevicePaths::RealRootOfDevice())
    {
    }

    void Read(const std::string& realPath)
    {
        WalkOf(realPath, 0);
        for (std::size_t walk = 0; walk < walks.size(); ++walk) {
            const std::string path = walks[walk].path; // a copy: links that are found on the way append to `walks`
            std::vector<Entry> entries = ReadEntries(path, walks[walk].level);
            walks[walk].entries = std::move(entries);
        }
        MarkUsefulWalks();
        for (Walk& walk : walks) {
            MarkUsefulEntries(walk.entries);
            KeepUsefulEntries(walk.entries);
        }
    }

    std::vector<Walk> walks;
    std::vector<std::string> matches;
    bool hasSeenFiles = false;
    bool hasLeftOutLinks = false;
    bool hasLeftOutEntries = false;
    bool hasLeftOutFolders = false;

private:
    static constexpr std::size_t NONE = SIZE_MAX;

    std::size_t WalkOf(const std::string& realPath, std::size_t level)
    {
        const auto known = mWalkOfPath.find(realPath);
        if (known != mWalkOfPath.end()) {
            return known->second;
        }
        hasLeftOutLinks = hasLeftOutLinks || level > DatabaseSearch::MOST_LINKS;
        if (realPath.empty() || level > DatabaseSearch::MOST_LINKS) {
            return NONE;
        }
        mWalkOfPath.emplace(realPath, walks.size());
        walks.push_back({realPath, level});
        return walks.size() - 1;
    }

    std::vector<Entry> ReadEntries(const std::string& directory, std::size_t level)
    {
        // The folder is opened within the device: it may have been replaced by a link since it was found.
        const RootedPath::Target opened = DevicePaths::FindReal(directory, mRootOfDevice);
        std::vector<Entry> entries;
        std::vector<std::pair<std::size_t, std::string>> open; // directories with their paths
        const bool isWhole = DirectoryWalk::Run(opened.Path(), [&](std::string path) {
            if (mEntriesLeft == 0) {
                hasLeftOutEntries = true;
                return false;
            }
            --mEntriesLeft;
            path.replace(0, opened.Path().size(), directory);
            FileUtil::FormatPath2UnixStyle(path);
            while (!open.empty() && !IsBelow(path, open.back().second)) {
                entries[open.back().first].end = entries.size();
                open.pop_back();
            }
            if (Look(path, level, entries)) {
                open.emplace_back(entries.size() - 1, std::move(path));
            }
            return true;
        });
        hasLeftOutFolders = hasLeftOutFolders || !isWhole;
        for (const auto& [entry, path] : open) {
            entries[entry].end = entries.size();
        }
        return entries;
    }

    static bool IsBelow(const std::string& path, const std::string& directory)
    {
        return path.size() > directory.size() && path[directory.size()] == '/' &&
            path.compare(0, directory.size(), directory) == 0;
    }

    // Appends an entry if the path is a directory, a link to one or a matching file; true for a directory to walk into.
    bool Look(const std::string& path, std::size_t level, std::vector<Entry>& entries)
    {
        // The target of a link on a captured device is in the captured device, never on this machine.
        const bool isLink = IsLink(path);
        const std::string target = isLink ? DevicePaths::RealPath(path, mRootOfDevice) : path;
        if (!FileUtil::IsDirectory(target)) {
            hasSeenFiles = true;
            Take(Entry::Kind::FILE, MatchOf(path, target), entries);
            return false;
        }
        if (isLink) {
            Take(Entry::Kind::LINK, mFollowLinks ? WalkOf(target, level + 1) : NONE, entries);
            return false;
        }
        Take(Entry::Kind::DIRECTORY, 0, entries);
        return true;
    }

    static void Take(Entry::Kind kind, std::size_t target, std::vector<Entry>& entries)
    {
        if (target != NONE) {
            entries.push_back({kind, target, entries.size() + 1});
        }
    }

    std::size_t MatchOf(const std::string& path, const std::string& target)
    {
        std::string realPath;
        if (!mPattern.Matches(LowerCase(DevicePaths::PathOnDevice(path, mRootOfDevice))) ||
            !FileUtil::PathToRealPath(target, realPath)) {
            return NONE;
        }
        const auto [known, isNew] = mMatchOfPath.try_emplace(std::move(realPath), matches.size());
        if (isNew) {
            matches.push_back(known->first);
        }
        return known->second;
    }

    // A walk is useful if it has a matching file or a link to a useful walk.
    void MarkUsefulWalks()
    {
        std::vector<std::vector<std::size_t>> leadingTo(walks.size());
        std::vector<std::size_t> useful;
        for (std::size_t walk = 0; walk < walks.size(); ++walk) {
            for (const Entry& entry : walks[walk].entries) {
                if (entry.kind == Entry::Kind::LINK) {
                    leadingTo[entry.target].push_back(walk);
                } else if (entry.kind == Entry::Kind::FILE && !walks[walk].isUseful) {
                    walks[walk].isUseful = true;
                    useful.push_back(walk);
                }
            }
        }
        while (!useful.empty()) {
            const std::size_t found = useful.back();
            useful.pop_back();
            for (const std::size_t walk : leadingTo[found]) {
                if (!walks[walk].isUseful) {
                    walks[walk].isUseful = true;
                    useful.push_back(walk);
                }
            }
        }
    }

    void MarkUsefulEntries(std::vector<Entry>& entries) const
    {
        std::vector<std::size_t> usefulFrom(entries.size() + 1); // number of useful entries from an entry on
        for (std::size_t index = entries.size(); index-- > 0;) {
            Entry& entry = entries[index];
            entry.isUseful = entry.kind == Entry::Kind::DIRECTORY ? usefulFrom[index + 1] != usefulFrom[entry.end]
                : entry.kind == Entry::Kind::FILE || walks[entry.target].isUseful;
            usefulFrom[index] = usefulFrom[index + 1] + (entry.isUseful ? 1U : 0U);
        }
    }

    // Leaves out the others, so that a listing visits what leads to a file and nothing else.
    static void KeepUsefulEntries(std::vector<Entry>& entries)
    {
        std::vector<std::size_t> placeOf(entries.size() + 1); // number of useful entries before an entry
        for (std::size_t index = 0; index < entries.size(); ++index) {
            placeOf[index + 1] = placeOf[index] + (entries[index].isUseful ? 1U : 0U);
        }
        for (Entry& entry : entries) {
            entry.end = placeOf[entry.end];
        }
        std::erase_if(entries, [](const Entry& entry) { return !entry.isUseful; });
    }

    FileNamePattern& mPattern;
    bool mFollowLinks;
    std::size_t mEntriesLeft;
    std::string mRootOfDevice;
    std::unordered_map<std::string, std::size_t> mWalkOfPath; // by canonical path
    std::unordered_map<std::string, std::size_t> mMatchOfPath;
};

// Lists the files of a tree in the order of all walks; every walk iterates over the same entries.
class Listing {
public:
    Listing(FoundTree& tree, bool recursive)
        : mTree(tree), mTimesOfDirectory(recursive ? 2 : 1), mIsListed(tree.matches.size())
    {
    }

    void List(Walk& walk)
    {
        walk.isOnItsWay = true;
        ++mWalksOnTheirWay;
        List(walk, 0, walk.entries.size());
        --mWalksOnTheirWay;
        walk.isOnItsWay = false;
    }

    std::vector<std::string> files;
    bool isCutShort = false;
    bool hasLeftOutLinks = false;

private:
    void List(Walk& walk, std::size_t first, std::size_t last)
    {
        for (std::size_t index = first; index < last; index = walk.entries[index].end) {
            Entry& entry = walk.entries[index];
            if (entry.kind == Entry::Kind::FILE) {
                ListFile(entry.target);
            } else if (entry.kind == Entry::Kind::LINK) {
                Follow(mTree.walks[entry.target]);
            } else { // first for the directory itself, then for the walk that found it
                for (int time = 0; time < mTimesOfDirectory && MayEnter(entry.timesEntered); ++time) {
                    List(walk, index + 1, entry.end);
                }
            }
        }
    }

    // Lists the target of a link unless the walks came through it.
    void Follow(Walk& target)
    {
        if (target.isOnItsWay) {
            return;
        }
        if (mWalksOnTheirWay > DatabaseSearch::MOST_LINKS) {
            hasLeftOutLinks = true;
        } else if (MayEnter(target.timesEntered)) {
            List(target);
        }
    }

    bool IsFull() const
    {
        return files.size() >= DatabaseSearch::MOST_LISTINGS_IN_ALL || mEntered >= MOST_ENTERED;
    }

    // True if the walk may enter the directory: always once, and again as long as there is room for its repetitions.
    bool MayEnter(std::size_t& timesEntered)
    {
        if (timesEntered >= DatabaseSearch::MOST_LISTINGS || (IsFull() && timesEntered != 0)) {
            isCutShort = true;
            return false;
        }
        StopPoint::Pass();
        ++mEntered;
        ++timesEntered;
        return true;
    }

    void ListFile(std::size_t match)
    {
        if (mIsListed[match] && IsFull()) {
            isCutShort = true;
            return;
        }
        mIsListed[match] = true;
        files.push_back(mTree.matches[match]);
    }

    FoundTree& mTree;
    int mTimesOfDirectory;
    std::vector<bool> mIsListed;
    std::size_t mEntered = 0;
    std::size_t mWalksOnTheirWay = 0;
};

} // namespace

DatabaseSearch::DatabaseSearch(const std::string& pattern, std::size_t mostEntries)
    : mPattern(LowerCase(pattern)), mMostEntries(mostEntries)
{
}

std::vector<std::string> DatabaseSearch::Find(const std::string& directory, bool recursive)
{
    std::string realPath;
    FileUtil::PathToRealPath(directory, realPath);
    FoundTree tree(mPattern, recursive, mMostEntries);
    tree.Read(realPath);
    mHasSeenFiles = tree.hasSeenFiles;
    mHasLeftOutEntries = tree.hasLeftOutEntries;
    mHasLeftOutFolders = tree.hasLeftOutFolders;
    if (tree.walks.empty()) {
        return {};
    }
    Listing listing(tree, recursive);
    listing.List(tree.walks.front());
    mIsCutShort = listing.isCutShort;
    mHasLeftOutLinks = tree.hasLeftOutLinks || listing.hasLeftOutLinks;
    return std::move(listing.files);
}
