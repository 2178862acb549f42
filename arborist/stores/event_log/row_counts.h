#ifndef ARBORIST_STORES_EVENT_LOG_ROW_COUNTS_H
#define ARBORIST_STORES_EVENT_LOG_ROW_COUNTS_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "arborist/stores/event_log/event_log_snapshot.h"

/// The number of rows of each entry that pass one filter, counted at the first request. Shares ownership of the
/// snapshot.
class RowCounts {
public:
    RowCounts(std::shared_ptr<const EventLogSnapshot> snapshot, const EventLogSnapshot::Filter& filter)
        : mSnapshot(std::move(snapshot)), mFilter(filter), mCounts(mSnapshot->GetEntryCount(), NOT_COUNTED)
    {
    }

    const EventLogSnapshot::Filter& GetFilter() const { return mFilter; }
    std::size_t Of(std::size_t entryNumber)
    {
        std::uint32_t& count = mCounts[entryNumber];
        if (count == NOT_COUNTED) {
            const EventLogSnapshot::Entry entry = mSnapshot->GetEntry(entryNumber);
            count = static_cast<std::uint32_t>(
                mSnapshot->Count(mSnapshot->RangeSince(entry, mFilter.start, mFilter.last), mFilter));
        }
        return count;
    }

private:
    static constexpr std::uint32_t NOT_COUNTED = std::numeric_limits<std::uint32_t>::max();

    std::shared_ptr<const EventLogSnapshot> mSnapshot;
    EventLogSnapshot::Filter mFilter;
    std::vector<std::uint32_t> mCounts;
};

#endif
