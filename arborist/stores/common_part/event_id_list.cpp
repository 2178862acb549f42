#include "arborist/stores/common_part/event_id_list.h"

#include <algorithm>
#include <cstddef>

namespace {

// SQLite refuses expressions deeper than 1000, and each alternative is one level. Leaves room for the other conditions
// of the statement.
constexpr std::uint64_t MOST_ALTERNATIVES = 900;
// A range of at most this many ids is cheaper as members of a list, which SQLite searches, than as one more
// alternative.
constexpr std::int64_t SHORT_RANGE = 8;

// The whole number at the front of an id, whatever the type of its column: a range would compare texts letter by
// letter.
constexpr char NUMBER[] = "CAST(event_info.event_id AS INTEGER)";

using Alternatives = std::vector<std::string>;

// Joins the alternatives from `first` to before `last` by OR, as a balanced tree whose depth is the logarithm of their
// number.
std::string JoinByOr(const Alternatives& alternatives, std::size_t first, std::size_t last)
{
    if (last - first == 1) {
        return alternatives[first];
    }
    const std::size_t middle = first + (last - first) / 2;
    return "(" + JoinByOr(alternatives, first, middle) + " OR " + JoinByOr(alternatives, middle, last) + ")";
}

} // namespace

void EventIdList::Append(std::int32_t first, std::int32_t last)
{
    if (first <= last) {
        mRanges.emplace_back(first, last);
    }
}

std::string EventIdList::ToSql() const
{
    return Count() <= MOST_ALTERNATIVES ? SpelledOut() : AsRanges();
}

std::uint64_t EventIdList::Count() const
{
    std::uint64_t count = 0;
    for (const auto& [first, last] : mRanges) {
        count += static_cast<std::uint64_t>(std::int64_t{last} - first) + 1;
    }
    return count;
}

std::vector<EventIdList::Range> EventIdList::MergedRanges() const
{
    std::vector<Range> sorted = mRanges;
    std::sort(sorted.begin(), sorted.end());
    std::vector<Range> merged;
    for (const Range& range : sorted) {
        if (!merged.empty() && range.first <= std::int64_t{merged.back().second} + 1) {
            merged.back().second = std::max(merged.back().second, range.second);
        } else {
            merged.push_back(range);
        }
    }
    return merged;
}

std::string EventIdList::SpelledOut() const
{
    std::string text;
    for (const auto& [first, last] : mRanges) {
        for (std::int64_t id = first; id <= last; ++id) {
            text += text.empty() ? " ( event_info.event_id = " : " OR event_info.event_id = ";
            text += std::to_string(id);
        }
    }
    return text + ")";
}

std::string EventIdList::AsRanges() const
{
    Alternatives alternatives;
    std::string members;
    for (const auto& [first, last] : MergedRanges()) {
        if (std::int64_t{last} - first >= SHORT_RANGE) {
            alternatives.push_back(NUMBER + (" BETWEEN " + std::to_string(first)) + " AND " + std::to_string(last));
            continue;
        }
        for (std::int64_t id = first; id <= last; ++id) {
            members += (members.empty() ? "" : ", ") + std::to_string(id);
        }
    }
    if (!members.empty()) {
        alternatives.push_back("event_info.event_id IN (" + members + ")");
    }
    // The last condition rejects what `event_id = 7` would reject, too: a value between two whole numbers, and in a
    // column of texts another spelling of the number. The plus sign removes the affinity of the cast from the
    // comparison.
    return " ( " + JoinByOr(alternatives, 0, alternatives.size()) + " AND event_info.event_id = +" + NUMBER + ")";
}
