#ifndef ARBORIST_FUZZ_CHOICES_H
#define ARBORIST_FUZZ_CHOICES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

/// Turns the bytes of an input into choices, so that inputs have the shape that a target wants. When the bytes are used
/// up, every choice is the first one.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size) : mData(data), mSize(size) {}

    bool AreLeft() const { return mNext < mSize; }

    /// A number from 0 up to `end`, exclusive; `end` is at most 256.
    std::size_t Below(std::size_t end) { return NextByte() % end; }

    template <std::size_t Count>
    std::string Of(const std::array<const char*, Count>& texts)
    {
        return texts[Below(Count)];
    }

    /// Up to `most` of the next bytes.
    std::string Bytes(std::size_t most)
    {
        std::string bytes;
        for (std::size_t length = Below(most + 1); bytes.size() < length && AreLeft();) {
            bytes += static_cast<char>(NextByte());
        }
        return bytes;
    }

    /// All bytes that are left.
    std::string Rest()
    {
        const std::string rest(reinterpret_cast<const char*>(mData) + mNext, mSize - mNext);
        mNext = mSize;
        return rest;
    }

private:
    std::uint8_t NextByte() { return AreLeft() ? mData[mNext++] : 0; }

    const std::uint8_t* mData;
    std::size_t mSize;
    std::size_t mNext = 0;
};

#endif
