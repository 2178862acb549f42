#ifndef ARBORIST_STORES_EVENT_LOG_ID_DICTIONARY_H
#define ARBORIST_STORES_EVENT_LOG_ID_DICTIONARY_H

#include <cstddef>
#include <cstdint>

#include <tsl/robin_map.h>

#include "arborist/utilities/text_hash.h"

/// Keyed hash of event ids: multiply-add-shift (Dietzfelbinger) with two numbers drawn for the process. It is universal:
/// nobody can write a log whose ids all collide.
struct IdHash {
    std::size_t operator()(std::int32_t id) const
    {
        static const std::uint64_t factor = TextHash()("factor of event ids") | 1;
        static const std::uint64_t summand = TextHash()("summand of event ids");
        return static_cast<std::size_t>((static_cast<std::uint32_t>(id) * factor + summand) >> 32);
    }
};

/// Maps event ids to numbers. A flat table with 12 bytes a slot: std::unordered_map takes four times the memory, and
/// reading the log looks up one id for each row.
using IdDictionary = tsl::robin_map<std::int32_t, std::uint32_t, IdHash>;

#endif
