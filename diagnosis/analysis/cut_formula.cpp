#include "diagnosis/analysis/cut_formula.h"

#include <algorithm>

namespace diagnosis {

namespace {


CutFormula::Kind KindOf(const RecordedEvent& event)
{
    return event.gate == Evidence::GateType::OR ? CutFormula::Kind::OR : CutFormula::Kind::AND;
}

} // namespace

CutFormula::CutFormula(const RecordedTree& tree) : mTree(tree)
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

// Goes from the last event backwards, so that the events below an event are known before it.
void CutFormula::FindEmpty()
{
    mIsEmpty.assign(mTree.events.size(), false);
    for (std::size_t event = mTree.events.size(); event-- > 0;) {
        const RecordedEvent& explained = mTree.events[event];
        if (explained.IsLeaf()) {
            continue;
        }
        const std::vector<std::size_t> children = mTree.ChildrenOf(event);
        // The last branch of an AND gate decides: an empty branch drops the combinations before it, and those behind
        // start anew.
        mIsEmpty[event] = explained.gate == Evidence::GateType::OR
            ? std::all_of(children.begin(), children.end(), [this](std::size_t child) { return mIsEmpty[child]; })
            : children.empty() || mIsEmpty[children.back()];
    }
}

void CutFormula::CountPlaces()
{
    for (const RecordedEvent& event : mTree.events) {
        if (event.IsLeaf() ? !event.IsInError() : IsBarred(event)) {
            ++mPlacesMissing[event.id];
        }
    }
}

std::uint32_t CutFormula::Build(std::size_t event)
{
    const RecordedEvent& explained = mTree.events[event];
    if (explained.IsLeaf()) {
        return MakeEvent(event);
    }
    std::vector<std::uint32_t> parts;
    for (const std::size_t branch : BranchesOf(event)) {
        CollectParts(branch, KindOf(explained), parts);
    }
    const std::uint32_t gate = MakeGate(KindOf(explained), parts);
    return IsBarred(explained) ? MakeGate(Kind::AND, {MakeEvent(event), gate}) : gate;
}

// Merges a gate below one of the same kind into it: collects the branches of both.
void CutFormula::CollectParts(std::size_t event, Kind kind, std::vector<std::uint32_t>& parts)
{
    const RecordedEvent& explained = mTree.events[event];
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

// The branches that have cut sets; for an AND only those behind the last branch without cut sets.
std::vector<std::size_t> CutFormula::BranchesOf(std::size_t event) const
{
    std::vector<std::size_t> branches = mTree.ChildrenOf(event);
    if (mTree.events[event].gate == Evidence::GateType::OR) {
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
    const RecordedEvent& explained = mTree.events[event];
    const bool isMissing = !explained.IsInError();
    const double share = isMissing ? 1.0 / static_cast<double>(mPlacesMissing[explained.id]) : 0.0;
    return Intern((isMissing ? "-" : "+") + explained.id, {Kind::EVENT, event, isMissing, {}, share});
}

std::uint32_t CutFormula::MakeGate(Kind kind, const std::vector<std::uint32_t>& branches)
{
    // Taking an event twice equals taking it once, and so does choosing twice between the same branches of an OR.
    std::vector<Part> parts;
    std::unordered_map<std::uint32_t, std::size_t> places;
    for (const std::uint32_t branch : branches) {
        const auto [place, isNew] = places.try_emplace(branch, parts.size());
        if (isNew) {
            parts.push_back({branch});
        } else if (kind == Kind::AND && mNodes[branch].kind != Kind::EVENT) {
            ++parts[place->second].times;
        }
    }
    if (parts.size() == 1 && parts.front().times == 1) {
        return parts.front().node;
    }
    std::vector<std::uint32_t> key;
    double least = kind == Kind::OR ? mNodes[parts.front().node].least : 0.0;
    for (const Part& part : parts) {
        const double ofPart = mNodes[part.node].least;
        least = kind == Kind::OR ? std::min(least, ofPart) : least + part.times * ofPart;
        key.insert(key.end(), part.times, part.node);
    }
    std::sort(key.begin(), key.end());
    std::string text(kind == Kind::OR ? "|" : "&");
    text.append(reinterpret_cast<const char*>(key.data()), key.size() * sizeof(key.front()));
    return Intern(text, {kind, RecordedEvent::NONE, false, std::move(parts), least});
}

std::uint32_t CutFormula::Intern(const std::string& key, Node node)
{
    const auto [entry, isNew] = mKnown.try_emplace(key, static_cast<std::uint32_t>(mNodes.size()));
    if (isNew) {
        mNodes.push_back(std::move(node));
    }
    return entry->second;
}

} // namespace diagnosis
