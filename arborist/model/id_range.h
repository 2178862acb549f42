#ifndef ARBORIST_MODEL_ID_RANGE_H
#define ARBORIST_MODEL_ID_RANGE_H

#include <cstdint>

/// Event ids from `first` to `last`.
struct IdRange {
    std::int32_t first;
    std::int32_t last;

    bool IsEmpty() const { return first == 0 || first > last; }
};

#endif
