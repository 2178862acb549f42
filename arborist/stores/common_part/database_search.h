#ifndef ARBORIST_STORES_COMMON_PART_DATABASE_SEARCH_H
#define ARBORIST_STORES_COMMON_PART_DATABASE_SEARCH_H

#include <cstddef>
#include <string>
#include <vector>

#include "arborist/stores/common_part/file_name_pattern.h"

/// Lists the files below a directory whose whole path matches a pattern, both in lower case. The path is that on the
/// device: where a recorded device stands makes no difference.
///
/// Each directory is searched with all that lies below it, and then again for each directory above it: a file one level
/// down is listed twice, two levels down four times, in the order of these walks. Rule sets count on the repetition;
/// the file system is walked once all the same. A directory that a link leads to is searched where it lies, once, so
/// that links in a circle end. Time and memory are in proportion to the entries below the directory. Made for one
/// search.
class DatabaseSearch {
public:
    /// A file that is listed already is not listed again once the list is this long: 13 levels of repetition for one
    /// file. Files that are not listed yet always are.
    static constexpr std::size_t MOST_LISTINGS = 8192;

    /// `pattern` is an ECMAScript regular expression; FileNamePattern tells what it may raise.
    explicit DatabaseSearch(const std::string& pattern);

    /// Canonical paths, spelled as the file system has them. Empty for a path that is no directory.
    std::vector<std::string> Find(const std::string& directory, bool recursive);

    /// True when a repetition was left out.
    bool IsCutShort() const { return mIsCutShort; }

private:
    FileNamePattern mPattern;
    bool mIsCutShort = false;
};

#endif
