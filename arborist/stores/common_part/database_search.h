#ifndef ARBORIST_STORES_COMMON_PART_DATABASE_SEARCH_H
#define ARBORIST_STORES_COMMON_PART_DATABASE_SEARCH_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "arborist/stores/common_part/file_name_pattern.h"

/// Lists the files below a directory whose whole path matches a pattern, both in lower case. The path is that on the
/// device: where a recorded device stands makes no difference.
///
/// Each directory is searched with all that lies below it, and then again for each directory above it: a file one level
/// down is listed twice, two levels down four times, in the order of these walks. Rule sets count on the repetition;
/// the file system is walked once all the same. A directory that a link leads to is searched where it lies, once, so
/// that links in a circle end. Made for one search.
class DatabaseSearch {
public:
    /// No search lists more than this: 13 levels of repetition for one file.
    static constexpr std::size_t MOST_LISTINGS = 8192;

    /// `pattern` is an ECMAScript regular expression; FileNamePattern tells what it may raise.
    explicit DatabaseSearch(const std::string& pattern);

    /// Canonical paths, spelled as the file system has them. Empty for a path that is no directory.
    std::vector<std::string> Find(const std::string& directory, bool recursive);

    /// True when a search was cut short.
    bool IsCutShort() const { return mIsCutShort; }

private:
    /// Files as positions in mMatches: the same ones stand in many lists.
    using MatchList = std::vector<std::size_t>;

    struct Entry;
    class Walk;

    const MatchList& FindBelow(const std::string& realPath, bool recursive, std::size_t depth);
    Entry Look(std::string path);
    void Append(MatchList& list, const MatchList& more);

    FileNamePattern mPattern;
    std::string mRootOfDevice;
    std::vector<std::string> mMatches;
    std::map<std::string, MatchList> mFoundBelow; // by canonical path; empty while the search is still on its way
    bool mIsCutShort = false;
};

#endif
