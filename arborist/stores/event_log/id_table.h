#ifndef ARBORIST_STORES_EVENT_LOG_ID_TABLE_H
#define ARBORIST_STORES_EVENT_LOG_ID_TABLE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "arborist/stores/event_log/packed_column.h"
#include "arborist/utilities/text_hash.h"

/// Finds the place of an id in a list of different ids: an id is looked up for each row of the event log.
///
/// A hash table laid flat that holds the places alone, some four bytes an id. The list stays with the caller, who
/// hands in the same one each time.
class IdTable {
public:
    using Ids = std::vector<std::int32_t>;

    static constexpr std::uint32_t NONE = 0xFFFFFFFFU;

    IdTable() { mSlots.Assign(FIRST_SLOTS, 0); }
    explicit IdTable(const Ids& ids) : IdTable()
    {
        while (IsFull(ids.size())) {
            Grow({});
        }
        for (std::uint32_t place = 0; place < ids.size(); ++place) {
            mSlots.Set(SlotOf(ids, ids[place]), place + 1);
        }
    }

    /// NONE for an id that isn't there.
    std::uint32_t Find(const Ids& ids, std::int32_t id) const { return mSlots[SlotOf(ids, id)] - 1; }

    /// As Find, but appends what isn't there.
    std::uint32_t FindOrAppend(Ids& ids, std::int32_t id)
    {
        std::size_t slot = SlotOf(ids, id);
        if (const std::uint32_t known = mSlots[slot]; known != 0) {
            return known - 1;
        }
        if (IsFull(ids.size())) {
            Grow(ids);
            slot = SlotOf(ids, id);
        }
        if (ids.size() == ids.capacity()) {
            ids.reserve(FIRST_SLOTS + ids.size() + ids.size() / 4); // by less than twice: memory counts more than moves
        }
        ids.push_back(id);
        mSlots.Set(slot, static_cast<std::uint32_t>(ids.size()));
        return static_cast<std::uint32_t>(ids.size()) - 1;
    }

private:
    static constexpr std::size_t FIRST_SLOTS = 64;

    bool IsFull(std::size_t count) const { return 3 * (count + 1) > 2 * mSlots.GetCount(); }

    // The slot of the id, or the empty one where it belongs.
    std::size_t SlotOf(const Ids& ids, std::int32_t id) const
    {
        const std::size_t mask = mSlots.GetCount() - 1;
        std::uint64_t hash = static_cast<std::uint32_t>(id) * mKey;
        hash = (hash ^ hash >> 32) * mKey;
        std::size_t slot = (hash >> 32) & mask;
        for (std::uint32_t known = mSlots[slot]; known != 0 && ids[known - 1] != id; known = mSlots[slot]) {
            slot = (slot + 1) & mask;
        }
        return slot;
    }

    void Grow(const Ids& ids)
    {
        const std::size_t slots = 2 * mSlots.GetCount();
        mSlots.Assign(slots, static_cast<std::uint32_t>(slots));
        for (std::uint32_t place = 0; place < ids.size(); ++place) {
            mSlots.Set(SlotOf(ids, ids[place]), place + 1);
        }
    }

    // Differs from process to process: nobody can write a log whose ids all meet in one stretch of slots.
    std::uint64_t mKey = TextHash()("event ids") | 1;
    PackedColumn mSlots; // place of an id and 1; 0 where there is none
};

#endif
