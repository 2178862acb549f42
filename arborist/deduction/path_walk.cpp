#include "arborist/deduction/path_walk.h"

#include <algorithm>
#include <string>

#include "arborist/model/event.h"
#include "arborist/model/gate.h"
#include "arborist/utilities/string_util.h"
#include "arborist/utilities/text_hash.h"

namespace {

constexpr char PATH_SEPARATOR[] = "/";
constexpr char MEMBER_SEPARATOR[] = "&";

const Gate* GateOf(const Event& event)
{
    const IntermediateEvent* intermediate = event.AsIntermediate();
    return intermediate == nullptr ? nullptr : intermediate->GetGate().get();
}

} // namespace

void PathWalk::Walk(const std::shared_ptr<Event>& top, SurvivingTree& tree)
{
    PathWalk walk(tree);
    walk.AddPlaces(top, SurvivingTree::NONE);
    walk.IndexPaths();
    Index branch = SurvivingTree::NONE;
    if (walk.Enter(0, branch) == Outcome::ALIVE) {
        tree.SetTop(branch);
    }
}

void PathWalk::AddPlaces(const std::shared_ptr<Event>& event, Index parent)
{
    const std::string& id = event->GetId();
    Facts facts{TextHash::Continue(TextHash::START, id), 0, IsError(event->GetResult()),
        id.find(MEMBER_SEPARATOR) != std::string::npos};
    if (parent != SurvivingTree::NONE) {
        facts.pathHash = TextHash::Continue(TextHash::Continue(mFacts[parent].pathHash, PATH_SEPARATOR), id);
        facts.isErrorToTop = facts.isErrorToTop && mFacts[parent].isErrorToTop;
        facts.holdsMemberSeparator = facts.holdsMemberSeparator || mFacts[parent].holdsMemberSeparator;
    }
    const Index place = mTree.AddPlace(event, parent);
    mFacts.push_back(facts);
    if (const Gate* gate = GateOf(*event)) {
        for (const auto& child : gate->GetEvents()) {
            AddPlaces(child, place);
        }
    }
    mFacts[place].end = static_cast<Index>(mFacts.size());
}

// Leaf by leaf, each with its way up: the first one with a path is the one that the path leads to.
void PathWalk::IndexPaths()
{
    std::vector<bool> isIndexed(mFacts.size());
    mPlaceOfPath.reserve(mFacts.size());
    for (Index place = 0; place < mFacts.size(); ++place) {
        if (mFacts[place].end != place + 1) {
            continue;
        }
        for (Index above = place; above != SurvivingTree::NONE && !isIndexed[above];
             above = mTree.GetPlaces()[above].parent) {
            isIndexed[above] = true;
            IndexPath(above);
        }
    }
}

void PathWalk::IndexPath(Index place)
{
    if (!mFacts[place].holdsMemberSeparator && FindOwnPath(place) == SurvivingTree::NONE) {
        mPlaceOfPath.emplace(mFacts[place].pathHash, place);
    }
}

SurvivingTree::Index PathWalk::Find(std::string_view path) const
{
    const auto [begin, end] = mPlaceOfPath.equal_range(TextHash::Continue(TextHash::START, path));
    const auto found = std::find_if(begin, end, [&](const auto& entry) { return mTree.GetPath(entry.second) == path; });
    return found == end ? SurvivingTree::NONE : found->second;
}

// As Find by the path of `place`, which is written out only where another place is met.
SurvivingTree::Index PathWalk::FindOwnPath(Index place) const
{
    const auto [begin, end] = mPlaceOfPath.equal_range(mFacts[place].pathHash);
    const auto found = std::find_if(begin, end, [&](const auto& entry) {
        return entry.second == place || mTree.GetPath(entry.second) == mTree.GetPath(place);
    });
    return found == end ? SurvivingTree::NONE : found->second;
}

PathWalk::Outcome PathWalk::Enter(Index place, Index& branch)
{
    const Event& event = **mTree.GetPlaces()[place].event;
    if (event.GetKind() != EventKind::INTERMEDIATE) {
        return EnterLeaf(place, branch);
    }
    const Gate* gate = GateOf(event);
    if (gate == nullptr) {
        return Outcome::EMPTY;
    }
    return EnterGate(place,
                     gate->GetKind() == GateKind::OR ? SurvivingTree::BranchKind::OR : SurvivingTree::BranchKind::AND,
                     branch);
}

// The places that the path of `leaf` leads to; NONE among them where it leads nowhere.
std::vector<SurvivingTree::Index> PathWalk::FindMembers(Index leaf) const
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

PathWalk::Outcome PathWalk::EnterLeaf(Index place, Index& branch)
{
    const std::vector<Index> members = FindMembers(place);
    const bool qualifies = std::all_of(members.begin(), members.end(), [this](Index member) {
        return member != SurvivingTree::NONE && mFacts[member].isErrorToTop;
    });
    if (!qualifies) {
        return Outcome::DEAD;
    }
    branch = mTree.AddLeaf(members);
    return Outcome::ALIVE;
}

PathWalk::Outcome PathWalk::EnterGate(Index place, SurvivingTree::BranchKind kind, Index& branch)
{
    Outcome outcome = Outcome::EMPTY;
    Index first = SurvivingTree::NONE;
    Index last = SurvivingTree::NONE;
    for (Index child = place + 1; child != mFacts[place].end; child = mFacts[child].end) {
        Index below = SurvivingTree::NONE;
        const Outcome ofChild = Enter(child, below);
        if (kind == SurvivingTree::BranchKind::OR) {
            outcome = std::max(outcome, ofChild);
        } else if (outcome == Outcome::EMPTY) {
            // At the start, and behind an empty branch, which empties the result: the combinations start afresh.
            outcome = ofChild;
            first = SurvivingTree::NONE;
        } else {
            outcome = std::min(outcome, ofChild);
        }
        if (below == SurvivingTree::NONE) {
            continue;
        }
        if (first == SurvivingTree::NONE) {
            first = below;
        } else {
            mTree.Chain(last, below);
        }
        last = below;
    }
    if (outcome == Outcome::ALIVE) {
        branch = mTree.AddGate(kind, first);
    }
    return outcome;
}
