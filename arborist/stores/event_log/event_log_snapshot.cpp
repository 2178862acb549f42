#include "arborist/stores/event_log/event_log_snapshot.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <numeric>
#include <utility>

namespace {

constexpr unsigned int HALF_BITS = 16;
constexpr std::int64_t UNKNOWN_TIME = std::numeric_limits<std::int64_t>::max();

// Sorts a column from the order of the log into the order of the entries. Moves sixteen bits at a time, so that it
// needs only two extra bytes a row.
template <typename Number>
void GroupHalves(std::vector<Number>& column, const std::vector<std::uint32_t>& entryOfRow,
    const std::vector<std::uint32_t>& begins)
{
    std::vector<std::uint16_t> grouped(column.size());
    for (unsigned int shift = 0; shift < std::numeric_limits<Number>::digits; shift += HALF_BITS) {
        std::vector<std::uint32_t> next(begins.begin(), begins.end() - 1);
        for (std::size_t row = 0; row < column.size(); ++row) {
            grouped[next[entryOfRow[row]]++] = static_cast<std::uint16_t>(column[row] >> shift);
        }
        const std::uint32_t otherHalf = 0xFFFF0000U >> shift;
        for (std::size_t row = 0; row < column.size(); ++row) {
            column[row] =
                static_cast<Number>((column[row] & otherHalf) | static_cast<std::uint32_t>(grouped[row]) << shift);
        }
    }
}

} // namespace

EventLogSnapshot::EventLogSnapshot(std::vector<std::int32_t> ids, std::vector<bool> needsQuery,
    std::vector<std::uint32_t> idNumbers, Columns columns, VersionNumbers versionNumbers, Unseen unseen, Origin origin)
    : mOrigin(std::move(origin)), mIds(std::move(ids)), mColumns(std::move(columns)),
      mVersionNumbers(std::move(versionNumbers)), mUnseen(std::move(unseen))
{
    const std::vector<std::uint32_t> entryOfId = SortIds(std::move(needsQuery));
    for (std::uint32_t& number : idNumbers) {
        number = entryOfId[number];
    }
    GroupRows(idNumbers);
    idNumbers = std::vector<std::uint32_t>();
    LookAtOrder();
}

// Returns the new position of each id.
std::vector<std::uint32_t> EventLogSnapshot::SortIds(std::vector<bool> needsQuery)
{
    std::vector<std::uint32_t> sorted(mIds.size());
    std::iota(sorted.begin(), sorted.end(), 0U);
    std::sort(sorted.begin(), sorted.end(), [this](auto left, auto right) { return mIds[left] < mIds[right]; });
    std::vector<std::uint32_t> places(mIds.size());
    std::vector<std::int32_t> ids(mIds.size());
    mNeedsQuery.resize(mIds.size());
    for (std::uint32_t place = 0; place < sorted.size(); ++place) {
        places[sorted[place]] = place;
        ids[place] = mIds[sorted[place]];
        mNeedsQuery[place] = needsQuery[sorted[place]];
    }
    mIds = std::move(ids);
    return places;
}

void EventLogSnapshot::GroupRows(const std::vector<std::uint32_t>& entryOfRow)
{
    mBegins.assign(mIds.size() + 1, 0);
    for (const std::uint32_t entry : entryOfRow) {
        ++mBegins[entry + 1];
    }
    std::partial_sum(mBegins.begin(), mBegins.end(), mBegins.begin());
    GroupHalves(mColumns.times, entryOfRow, mBegins);
    GroupHalves(mColumns.rowIds, entryOfRow, mBegins);
    GroupHalves(mColumns.versions, entryOfRow, mBegins);
}

void EventLogSnapshot::LookAtOrder()
{
    const auto first = std::min_element(mColumns.times.begin(), mColumns.times.end());
    mFirstTime = first == mColumns.times.end() ? std::nullopt : std::optional(*first);
    mIsAscending.resize(mIds.size());
    for (std::size_t number = 0; number < mIds.size(); ++number) {
        const std::uint32_t begin = mBegins[number];
        const std::uint32_t end = mBegins[number + 1];
        bool isAscending = true;
        for (std::uint32_t row = begin + 1; row < end; ++row) {
            isAscending = isAscending && mColumns.times[row - 1] <= mColumns.times[row];
            mAreRowIdsAscending =
                mAreRowIdsAscending && (mColumns.rowIds[row - 1] < mColumns.rowIds[row] || mNeedsQuery[number]);
        }
        mIsAscending[number] = isAscending;
    }
}

std::size_t EventLogSnapshot::FirstEntryFrom(std::int64_t id) const
{
    return static_cast<std::size_t>(std::lower_bound(mIds.begin(), mIds.end(), id) - mIds.begin());
}

std::uint16_t EventLogSnapshot::NumberOfVersion(const std::string& name) const
{
    const auto found = mVersionNumbers.find(name);
    return found == mVersionNumbers.end() ? UNNAMED_VERSION : found->second;
}

