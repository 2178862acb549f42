#ifndef ARBORIST_DIAGNOSIS_TEXT_RUNNING_HASH_H
#define ARBORIST_DIAGNOSIS_TEXT_RUNNING_HASH_H

#include <cstdint>
#include <string_view>

namespace diagnosis {

/// Hash of a text that grows at its end: extending the hash of "a" by "b" gives the hash of "ab". Collisions can be
/// forged, so that equal hashes prove nothing.
class RunningHash {
public:
    RunningHash Extended(std::string_view text) const
    {
        static constexpr std::uint64_t FNV_PRIME = 0x100000001B3;
        RunningHash longer = *this;
        for (const char byte : text) {
            longer.mValue = (longer.mValue ^ static_cast<unsigned char>(byte)) * FNV_PRIME;
        }
        return longer;
    }

    std::uint64_t Value() const { return mValue; }

private:
    std::uint64_t mValue = 0xCBF29CE484222325;
};

} // namespace diagnosis

#endif
