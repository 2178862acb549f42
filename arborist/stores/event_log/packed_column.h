#ifndef ARBORIST_STORES_EVENT_LOG_PACKED_COLUMN_H
#define ARBORIST_STORES_EVENT_LOG_PACKED_COLUMN_H

#include <cstddef>
#include <cstdint>
#include <memory>

/// A column of numbers of 32 bits, each kept as its distance from a base in as few bytes, one to four, as the farthest
/// of them needs.
class PackedColumn {
public:
    /// The base is so far below the first number, for those that come out of order. One that lies lower still costs
    /// the base.
    explicit PackedColumn(std::uint32_t headRoom = 0) : mHeadRoom(headRoom) {}

    /// Makes room for so many numbers up to `farthest` from the base.
    void Reserve(std::size_t count, std::uint32_t farthest);
    /// So many zeros in the place of what was there, and room for numbers up to `farthest`.
    void Assign(std::size_t count, std::uint32_t farthest);

    std::size_t GetCount() const { return mCount; }
    /// Bytes that each number takes.
    unsigned int GetWidth() const { return mWidth; }
    /// Whether `number` can be among them without more bytes for each.
    bool Fits(std::uint32_t number) const { return number >= mBase && number - mBase <= mMask; }
    /// Bytes that each would take if `number` were among them.
    unsigned int WidthWith(std::uint32_t number) const;

    std::uint32_t operator[](std::size_t place) const { return mBase + GetDistance(place); }
    /// How far the number is from the base.
    std::uint32_t GetDistance(std::size_t place) const { return Load(place) & mMask; }

    void Append(std::uint32_t number)
    {
        if (mCount == 0) {
            mBase = number < mHeadRoom ? 0 : number - mHeadRoom;
        }
        if (mCount == mCapacity || !Fits(number)) {
            MakeRoom(number);
        }
        Store(mCount++, number - mBase); // writes over the places behind, which are free
    }

    void Set(std::size_t place, std::uint32_t number)
    {
        if (!Fits(number)) {
            MakeRoom(number);
        }
        SetDistance(place, number - mBase);
    }
    /// One that fits the width.
    void SetDistance(std::size_t place, std::uint32_t distance)
    {
        Store(place, (Load(place) & ~mMask) | distance);
    }

private:
    // Four bytes are read and written at each place, whatever its width: there is room for them behind the last.
    static constexpr std::size_t WORD = 4;

    // Byte by byte, so that it works on any machine; compilers make one access of it.
    std::uint32_t Load(std::size_t place) const
    {
        const std::uint8_t* const bytes = mBytes.get() + place * mWidth;
        return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
            std::uint32_t{bytes[3]} << 24;
    }
    void Store(std::size_t place, std::uint32_t word)
    {
        std::uint8_t* const bytes = mBytes.get() + place * mWidth;
        bytes[0] = static_cast<std::uint8_t>(word);
        bytes[1] = static_cast<std::uint8_t>(word >> 8);
        bytes[2] = static_cast<std::uint8_t>(word >> 16);
        bytes[3] = static_cast<std::uint8_t>(word >> 24);
    }

    void MakeRoom(std::uint32_t number);
    void Rebuild(std::size_t capacity, unsigned int width, std::uint32_t base);

    std::unique_ptr<std::uint8_t[]> mBytes;
    std::size_t mCount = 0;
    std::size_t mCapacity = 0;
    unsigned int mWidth = 1;
    std::uint32_t mMask = 0xFF;
    std::uint32_t mBase = 0;
    std::uint32_t mHeadRoom;
};

#endif