EventLogSnapshot::RowRange EventLogSnapshot::RangeSince(
    const Entry& entry, std::int64_t start, std::int64_t last) const
{
    if (!entry.isAscending) {
        return {entry.begin, entry.end, false};
    }
    // Times of rows have 32 bits, so that none is greater.
    constexpr std::int64_t LAST_TIME = std::numeric_limits<std::uint32_t>::max();
    if (start > LAST_TIME || last < std::max<std::int64_t>(start, 0)) {
        return {entry.end, entry.end, true};
    }
    const auto begin = mColumns.times.begin();
    const auto end = begin + entry.end;
    const auto found =
        std::lower_bound(begin + entry.begin, end, static_cast<std::uint32_t>(std::max<std::int64_t>(start, 0)));
    const auto behind = last >= LAST_TIME ? end : std::upper_bound(found, end, static_cast<std::uint32_t>(last));
    return {static_cast<std::uint32_t>(found - begin), static_cast<std::uint32_t>(behind - begin), true};
}

// Calls `visit` with the condition that tells which rows of `range` pass: what all of them meet is not tested for each.
// The conditions have no branches, so that compilers can vectorise loops over rows.
template <typename Visit>
auto EventLogSnapshot::WithCondition(const RowRange& range, const Filter& filter, Visit visit) const
{
    const auto isOfVersion = [versions = mColumns.versions.data(), version = filter.version.value_or(UNNAMED_VERSION)](
                                 std::uint32_t row) {
        return (versions[row] == UNNAMED_VERSION) | (versions[row] == version);
    };
    if (!range.isSince) {
        return visit([&, isOfAnyVersion = !filter.version](std::uint32_t row) {
            const std::int64_t time = mColumns.times[row];
            return ((isOfAnyVersion | isOfVersion(row)) & (time >= filter.start) & (time <= filter.last)) != 0;
        });
    }
    return filter.version ? visit(isOfVersion) : visit([](std::uint32_t) { return true; });
}

std::size_t EventLogSnapshot::Count(const RowRange& range, const Filter& filter) const
{
    return WithCondition(range, filter, [range](auto passes) {
        std::uint32_t count = 0;
        for (std::uint32_t row = range.begin; row < range.end; ++row) {
            count += static_cast<std::uint32_t>(passes(row));
        }
        return count;
    });
}

void EventLogSnapshot::CountDays(const RowRange& range, const Filter& filter, LocalDays& localDays, DayCounts& days) const
{
    WithCondition(range, filter, [range, &localDays, &days, times = mColumns.times.data()](auto passes) {
        for (std::uint32_t row = range.begin; row < range.end; ++row) {
            days[static_cast<std::size_t>(localDays.DayOfMonth(times[row]))] += static_cast<std::int32_t>(passes(row));
        }
    });
}

bool EventLogSnapshot::HasUnseen(
    std::int32_t firstId, std::int32_t lastId, std::int64_t start, std::int64_t last) const
{
    return std::any_of(mUnseen.lower_bound(firstId), mUnseen.upper_bound(lastId), [start, last](const auto& unseen) {
        const std::vector<std::int64_t>& moments = unseen.second;
        const auto first = std::lower_bound(moments.begin(), moments.end(), start);
        return first != moments.end() && (*first <= last || moments.back() == UNKNOWN_TIME);
    });
}

std::vector<std::int64_t> EventLogSnapshot::ListUnseen(std::int32_t firstId, std::int32_t lastId) const
{
    std::vector<std::int64_t> moments;
    for (auto unseen = mUnseen.lower_bound(firstId); unseen != mUnseen.upper_bound(lastId); ++unseen) {
        std::copy_if(unseen->second.begin(), unseen->second.end(), std::back_inserter(moments),
            [](std::int64_t moment) { return moment != UNKNOWN_TIME; });
    }
    return moments;
}

std::size_t EventLogSnapshot::CountAfter(const RowRange& range, const Filter& filter, std::int64_t time) const
{
    if (filter.last <= time) {
        return 0;
    }
    return Count({range.begin, range.end, false}, {std::max(filter.start, time + 1), filter.version, filter.last});
}

void EventLogSnapshot::CountDaysAfter(
    const RowRange& range, const Filter& filter, std::int64_t time, LocalDays& localDays, DayCounts& days) const
{
    CountDays({range.begin, range.end, false}, {std::max(filter.start, time + 1), filter.version, filter.last},
        localDays, days);
}

RowBits EventLogSnapshot::Select(const RowRange& range, const Filter& filter) const
{
    RowBits rows(range.begin, range.end);
    WithCondition(range, filter, [range, &rows](auto passes) {
        for (std::uint32_t row = range.begin; row < range.end;) {
            const std::uint32_t number = row / RowBits::WORD_BITS;
            const std::uint32_t end = row + std::min(range.end - row, RowBits::WORD_BITS - row % RowBits::WORD_BITS);
            RowBits::Word word = 0;
            for (; row < end; ++row) {
                word |= static_cast<RowBits::Word>(passes(row)) << row % RowBits::WORD_BITS;
            }
            rows.SetWord(number, word);
        }
    });
    return rows;
}

void EventLogSnapshot::AppendTimes(
    const RowRange& range, const Filter& filter, std::vector<std::uint32_t>& times) const
{
    if (range.isSince && !filter.version) {
        times.insert(times.end(), mColumns.times.begin() + range.begin, mColumns.times.begin() + range.end);
        return;
    }
    times.reserve(times.size() + (range.end - range.begin));
    WithCondition(range, filter, [this, range, &times](auto passes) {
        for (std::uint32_t row = range.begin; row < range.end; ++row) {
            if (passes(row)) {
                times.push_back(mColumns.times[row]);
            }
        }
    });
}
