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
/// in a circle end. Time and memory are proportional to the number of entries below the directory. Use an object for
/// one search.
class DatabaseSearch {
public:
    /// Once the list is this long, files are not repeated any more; files that are not listed yet are always added.
    /// Allows 13 levels of repetition for one file.
    static constexpr std::size_t MOST_LISTINGS = 8192;

    /// `pattern` is an ECMAScript regular expression; see FileNamePattern for the errors that it may throw.
    explicit DatabaseSearch(const std::string& pattern);

    /// Returns canonical paths in the spelling of the file system. Empty if `directory` is no directory.
    std::vector<std::string> Find(const std::string& directory, bool recursive);

    /// True if a repetition was left out.
    bool IsCutShort() const { return mIsCutShort; }
    /// True if there was a file, whether it matched or not.
    bool HasSeenFiles() const { return mHasSeenFiles; }

private:
    FileNamePattern mPattern;
    bool mIsCutShort = false;
    bool mHasSeenFiles = false;
};

#endif
