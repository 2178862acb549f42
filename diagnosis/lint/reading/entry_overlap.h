#ifndef ARBORIST_DIAGNOSIS_LINT_READING_ENTRY_OVERLAP_H
#define ARBORIST_DIAGNOSIS_LINT_READING_ENTRY_OVERLAP_H

#include <cstddef>
#include <set>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace diagnosis::lint {

/// Finds entries of filters that are a part of others. Add all filters of one kind of device text first.
class EntryOverlap {
public:
    /// An entry, and another one that is a part of it; both empty if there is none.
    using Pair = std::pair<std::string_view, std::string_view>;

    /// The filter must outlive this object.
    void Add(std::string_view filter);
    /// The first entry of a filter that contains another entry, of this filter or of any other. Looks up all parts of
    /// each entry, and gives up after a number of them.
    const Pair& Find(std::string_view filter);

private:
    Pair Search(std::string_view filter);
    std::string_view PartOf(std::string_view entry);

    std::unordered_set<std::string_view> mFilters;
    std::unordered_set<std::string_view> mEntries;
    std::set<std::size_t> mLengths;
    std::unordered_map<std::string_view, Pair> mFound;
    std::size_t mLookups = 0;
};

} // namespace diagnosis::lint

#endif
