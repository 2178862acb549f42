#include "arborist/deduction/surviving_tree.h"

#include "arborist/deduction/way_up.h"
#include "arborist/model/event.h"

SurvivingTree::Index SurvivingTree::AddPlace(const std::shared_ptr<Event>& event, Index parent)
{
    mPlaces.push_back({&event, parent});
    return static_cast<Index>(mPlaces.size() - 1);
}

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
    mPlaces.resize(mark.places);
    mBranches.resize(mark.branches);
    mMembers.resize(mark.members);
}

const std::string& SurvivingTree::GetId(Index place) const
{
    return (*mPlaces[place].event)->GetId();
}

std::string SurvivingTree::GetPath(Index place) const
{
    return PathTo(*this, place);
}
