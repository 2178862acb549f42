#ifndef ARBORIST_UTILITIES_TEXT_HASH_H
#define ARBORIST_UTILITIES_TEXT_HASH_H

#include <cstddef>
#include <cstdint>
#include <string_view>

/// Keyed hash of texts for indexes over the content of files. The key is drawn for each process, so that nobody can
/// write a file whose texts all collide, which would make an index as slow as a list. Never store a hash.
class TextHash {
public:
    std::size_t operator()(std::string_view text) const { return static_cast<std::size_t>(Continue(START, text)); }

    /// Given the hash of a text, returns the hash of that text followed by `text`.
    static std::uint64_t Continue(std::uint64_t hash, std::string_view text);

    /// The hash of the empty text.
    static constexpr std::uint64_t START = 0;
};

#endif
