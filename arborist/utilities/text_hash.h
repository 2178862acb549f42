#ifndef ARBORIST_UTILITIES_TEXT_HASH_H
#define ARBORIST_UTILITIES_TEXT_HASH_H

#include <cstddef>
#include <cstdint>
#include <string_view>

/// Hash of texts for private indexes over what files say. Nobody can write texts that all meet in one hash, which would
/// make an index as slow as a list: it is keyed anew for each process. Never store one.
class TextHash {
public:
    std::size_t operator()(std::string_view text) const { return static_cast<std::size_t>(Continue(START, text)); }

    /// The hash of a text that goes on with `text` behind what has `hash`.
    static std::uint64_t Continue(std::uint64_t hash, std::string_view text);

    /// The hash of the empty text.
    static constexpr std::uint64_t START = 0;
};

#endif
