#ifndef ARBORIST_DIAGNOSIS_LINT_CHECKS_CUT_SETS_H
#define ARBORIST_DIAGNOSIS_LINT_CHECKS_CUT_SETS_H

#include <cstdint>
#include <vector>

#include "diagnosis/rule_source/trees.h"

namespace diagnosis::lint {

/// The combinations of basic and undeveloped events that the engine works out for trees, counted and not made.
class CutSets {
public:
    /// More are not told apart.
    static constexpr std::uint64_t COUNTLESS = 1'000'000'000'000'000'000;

    explicit CutSets(const rule_source::Trees& trees);

    /// How many combinations make the event true; 1 for a leaf. `event` is an index into Trees::events.
    std::uint64_t Number(std::size_t event) const { return mNumbers[event]; }
    /// Whether the event, a leaf, is the first of some combination of its tree: the one that is reported.
    bool MayBeFirst(std::size_t event) const { return mMayBeFirst[event]; }

private:
    void Count(std::size_t event);
    void CountAnd(std::size_t event);
    void MarkFirst(std::size_t event);

    const rule_source::Trees& mTrees;
    std::vector<std::uint64_t> mNumbers;
    /// Of AND gates: the child that each combination begins with.
    std::vector<std::size_t> mFirstChild;
    std::vector<bool> mMayBeFirst;
};

} // namespace diagnosis::lint

#endif
