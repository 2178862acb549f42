#ifndef ARBORIST_DIAGNOSIS_LINT_READING_WEIGHTED_IDS_H
#define ARBORIST_DIAGNOSIS_LINT_READING_WEIGHTED_IDS_H

#include <array>
#include <cstdint>

namespace diagnosis::lint {

struct WeightedIds {
    std::int32_t first;
    std::int32_t last;
};

/// Events for which one row of the log counts as many as its "COUNT" says.
inline constexpr std::array<WeightedIds, 3> WEIGHTED_IDS = {
    {{909030000, 909031999}, {912001000, 912001999}, {920000000, 929999999}}};

} // namespace diagnosis::lint

#endif
