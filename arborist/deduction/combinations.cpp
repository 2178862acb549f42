#include "arborist/deduction/combinations.h"

#include <algorithm>

#include "arborist/frame/stopping.h"

namespace {

using Index = SurvivingTree::Index;

double CountBelow(const SurvivingTree& tree, Index branch)
{
    const SurvivingTree::Branch& head = tree.GetBranch(branch);
    if (head.kind == SurvivingTree::BranchKind::LEAF) {
        return 1;
    }
    const bool isSum = head.kind == SurvivingTree::BranchKind::OR;
    double count = isSum ? 0 : 1;
    for (Index below = head.first; below != SurvivingTree::NONE; below = tree.GetBranch(below).next) {
        count = isSum ? count + CountBelow(tree, below) : count * CountBelow(tree, below);
    }
    return count;
}

bool IsJoin(std::size_t combination)
{
    return combination % 2 != 0;
}

} // namespace

double Combinations::CountAll() const
{
    return mTree.GetTop() == SurvivingTree::NONE ? 0 : CountBelow(mTree, mTree.GetTop());
}

void Combinations::Make(std::size_t most)
{
    mMost = most;
    if (mTree.GetTop() != SurvivingTree::NONE) {
        Append(mTree.GetTop(), mAll);
    }
}

const std::vector<Index>& Combinations::ListMembers(std::size_t combination)
{
    mMembers.clear();
    mToVisit.assign(1, mAll[combination]);
    while (!mToVisit.empty()) {
        const Combination next = mToVisit.back();
        mToVisit.pop_back();
        if (IsJoin(next)) {
            mToVisit.push_back(mJoins[next / 2].second);
            mToVisit.push_back(mJoins[next / 2].first);
            continue;
        }
        const SurvivingTree::Branch& leaf = mTree.GetBranch(static_cast<Index>(next / 2));
        for (Index member = 0; member < leaf.memberCount; ++member) {
            mMembers.push_back(mTree.GetMember(std::size_t{leaf.first} + member));
        }
    }
    return mMembers;
}

Combinations::Combination Combinations::Join(Combination first, Combination second)
{
    constexpr std::size_t JOINS_BETWEEN_STOPS = 4096;
    if (mJoins.size() % JOINS_BETWEEN_STOPS == 0) {
        StopPoint::Pass();
    }
    mJoins.emplace_back(first, second);
    return (mJoins.size() - 1) * 2 + 1;
}

// Stops where `result` has the most: what follows comes behind it in each product, too.
void Combinations::Append(Index branch, std::vector<Combination>& result)
{
    const SurvivingTree::Branch& head = mTree.GetBranch(branch);
    if (head.kind == SurvivingTree::BranchKind::LEAF) {
        result.push_back(std::size_t{branch} * 2);
    } else if (head.kind == SurvivingTree::BranchKind::OR) {
        for (Index below = head.first; below != SurvivingTree::NONE && result.size() < mMost;
             below = mTree.GetBranch(below).next) {
            Append(below, result);
        }
    } else {
        AppendProduct(head.first, result);
    }
}

void Combinations::AppendProduct(Index first, std::vector<Combination>& result)
{
    std::vector<Combination> product;
    std::vector<Combination> factor;
    Append(first, product);
    for (Index below = mTree.GetBranch(first).next; below != SurvivingTree::NONE; below = mTree.GetBranch(below).next) {
        factor.clear();
        Append(below, factor);
        product = Multiply(std::move(product), factor);
    }
    const auto room = static_cast<std::ptrdiff_t>(std::min(product.size(), mMost - result.size()));
    result.insert(result.end(), product.begin(), product.begin() + room);
}

// Joins every combination of `left` with every one of `right`; `left` is the outer loop.
std::vector<Combinations::Combination> Combinations::Multiply(
    std::vector<Combination> left, const std::vector<Combination>& right)
{
    if (right.size() == 1) {
        for (auto& combination : left) {
            combination = Join(combination, right.front());
        }
        return left;
    }
    std::vector<Combination> product;
    product.reserve(left.size() > mMost / right.size() ? mMost : left.size() * right.size());
    for (const Combination first : left) {
        for (const Combination second : right) {
            if (product.size() == mMost) {
                return product;
            }
            product.push_back(Join(first, second));
        }
    }
    return product;
}
