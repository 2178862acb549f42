#include "diagnosis/lint/reading/entry_overlap.h"

#include "diagnosis/lint/reading/filters.h"

namespace diagnosis::lint {

namespace {

constexpr std::size_t LONGEST_ENTRY = 64;
constexpr std::size_t MOST_LOOKUPS = 5'000'000;

} // namespace

void EntryOverlap::Add(std::string_view filter)
{
    if (!mFilters.insert(filter).second) {
        return;
    }
    for (const std::string_view entry : EntriesOf(filter)) {
        mEntries.insert(entry);
        mLengths.insert(entry.size());
    }
}

const EntryOverlap::Pair& EntryOverlap::Find(std::string_view filter)
{
    const auto [found, isNew] = mFound.try_emplace(filter);
    if (isNew) {
        found->second = Search(filter);
    }
    return found->second;
}

EntryOverlap::Pair EntryOverlap::Search(std::string_view filter)
{
    for (const std::string_view entry : EntriesOf(filter)) {
        const std::string_view part = PartOf(entry);
        if (!part.empty()) {
            return {entry, part};
        }
    }
    return {};
}

std::string_view EntryOverlap::PartOf(std::string_view entry)
{
    if (entry.size() > LONGEST_ENTRY) {
        return {};
    }
    for (const std::size_t length : mLengths) {
        for (std::size_t start = 0; length < entry.size() && start + length <= entry.size(); ++start) {
            if (++mLookups > MOST_LOOKUPS) {
                return {};
            }
            const auto part = mEntries.find(entry.substr(start, length));
            if (part != mEntries.end()) {
                return *part;
            }
        }
    }
    return {};
}

} // namespace diagnosis::lint
