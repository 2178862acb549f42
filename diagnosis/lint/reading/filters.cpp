#include "diagnosis/lint/reading/filters.h"

#include <algorithm>

namespace diagnosis::lint {

namespace {

// Limits the length of a filter that is checked, as entries are compared with each other or searched in a text.
constexpr std::size_t LONGEST_FILTER = 4096;

bool HasEntryIn(std::string_view filter, std::string_view text)
{
    const auto entries = EntriesOf(filter);
    return std::any_of(entries.begin(), entries.end(),
        [text](std::string_view entry) { return text.find(entry) != std::string_view::npos; });
}

} // namespace

std::vector<std::string_view> EntriesOf(std::string_view filter)
{
    static constexpr std::string_view DIVIDERS = ",;| \t\r\n";
    filter = filter.substr(0, LONGEST_FILTER);
    std::vector<std::string_view> entries;
    for (std::size_t start = filter.find_first_not_of(DIVIDERS); start != std::string_view::npos;) {
        const std::size_t end = filter.find_first_of(DIVIDERS, start);
        entries.push_back(filter.substr(start, end - start));
        start = filter.find_first_not_of(DIVIDERS, end);
    }
    return entries;
}

bool HaveCommonScene(std::string_view one, std::string_view other)
{
    static constexpr std::string_view DIGITS = "0123456789";
    // A digit in both texts is a scene that passes both.
    return std::any_of(DIGITS.begin(), DIGITS.end(), [one, other](char digit) {
        return one.find(digit) != std::string_view::npos && other.find(digit) != std::string_view::npos;
    });
}

bool HaveCommonEntry(std::string_view one, std::string_view other)
{
    return one.empty() || other.empty() || one.size() > LONGEST_FILTER || other.size() > LONGEST_FILTER
        || HasEntryIn(one, other) || HasEntryIn(other, one);
}

bool HasAllEntries(std::string_view filter, std::string_view list)
{
    const auto entries = filter.size() > LONGEST_FILTER ? std::vector<std::string_view>() : EntriesOf(filter);
    return !entries.empty() && list.size() <= LONGEST_FILTER
        && std::all_of(entries.begin(), entries.end(),
            [list](std::string_view entry) { return list.find(entry) != std::string_view::npos; });
}

} // namespace diagnosis::lint
