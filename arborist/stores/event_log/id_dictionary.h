#ifndef ARBORIST_STORES_EVENT_LOG_ID_DICTIONARY_H
#define ARBORIST_STORES_EVENT_LOG_ID_DICTIONARY_H

#include <cstddef>
#include <cstdint>

#include <tsl/robin_map.h>

#include "arborist/utilities/text_hash.h"

/// Hash of event ids by multiplying, adding and shifting with two numbers that are drawn for the process, which leaves
/// nobody a log whose ids all meet.
struct IdHash {
    std::size_t operator()(std::int32_t id) const
    {
        static const std::uint64_t factor = TextHash()("factor of event ids") | 1;
        static const std::uint64_t summand = TextHash()("summand of event ids");
        return static_cast<std::size_t>((static_cast<std::uint32_t>(id) * factor + summand) >> 32);
    }
};

/// Numbers of event ids. Flat, 12 bytes a slot: std::unordered_map takes four times the memory, and one id is looked up
/// for each row of the log.
using IdDictionary = tsl::robin_map<std::int32_t, std::uint32_t, IdHash>;

#endif
