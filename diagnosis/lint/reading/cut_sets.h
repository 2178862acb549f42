#ifndef ARBORIST_DIAGNOSIS_LINT_READING_CUT_SETS_H
#define ARBORIST_DIAGNOSIS_LINT_READING_CUT_SETS_H

#include <cstdint>
#include <vector>

#include "diagnosis/rule_source/trees.h"

namespace diagnosis::lint {

/// Counts the combinations of basic and undeveloped events that the engine expands for trees, without building them.
class CutSets {
public:
    /// Larger numbers are not distinguished.
    static constexpr std::uint64_t COUNTLESS = 1'000'000'000'000'000'000;

    explicit CutSets(const rule_source::Trees& trees);

    /// How many combinations make the event true; 1 for a leaf. `event` is an index into Trees::events.
    std::uint64_t Number(std::size_t event) const { return mNumbers[event]; }
    /// True if the leaf is the first event of some combination of its tree, and so the one that is reported.
    bool MayBeFirst(std::size_t event) const { return mMayBeFirst[event]; }

private:
    void Count(std::size_t event);
    void CountAnd(std::size_t event);
    void MarkFirst(std::size_t event);

    const rule_source::Trees& mTrees;
    std::vector<std::uint64_t> mNumbers;
    /// For AND gates: the child with which each combination begins.
    std::vector<std::size_t> mFirstChild;
    std::vector<bool> mMayBeFirst;
};

} // namespace diagnosis::lint

#endif
