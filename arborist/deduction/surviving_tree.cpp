#include "arborist/deduction/surviving_tree.h"

SurvivingTree::Index SurvivingTree::AddLeaf(const std::vector<Index>& members)
{
    const auto first = static_cast<Index>(mMembers.size());
    mMembers.insert(mMembers.end(), members.begin(), members.end());
    mBranches.push_back({BranchKind::LEAF, first, static_cast<Index>(members.size()), NONE});
    return static_cast<Index>(mBranches.size() - 1);
}

SurvivingTree::Index SurvivingTree::AddLeaf(Index member)
{
    mMembers.push_back(member);
    mBranches.push_back({BranchKind::LEAF, static_cast<Index>(mMembers.size() - 1), 1, NONE});
    return static_cast<Index>(mBranches.size() - 1);
}

SurvivingTree::Index SurvivingTree::AddGate(BranchKind kind, Index first)
{
    mBranches.push_back({kind, first, 0, NONE});
    return static_cast<Index>(mBranches.size() - 1);
}

void SurvivingTree::Rewind(const Mark& mark)
{
    Shorten(mark.places);
    mBranches.resize(mark.branches);
    mMembers.resize(mark.members);
}
