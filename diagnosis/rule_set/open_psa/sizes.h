#ifndef ARBORIST_DIAGNOSIS_RULE_SET_OPEN_PSA_SIZES_H
#define ARBORIST_DIAGNOSIS_RULE_SET_OPEN_PSA_SIZES_H

#include <cstdint>
#include <vector>

#include "diagnosis/rule_set/open_psa/model.h"

namespace diagnosis::rule_set::open_psa {

/// A written tree has no more events than this: shared gates are written out, and so are all combinations of k of n.
inline constexpr std::uint64_t MOST_EVENTS = 100'000;
/// Levels of events in a tree that the engine's XML library still reads: each takes two elements.
inline constexpr std::size_t MOST_LEVELS = 47;

/// What a gate, or a part of its formula, is when it is written out.
struct Size {
    /// MOST_EVENTS + 1 means that or any larger number.
    std::uint64_t events = 1;
    std::size_t levels = 1;
};

/// The sizes of all gates of a model, by index.
std::vector<Size> SizesOf(const Model& model);

} // namespace diagnosis::rule_set::open_psa

#endif
