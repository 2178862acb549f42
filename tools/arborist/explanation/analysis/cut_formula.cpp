#include "tools/arborist/explanation/analysis/cut_formula.h"

#include <algorithm>
#include <unordered_set>

namespace command {

namespace {

using Folded = ExplainedEvent::Folded;

CutFormula::Kind KindOf(const ExplainedEvent& event)
{
    return event.gate == Folded::GateKind::OR ? CutFormula::Kind::OR : CutFormula::Kind::AND;
}

} // namespace

CutFormula::CutFormula(const ExplainedTree& tree, std::size_t mostMissing)
    : mTree(tree), mMostMissing(static_cast<std::uint32_t>(std::min<std::size_t>(mostMissing, 1000000)))
{
    if (tree.events.empty()) {
        return;
    }
    FindEmpty();
    CountPlaces();
    if (!mIsEmpty.front()) {
        mTop = Build(0);
    }
}

// From the last event backwards, so that everything below an event is known before it.
void CutFormula::FindEmpty()
{
    mIsEmpty.assign(mTree.events.size(), false);
    for (std::size_t event = mTree.events.size(); event-- > 0;) {
        const ExplainedEvent& explained = mTree.events[event];
        if (explained.IsLeaf()) {
            continue;
        }
        const std::vector<std::size_t> children = mTree.ChildrenOf(event);
        // The last branch of an AND gate decides: behind an empty one the combinations start afresh.
        mIsEmpty[event] = explained.gate == Folded::GateKind::OR
            ? std::all_of(children.begin(), children.end(), [this](std::size_t child) { return mIsEmpty[child]; })
            : children.empty() || mIsEmpty[children.back()];
    }
}

void CutFormula::CountPlaces()
{
    for (const ExplainedEvent& event : mTree.events) {
        if (event.IsLeaf() ? !event.IsInError() : IsBarred(event)) {
            ++mPlacesMissing[event.id];
        }
    }
}

std::uint32_t CutFormula::Build(std::size_t event)
{
    const ExplainedEvent& explained = mTree.events[event];
    if (explained.IsLeaf()) {
        return MakeEvent(event);
    }
    std::vector<std::uint32_t> parts;
    for (const std::size_t branch : BranchesOf(event)) {
        CollectParts(branch, KindOf(explained), parts);
    }
    const std::uint32_t gate = MakeGate(KindOf(explained), std::move(parts));
    return IsBarred(explained) ? MakeGate(Kind::AND, {MakeEvent(event), gate}) : gate;
}

// A gate below one of the same kind adds its branches to it.
void CutFormula::CollectParts(std::size_t event, Kind kind, std::vector<std::uint32_t>& parts)
{
    const ExplainedEvent& explained = mTree.events[event];
    if (explained.IsLeaf() || KindOf(explained) != kind || (kind == Kind::OR && IsBarred(explained))) {
        parts.push_back(Build(event));
        return;
    }
    if (IsBarred(explained)) {
        parts.push_back(MakeEvent(event));
    }
    for (const std::size_t branch : BranchesOf(event)) {
        CollectParts(branch, kind, parts);
    }
}

// The branches that have cut sets; of an AND those behind the last one that has none.
std::vector<std::size_t> CutFormula::BranchesOf(std::size_t event) const
{
    std::vector<std::size_t> branches = mTree.ChildrenOf(event);
    if (mTree.events[event].gate == Folded::GateKind::OR) {
        std::erase_if(branches, [this](std::size_t branch) { return mIsEmpty[branch]; });
        return branches;
    }
    const auto lastEmpty = std::find_if(
        branches.rbegin(), branches.rend(), [this](std::size_t branch) { return mIsEmpty[branch]; });
    branches.erase(branches.begin(), lastEmpty.base());
    return branches;
}

std::uint32_t CutFormula::MakeEvent(std::size_t event)
{
    const ExplainedEvent& explained = mTree.events[event];
    const bool isMissing = !explained.IsInError();
    const double share = isMissing ? 1.0 / static_cast<double>(mPlacesMissing[explained.id]) : 0.0;
    const std::uint32_t count = isMissing ? 1 : 0;
    return Intern((isMissing ? "-" : "+") + explained.id,
        {Kind::EVENT, event, isMissing, {}, share, count, std::min(count, mMostMissing)});
}

std::uint32_t CutFormula::MakeGate(Kind kind, std::vector<std::uint32_t> parts)
{
    // Each part once, where it stands first.
    std::unordered_set<std::uint32_t> seen;
    std::erase_if(parts, [&seen](std::uint32_t part) { return !seen.insert(part).second; });
    if (parts.size() == 1) {
        return parts.front();
    }
    std::vector<std::uint32_t> sorted = parts;
    std::sort(sorted.begin(), sorted.end());
    std::string key(kind == Kind::OR ? "|" : "&");
    key.append(reinterpret_cast<const char*>(sorted.data()), sorted.size() * sizeof(sorted.front()));
    Node node{kind, ExplainedEvent::NONE, false, std::move(parts), 0.0, 0, 0};
    const auto childOf = [this](std::uint32_t child) -> const Node& { return mNodes[child]; };
    if (kind == Kind::OR) {
        std::stable_sort(node.children.begin(), node.children.end(), [&](std::uint32_t left, std::uint32_t right) {
            return childOf(left).least < childOf(right).least;
        });
        node.leastShare = childOf(node.children.front()).leastShare;
        node.least = childOf(node.children.front()).least;
    }
    for (const std::uint32_t child : node.children) {
        const Node& part = childOf(child);
        if (kind == Kind::OR) {
            node.leastShare = std::min(node.leastShare, part.leastShare);
            node.most = std::max(node.most, part.most);
        } else {
            node.leastShare += part.leastShare;
            node.least = std::max(node.least, part.least);
            node.most = std::min(mMostMissing, node.most + part.most);
        }
    }
    return Intern(key, std::move(node));
}

std::uint32_t CutFormula::Intern(const std::string& key, Node node)
{
    const auto [entry, isNew] = mKnown.try_emplace(key, static_cast<std::uint32_t>(mNodes.size()));
    if (isNew) {
        mNodes.push_back(std::move(node));
    }
    return entry->second;
}

} // namespace command
