#include "arborist/stores/event_log/packed_column.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t SMALLEST_CAPACITY = 16;

unsigned int BytesOf(std::uint32_t distance)
{
    return distance <= 0xFF ? 1 : distance <= 0xFFFF ? 2 : distance <= 0xFFFFFF ? 3 : 4;
}

} // namespace

void PackedColumn::Reserve(std::size_t count, std::uint32_t farthest)
{
    if (count > mCapacity || BytesOf(farthest) > mWidth) {
        Rebuild(std::max(count, mCapacity), std::max(BytesOf(farthest), mWidth), mBase);
    }
}

void PackedColumn::Assign(std::size_t count, std::uint32_t farthest)
{
    *this = PackedColumn();
    Rebuild(count, BytesOf(farthest), 0);
    std::fill_n(mBytes.get(), count * mWidth + WORD, std::uint8_t{0});
    mCount = count;
}

unsigned int PackedColumn::WidthWith(std::uint32_t number) const
{
    return std::max(mWidth, number < mBase ? static_cast<unsigned int>(WORD) : BytesOf(number - mBase));
}

// A number below the base takes the base away, once and for all: numbers that keep falling cost no more.
void PackedColumn::MakeRoom(std::uint32_t number)
{
    const std::size_t capacity =
        mCount < mCapacity ? mCapacity : std::max(SMALLEST_CAPACITY, mCapacity + mCapacity / 2);
    Rebuild(capacity, WidthWith(number), number < mBase ? 0 : mBase);
}

void PackedColumn::Rebuild(std::size_t capacity, unsigned int width, std::uint32_t base)
{
    PackedColumn rebuilt(mHeadRoom);
    rebuilt.mBytes.reset(new std::uint8_t[capacity * width + WORD]); // not touched before it is used
    rebuilt.mCapacity = capacity;
    rebuilt.mWidth = width;
    rebuilt.mMask = 0xFFFFFFFFU >> (32 - 8 * width);
    rebuilt.mBase = base;
    for (; rebuilt.mCount < mCount; ++rebuilt.mCount) {
        rebuilt.Store(rebuilt.mCount, (*this)[rebuilt.mCount] - base);
    }
    *this = std::move(rebuilt);
}
