#include "arborist/deduction/path_index.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include "arborist/model/event.h"
#include "arborist/model/gate.h"
#include "arborist/utilities/string_util.h"
#include "arborist/utilities/text_hash.h"

namespace {

constexpr char PATH_SEPARATOR[] = "/";
constexpr char MEMBER_SEPARATOR[] = "&";

} // namespace

PathIndex::PathIndex(const FlatTree& tree) : mTree(tree)
{
    mFacts.reserve(tree.Count());
    for (Index place = 0; place < tree.Count(); ++place) {
        AddFacts(place);
    }
    IndexPaths();
}

void PathIndex::AddFacts(Index place)
{
    const std::string& id = mTree.GetId(place);
    Facts facts{TextHash::Continue(TextHash::START, id), id.find(MEMBER_SEPARATOR) != std::string::npos};
    const Index parent = mTree.GetParent(place);
    if (parent != FlatTree::NONE) {
        facts.pathHash = TextHash::Continue(TextHash::Continue(mFacts[parent].pathHash, PATH_SEPARATOR), id);
        facts.holdsMemberSeparator = facts.holdsMemberSeparator || mFacts[parent].holdsMemberSeparator;
    }
    mFacts.push_back(facts);
}

// Goes from leaf to leaf, and from each leaf up to the top: if several places have one path, the first in this order
// gets it.
void PathIndex::IndexPaths()
{
    std::vector<bool> isIndexed(mFacts.size());
    mPlaceOfPath.reserve(mFacts.size());
    for (Index place = 0; place < mFacts.size(); ++place) {
        if (mTree.GetEnd(place) != place + 1) {
            continue;
        }
        for (Index above = place; above != FlatTree::NONE && !isIndexed[above]; above = mTree.GetParent(above)) {
            isIndexed[above] = true;
            IndexPath(above);
        }
    }
}

void PathIndex::IndexPath(Index place)
{
    if (!mFacts[place].holdsMemberSeparator && FindOwnPath(place) == FlatTree::NONE) {
        mPlaceOfPath.emplace(mFacts[place].pathHash, place);
    }
}

PathIndex::Index PathIndex::Find(std::string_view path) const
{
    const auto [begin, end] = mPlaceOfPath.equal_range(TextHash::Continue(TextHash::START, path));
    const auto found = std::find_if(begin, end, [&](const auto& entry) { return mTree.GetPath(entry.second) == path; });
    return found == end ? FlatTree::NONE : found->second;
}

// Find for the path of `place`. Builds the text of the path only to compare it with another place of the same hash.
PathIndex::Index PathIndex::FindOwnPath(Index place) const
{
    const auto [begin, end] = mPlaceOfPath.equal_range(mFacts[place].pathHash);
    const auto found = std::find_if(begin, end, [&](const auto& entry) {
        return entry.second == place || mTree.GetPath(entry.second) == mTree.GetPath(place);
    });
    return found == end ? FlatTree::NONE : found->second;
}

std::vector<PathIndex::Index> PathIndex::FindMembers(Index leaf) const
{
    if (!mFacts[leaf].holdsMemberSeparator) {
        return {FindOwnPath(leaf)};
    }
    std::vector<Index> members;
    for (const auto& member : StringUtil::Split(mTree.GetPath(leaf), MEMBER_SEPARATOR)) {
        members.push_back(Find(member));
    }
    return members;
}

bool PathIndex::ArePathsUnambiguous(const FlatTree& tree)
{
    std::unordered_set<std::string_view, TextHash> ids;
    for (Index place = 0; place < tree.Count(); ++place) {
        if (tree.GetEvent(place).HasSeparatorInId()) {
            return false;
        }
        const Gate* gate = tree.GetGate(place);
        if (gate == nullptr) {
            continue;
        }
        ids.clear();
        for (const auto& event : gate->GetEvents()) {
            if (!ids.insert(event->GetId()).second) {
                return false;
            }
        }
    }
    return true;
}
