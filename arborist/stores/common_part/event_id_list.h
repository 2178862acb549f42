#ifndef ARBORIST_STORES_COMMON_PART_EVENT_ID_LIST_H
#define ARBORIST_STORES_COMMON_PART_EVENT_ID_LIST_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// Ids of events to select, in the order in which they were added. Stored as ranges, as a rule set may ask for
/// billions.
class EventIdList {
public:
    /// Adds all ids from `first` to `last`; none if `first` is greater.
    void Append(std::int32_t first, std::int32_t last);
    bool IsEmpty() const { return mRanges.empty(); }

    /// The condition that `event_info.event_id` is one of the ids: " ( event_info.event_id = 1 OR event_info.event_id =
    /// 2)". An id that was added twice appears twice. If there are too many ids for an expression of SQLite, the
    /// condition has another form that selects the same rows. The list must not be empty.
    std::string ToSql() const;

private:
    // First and last id.
    using Range = std::pair<std::int32_t, std::int32_t>;

    std::uint64_t Count() const;
    std::vector<Range> MergedRanges() const;
    std::string SpelledOut() const;
    std::string AsRanges() const;

    std::vector<Range> mRanges;
};

#endif
