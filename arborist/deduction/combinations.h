#ifndef ARBORIST_DEDUCTION_COMBINATIONS_H
#define ARBORIST_DEDUCTION_COMBINATIONS_H

#include <cstddef>
#include <utility>
#include <vector>

#include "arborist/deduction/surviving_tree.h"

/// The combinations of a surviving tree, in the order of expansion. A combination is a leaf or joins two others, so that
/// combinations share their common parts.
///
/// Refers to the tree, which must not change.
class Combinations {
public:
    using Index = SurvivingTree::Index;

    explicit Combinations(const SurvivingTree& tree) : mTree(tree) {}

    /// The number of all, made or not; inexact above 2^53.
    double CountAll() const;

    /// Makes the first `most` of them. To be called once.
    void Make(std::size_t most);
    /// The number of those that were made.
    std::size_t Count() const { return mAll.size(); }
    /// The places of all members of a combination that was made, in order. Valid until the next call.
    const std::vector<Index>& ListMembers(std::size_t combination);

private:
    // A leaf is encoded as twice the index of its branch, a join as twice its index plus one.
    using Combination = std::size_t;

    Combination Join(Combination first, Combination second);
    void Append(Index branch, std::vector<Combination>& result);
    void AppendProduct(Index first, std::vector<Combination>& result);
    std::vector<Combination> Multiply(std::vector<Combination> left, const std::vector<Combination>& right);

    const SurvivingTree& mTree;
    std::size_t mMost = 0;
    std::vector<std::pair<Combination, Combination>> mJoins;
    std::vector<Combination> mAll;
    std::vector<Combination> mToVisit;
    std::vector<Index> mMembers;
};

#endif
