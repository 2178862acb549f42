#ifndef ARBORIST_STORES_EVENT_LOG_GROUP_NUMBERS_H
#define ARBORIST_STORES_EVENT_LOG_GROUP_NUMBERS_H

#include <cstddef>
#include <cstdint>
#include <vector>

/// Numbers ids in the order in which they first come, from 0. A hash table laid flat: an id is looked up for each row
/// of the event log.
class GroupNumbers {
public:
    static constexpr std::uint32_t NONE = 0xFFFFFFFFU;

    std::size_t GetCount() const { return mCount; }

    /// The id's number; a new one when it comes for the first time.
    std::uint32_t NumberOf(std::int32_t id)
    {
        if (2 * mCount >= mSlots.size()) {
            Grow();
        }
        Slot& slot = mSlots[SlotOf(id)];
        if (slot.number == NONE) {
            slot = {id, mCount++};
        }
        return slot.number;
    }

    /// Puts another number in the place of the id's, which must have one.
    void Renumber(std::int32_t id, std::uint32_t number) { mSlots[SlotOf(id)].number = number; }

    /// NONE for an id that never came.
    std::uint32_t Find(std::int32_t id) const { return mSlots.empty() ? NONE : mSlots[SlotOf(id)].number; }

private:
    struct Slot {
        std::int32_t id = 0;
        std::uint32_t number = NONE;
    };

    // The slot of the id, or the empty one where it belongs.
    std::size_t SlotOf(std::int32_t id) const
    {
        const std::size_t mask = mSlots.size() - 1;
        std::size_t place = (static_cast<std::uint32_t>(id) * 0x9E3779B97F4A7C15U >> 32) & mask;
        while (mSlots[place].number != NONE && mSlots[place].id != id) {
            place = (place + 1) & mask;
        }
        return place;
    }

    void Grow()
    {
        std::vector<Slot> before(mSlots.empty() ? 64 : 2 * mSlots.size());
        before.swap(mSlots);
        for (const Slot& slot : before) {
            if (slot.number != NONE) {
                mSlots[SlotOf(slot.id)] = slot;
            }
        }
    }

    std::vector<Slot> mSlots;
    std::uint32_t mCount = 0;
};

#endif
