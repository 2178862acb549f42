#include "diagnosis/lint/reading/cut_sets.h"

#include <algorithm>

namespace diagnosis::lint {

namespace {

using rule_source::GateKind;
using rule_source::Tree;
using rule_source::TreeEvent;

std::uint64_t Sum(std::uint64_t one, std::uint64_t other)
{
    return std::min(one + other, CutSets::COUNTLESS);
}

std::uint64_t Product(std::uint64_t one, std::uint64_t other)
{
    return other != 0 && one > CutSets::COUNTLESS / other ? CutSets::COUNTLESS : one * other;
}

} // namespace

CutSets::CutSets(const rule_source::Trees& trees)
    : mTrees(trees), mNumbers(trees.events.size()), mFirstChild(trees.events.size(), TreeEvent::NO_PARENT),
      mMayBeFirst(trees.events.size())
{
    // Goes backwards, as each event precedes those below it.
    for (std::size_t event = trees.events.size(); event-- > 0;) {
        Count(event);
    }
    for (const Tree& tree : trees.trees) {
        if (tree.begin < tree.end) {
            mMayBeFirst[tree.begin] = true;
        }
    }
    for (std::size_t event = 0; event < trees.events.size(); ++event) {
        MarkFirst(event);
    }
}

void CutSets::Count(std::size_t event)
{
    const TreeEvent& counted = mTrees.events[event];
    if (counted.kind != rule_source::EventKind::INTERMEDIATE) {
        mNumbers[event] = 1;
    } else if (counted.gateKind == GateKind::AND) {
        CountAnd(event);
    } else {
        mTrees.ForEachChild(
            event, [&](std::size_t child) { mNumbers[event] = Sum(mNumbers[event], mNumbers[child]); });
    }
}

// The first child starts the combinations; a child without combinations drops those collected so far, and the next one
// starts anew.
void CutSets::CountAnd(std::size_t event)
{
    std::uint64_t& number = mNumbers[event];
    mTrees.ForEachChild(event, [&](std::size_t child) {
        if (number == 0) {
            mFirstChild[event] = child;
        }
        number = number == 0 ? mNumbers[child] : Product(number, mNumbers[child]);
    });
}

void CutSets::MarkFirst(std::size_t event)
{
    if (!mMayBeFirst[event] || mNumbers[event] == 0) {
        return;
    }
    const GateKind gate = mTrees.events[event].gateKind;
    if (gate == GateKind::AND) {
        mMayBeFirst[mFirstChild[event]] = true;
    } else if (gate == GateKind::OR) {
        mTrees.ForEachChild(event, [&](std::size_t child) { mMayBeFirst[child] = true; });
    }
}

} // namespace diagnosis::lint
