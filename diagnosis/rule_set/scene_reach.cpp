#include "diagnosis/rule_set/scene_reach.h"

#include <algorithm>

#include "diagnosis/rule_set/obstacles.h"

namespace diagnosis::rule_set {

namespace {

using rule_source::EventKind;
using rule_source::GateKind;
using rule_source::RuleSet;
using rule_source::Tree;
using rule_source::TreeEvent;

void AppendSome(const std::vector<std::size_t>& more, std::vector<std::size_t>& events)
{
    const std::size_t room = MOST_OBSTACLES - std::min(MOST_OBSTACLES, events.size());
    events.insert(events.end(), more.begin(), more.begin() + static_cast<std::ptrdiff_t>(std::min(room, more.size())));
}

} // namespace

SceneReach::SceneReach(const RuleSet& rules, const lint::CutSets& cutSets, const lint::DeviceProfile& device)
    : mRules(rules), mCutSets(cutSets), mCanBeTrue(rules.trees.events.size()), mHasCutSet(rules.trees.events.size()),
      mMayBeReported(rules.trees.events.size())
{
    // Goes backwards, as each event precedes those below it.
    for (std::size_t event = rules.trees.events.size(); event-- > 0;) {
        Fold(event, device);
    }
    for (const Tree& tree : rules.trees.trees) {
        if (tree.begin < tree.end) {
            mMayBeReported[tree.begin] = mHasCutSet[tree.begin];
        }
    }
    for (std::size_t event = 0; event < rules.trees.events.size(); ++event) {
        MarkReported(event);
    }
}

// An intermediate event with rules of its own keeps their answer.
bool SceneReach::FollowsGate(std::size_t event) const
{
    const TreeEvent& asked = mRules.trees.events[event];
    return asked.kind == EventKind::INTERMEDIATE && asked.binding == nullptr;
}

void SceneReach::Fold(std::size_t event, const lint::DeviceProfile& device)
{
    const TreeEvent& folded = mRules.trees.events[event];
    const bool isAnd = folded.gateKind == GateKind::AND;
    bool isGateTrue = isAnd;
    bool hasCutSet = isAnd;
    mRules.trees.ForEachChild(event, [&](std::size_t child) {
        isGateTrue = isAnd ? isGateTrue && mCanBeTrue[child] : isGateTrue || mCanBeTrue[child];
        hasCutSet = hasCutSet || (!isAnd && mHasCutSet[child]);
    });
    if (isAnd) {
        const auto factors = Factors(event);
        hasCutSet = !factors.empty()
            && std::all_of(factors.begin(), factors.end(), [this](std::size_t child) { return mHasCutSet[child]; });
    }
    mCanBeTrue[event] = FollowsGate(event) ? isGateTrue : MayHold(mRules, folded, device);
    mHasCutSet[event] = mCanBeTrue[event] && (folded.kind != EventKind::INTERMEDIATE || hasCutSet);
}

std::vector<std::size_t> SceneReach::Factors(std::size_t event) const
{
    std::vector<std::size_t> factors;
    mRules.trees.ForEachChild(event, [&](std::size_t child) {
        if (mCutSets.Number(child) == 0) {
            factors.clear();
        } else {
            factors.push_back(child);
        }
    });
    return factors;
}

void SceneReach::MarkReported(std::size_t event)
{
    if (!mMayBeReported[event]) {
        return;
    }
    const TreeEvent& marked = mRules.trees.events[event];
    if (marked.gateKind == GateKind::AND) {
        mMayBeReported[Factors(event).front()] = true;
    } else {
        mRules.trees.ForEachChild(event, [&](std::size_t child) { mMayBeReported[child] = mHasCutSet[child]; });
    }
}

std::vector<std::size_t> SceneReach::BlockersOf(std::size_t leaf)
{
    std::size_t from = leaf;
    for (std::size_t event = leaf; event != TreeEvent::NO_PARENT; event = mRules.trees.events[event].parent) {
        auto blockers = BlockersAt(event, from);
        if (!blockers.empty()) {
            return blockers;
        }
        from = event;
    }
    return {};
}

// `from` is the child through which the walk came.
std::vector<std::size_t> SceneReach::BlockersAt(std::size_t event, std::size_t from)
{
    if (!FollowsGate(event) && !mCanBeTrue[event]) {
        return {event};
    }
    std::vector<std::size_t> blockers;
    if (mRules.trees.events[event].gateKind == GateKind::AND) {
        for (const std::size_t child : MissingChildren(event)) {
            if (child != from) {
                AppendSome(BlockersBelow(child), blockers);
            }
        }
    }
    return blockers;
}

// The children that an AND gate needs and that can't be there; not all, if they are many.
const std::vector<std::size_t>& SceneReach::MissingChildren(std::size_t event)
{
    const auto [found, isNew] = mMissingChildren.try_emplace(event);
    std::vector<std::size_t>& missing = found->second;
    if (isNew) {
        mRules.trees.ForEachChild(event, [&](std::size_t child) {
            const bool isMissing = mCutSets.Number(child) == 0 ? !mCanBeTrue[child] : !mHasCutSet[child];
            // One more than is listed, as one may be the child from which the walk came.
            if (isMissing && missing.size() <= MOST_OBSTACLES) {
                missing.push_back(child);
            }
        });
    }
    return missing;
}

// Goes not below an event that has rules in its way itself. Trees are not deeper than the XML library reads.
const std::vector<std::size_t>& SceneReach::BlockersBelow(std::size_t event)
{
    if (const auto found = mBlockersBelow.find(event); found != mBlockersBelow.end()) {
        return found->second;
    }
    std::vector<std::size_t> blockers;
    const bool isLast = !FollowsGate(event) && !mCanBeTrue[event];
    if (isLast || mRules.trees.events[event].end == event + 1) {
        blockers.push_back(event);
    } else {
        mRules.trees.ForEachChild(event, [&](std::size_t child) {
            if (blockers.size() < MOST_OBSTACLES && !mHasCutSet[child]) {
                AppendSome(BlockersBelow(child), blockers);
            }
        });
    }
    return mBlockersBelow.emplace(event, std::move(blockers)).first->second;
}

} // namespace diagnosis::rule_set
