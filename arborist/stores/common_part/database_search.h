#ifndef ARBORIST_STORES_COMMON_PART_DATABASE_SEARCH_H
#define ARBORIST_STORES_COMMON_PART_DATABASE_SEARCH_H

#include <cstddef>
#include <string>
#include <vector>

#include "arborist/stores/common_part/file_name_pattern.h"

/// Lists the files below a directory whose whole path, in lower case, matches a pattern in lower case. The path is the
/// one on the device, so that the folder of a recorded device makes no difference.
///
/// Every directory is searched by a walk of its own and again by the walk of each directory above it: a file one level
/// down is listed twice, two levels down four times, in the order of these walks. Rule sets rely on the repetition; the
/// file system is read only once. The target of a link to a directory is searched at its own place, once, so that links
/// in a circle end. Time is proportional to the number of entries below the directory and of listings, memory to that of
/// folders, links and matches among them. Use an object for one search.
class DatabaseSearch {
public:
    /// Listings of one directory, whatever else is found: a file 13 levels down is listed as often as one below.
    static constexpr std::size_t MOST_LISTINGS = 8192;
    /// Once the list is this long, no directory is listed again; every file is listed at least once.
    static constexpr std::size_t MOST_LISTINGS_IN_ALL = 1024 * 1024;
    /// Links that are followed one after the other.
    static constexpr std::size_t MOST_LINKS = 64;

    /// Files, folders and links that one search looks at.
    static constexpr std::size_t MOST_ENTRIES = 4 * 1024 * 1024;

    /// `pattern` is an ECMAScript regular expression; see FileNamePattern for the errors that it may throw.
    explicit DatabaseSearch(const std::string& pattern, std::size_t mostEntries = MOST_ENTRIES);

    /// Returns canonical paths in the spelling of the file system. Empty if `directory` is no directory.
    std::vector<std::string> Find(const std::string& directory, bool recursive);

    /// The pattern in lower case, compiled unless there was nothing to match it with.
    FileNamePattern& GetPattern() { return mPattern; }

    /// True if a repetition was left out.
    bool IsCutShort() const { return mIsCutShort; }
    /// True if the target of a link was left out because of MOST_LINKS.
    bool HasLeftOutLinks() const { return mHasLeftOutLinks; }
    /// True if entries were left out because of `mostEntries`.
    bool HasLeftOutEntries() const { return mHasLeftOutEntries; }
    /// True if entries were left out because of a directory that can't be read, except one that may not be read.
    bool HasLeftOutFolders() const { return mHasLeftOutFolders; }
    /// True if there was a file, whether it matched or not.
    bool HasSeenFiles() const { return mHasSeenFiles; }

private:
    FileNamePattern mPattern;
    std::size_t mMostEntries;
    bool mIsCutShort = false;
    bool mHasLeftOutLinks = false;
    bool mHasLeftOutEntries = false;
    bool mHasLeftOutFolders = false;
    bool mHasSeenFiles = false;
};

#endif
