#include "tools/arborist/explanation/analysis/near_misses.h"

#include <algorithm>
#include <unordered_set>

#include "tools/arborist/explanation/analysis/cut_formula.h"

namespace command {

namespace {

using Node = CutFormula::Node;

/// Goes through the choices of a formula that leave exactly so many events missing, one after the other.
class NearMissSearch {
public:
    NearMissSearch(const CutFormula& formula, std::size_t limit, std::size_t steps, NearMisses& found)
        : mFormula(formula), mLimit(limit), mSteps(steps), mFound(found)
    {
    }

    void Search(std::size_t missing)
    {
        mWanted = missing;
        if (mFormula.GetTop() == CutFormula::NONE) {
            return;
        }
        Enter(mFormula.GetTop());
        const Agenda agenda{mFormula.GetTop(), nullptr};
        Step(&agenda);
        Leave(mFormula.GetTop());
    }

private:
    /// What has still to be chosen from.
    struct Agenda {
        std::uint32_t node;
        const Agenda* rest;
    };

    // The stack ends somewhere; a tree with more gates in one cut set is none that anyone reads.
    static constexpr std::size_t DEEPEST = 4000;
    // Sums of shares are not exact.
    static constexpr double SLACK = 1e-6;

    const Node& NodeOf(std::uint32_t node) const { return mFormula.GetNode(node); }

    void Enter(std::uint32_t node)
    {
        mLeastShare += NodeOf(node).leastShare;
        mMost += NodeOf(node).most;
    }

    void Leave(std::uint32_t node)
    {
        mLeastShare -= NodeOf(node).leastShare;
        mMost -= NodeOf(node).most;
    }

    // Whether what is chosen and what is still open can come to the wanted number at all.
    bool CanFit() const
    {
        return mMissing <= mWanted && mLeastShare <= static_cast<double>(mWanted) + SLACK
            && mMissing + mMost >= mWanted;
    }

    void Step(const Agenda* agenda)
    {
        if (mSteps == 0 || mDepth == DEEPEST) {
            mFound.isComplete = false;
            return;
        }
        --mSteps;
        if (agenda == nullptr) {
            Report();
            return;
        }
        ++mDepth;
        const Node& node = NodeOf(agenda->node);
        if (node.kind == CutFormula::Kind::EVENT) {
            mMost -= node.most;
            ChooseAll({agenda->node}, agenda->rest);
            mMost += node.most;
        } else if (node.kind == CutFormula::Kind::OR) {
            StepOr(node, *agenda);
        } else {
            StepAnd(node, *agenda);
        }
        --mDepth;
    }

    void StepOr(const Node& node, const Agenda& agenda)
    {
        Leave(agenda.node);
        for (const std::uint32_t child : node.children) {
            if (NodeOf(child).least > mWanted) {
                break;
            }
            if (mSteps == 0) {
                mFound.isComplete = false;
                break;
            }
            Enter(child);
            const Agenda next{child, agenda.rest};
            if (CanFit()) {
                Step(&next);
            }
            Leave(child);
        }
        Enter(agenda.node);
    }

    // Events are taken at once; the gates below are left to be chosen from, in their order.
    void StepAnd(const Node& node, const Agenda& agenda)
    {
        Leave(agenda.node);
        std::vector<std::uint32_t> events;
        std::vector<Agenda> gates;
        gates.reserve(node.children.size());
        for (const std::uint32_t child : node.children) {
            Enter(child);
            if (NodeOf(child).kind == CutFormula::Kind::EVENT) {
                mMost -= NodeOf(child).most;
                events.push_back(child);
            } else {
                gates.push_back({child, nullptr});
            }
        }
        const Agenda* rest = agenda.rest;
        for (auto gate = gates.rbegin(); gate != gates.rend(); ++gate) {
            gate->rest = rest;
            rest = &*gate;
        }
        ChooseAll(events, rest);
        for (const std::uint32_t event : events) {
            mMost += NodeOf(event).most;
        }
        for (const std::uint32_t child : node.children) {
            Leave(child);
        }
        Enter(agenda.node);
    }

    void ChooseAll(const std::vector<std::uint32_t>& events, const Agenda* rest)
    {
        std::vector<std::uint32_t> chosen;
        for (const std::uint32_t event : events) {
            if (Take(event)) {
                chosen.push_back(event);
            }
        }
        if (CanFit()) {
            Step(rest);
        }
        for (auto event = chosen.rbegin(); event != chosen.rend(); ++event) {
            GiveBack(*event);
        }
    }

    // An event that was taken before adds nothing. The share of what is taken stays in the sum of shares; the most that
    // is open forgets it.
    bool Take(std::uint32_t event)
    {
        if (event >= mIsTaken.size()) {
            mIsTaken.resize(event + std::size_t{1}, false);
        }
        if (mIsTaken[event]) {
            return false;
        }
        mIsTaken[event] = true;
        mTaken.push_back(event);
        mMissing += NodeOf(event).isMissing ? 1U : 0U;
        return true;
    }

    void GiveBack(std::uint32_t event)
    {
        mIsTaken[event] = false;
        mTaken.pop_back();
        mMissing -= NodeOf(event).isMissing ? 1U : 0U;
    }

    void Report()
    {
        if (mMissing != mWanted || !mKnown.insert(KeyOfTaken()).second) {
            return;
        }
        if (mFound.sets.size() == mLimit) {
            ++mFound.leftOut;
            return;
        }
        NearMiss& nearMiss = mFound.sets.emplace_back();
        for (const std::uint32_t taken : mTaken) {
            const Node& node = NodeOf(taken);
            (node.isMissing ? nearMiss.missing : nearMiss.present).push_back(node.event);
        }
        std::sort(nearMiss.missing.begin(), nearMiss.missing.end());
        std::sort(nearMiss.present.begin(), nearMiss.present.end());
    }

    std::string KeyOfTaken() const
    {
        std::vector<std::uint32_t> sorted = mTaken;
        std::sort(sorted.begin(), sorted.end());
        return {reinterpret_cast<const char*>(sorted.data()), sorted.size() * sizeof(std::uint32_t)};
    }

    const CutFormula& mFormula;
    std::size_t mLimit;
    std::size_t mSteps;
    NearMisses& mFound;
    std::size_t mWanted = 0;
    std::size_t mDepth = 0;
    std::size_t mMissing = 0;
    double mLeastShare = 0;
    std::uint64_t mMost = 0;
    std::vector<bool> mIsTaken;
    std::vector<std::uint32_t> mTaken;
    std::unordered_set<std::string> mKnown;
};

} // namespace

NearMisses FindNearMisses(const ExplainedTree& tree, std::size_t mostMissing, std::size_t limit, std::size_t steps)
{
    NearMisses found;
    const CutFormula formula(tree, mostMissing);
    NearMissSearch search(formula, limit, steps, found);
    for (std::size_t missing = 1; missing <= mostMissing && found.isComplete; ++missing) {
        search.Search(missing);
    }
    return found;
}

} // namespace command
