#include "diagnosis/analysis/near_misses.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "diagnosis/analysis/cut_formula.h"

namespace diagnosis {

namespace {

using Number = std::uint32_t;
/// Nodes of missing events, ascending.
using Missing = std::vector<Number>;

/// A set of missing events, and a choice that lacks just these.
struct Lack {
    Number set;
    Number choice;
};

/// The sets that the choices below a node lack, each once, the smallest first.
using Lacks = std::vector<Lack>;

/// Computes bottom up what the choices of a formula lack. A choice is stored as the two choices that it joins; its
/// events are listed only on request.
class LackFinder {
public:
    LackFinder(const CutFormula& formula, std::size_t most, std::size_t& steps)
        : mFormula(formula), mMost(most), mSteps(steps)
    {
    }

    /// The lacks of the whole formula with at most `most` events each.
    Lacks Find()
    {
        std::vector<Lacks> all;
        for (const CutFormula::Node& node : mFormula.GetNodes()) {
            all.push_back(node.least > static_cast<double>(mMost) + SLACK ? Lacks() : LacksOf(node, all));
        }
        return std::move(all[mFormula.GetTop()]);
    }

    const Missing& SetOf(const Lack& lack) const { return *mSets[lack.set]; }
    bool IsComplete() const { return mIsComplete; }

    std::vector<std::size_t> EventsOf(const Missing& set) const
    {
        std::vector<std::size_t> events;
        for (const Number node : set) {
            events.push_back(mFormula.GetNodes()[node].event);
        }
        std::sort(events.begin(), events.end());
        return events;
    }

    std::vector<std::size_t> PresentOf(Number choiceOfAll) const
    {
        std::unordered_set<Number> seen{NOTHING};
        std::vector<Number> open{choiceOfAll};
        std::vector<std::size_t> events;
        while (!open.empty()) {
            const Number choice = open.back();
            open.pop_back();
            if (!seen.insert(choice).second) {
                continue;
            }
            const auto& [left, right] = mChoices[choice];
            if (left == EVENT) {
                events.push_back(mFormula.GetNodes()[right].event);
            } else {
                open.insert(open.end(), {left, right});
            }
        }
        std::sort(events.begin(), events.end());
        events.erase(std::unique(events.begin(), events.end()), events.end());
        return events;
    }

private:
    /// The choice without events; also the left part of a choice that is a single event.
    static constexpr Number NOTHING = 0;
    static constexpr Number EVENT = UINT32_MAX;
    // Tolerance, as sums of shares are not exact.
    static constexpr double SLACK = 1e-6;
    static constexpr std::size_t LARGEST_FAMILY = 100000;

    Lacks LacksOf(const CutFormula::Node& node, const std::vector<Lacks>& all)
    {
        switch (node.kind) {
        case CutFormula::Kind::EVENT:
            return {OfEvent(node, static_cast<Number>(all.size()))};
        case CutFormula::Kind::OR:
            return OfOr(node, all);
        case CutFormula::Kind::AND:
            return OfAnd(node, all);
        }
        return {};
    }

    Lack OfEvent(const CutFormula::Node& node, Number number)
    {
        if (node.isMissing) {
            return {NumberOf({number}), NOTHING};
        }
        mChoices.emplace_back(EVENT, number);
        return {NumberOf({}), static_cast<Number>(mChoices.size() - 1)};
    }

    Lacks OfOr(const CutFormula::Node& node, const std::vector<Lacks>& all)
    {
        Lacks lacks;
        std::unordered_set<Number> known;
        for (const CutFormula::Part& part : node.parts) {
            for (const Lack& lack : all[part.node]) {
                if (known.insert(lack.set).second) {
                    lacks.push_back(lack);
                }
                if (!Spend()) {
                    break; // one of each part
                }
            }
        }
        return Tidied(std::move(lacks));
    }

    Lacks OfAnd(const CutFormula::Node& node, const std::vector<Lacks>& all)
    {
        Lacks lacks{{NumberOf({}), NOTHING}};
        for (const CutFormula::Part& part : node.parts) {
            lacks = Joined(lacks, all[part.node]);
            // Repeat only as long as one more choice adds sets.
            for (Number times = 1; times < part.times; ++times) {
                Lacks more = Joined(lacks, all[part.node]);
                if (more.size() == lacks.size()) {
                    break;
                }
                lacks = std::move(more);
            }
        }
        return lacks;
    }

    Lacks Joined(const Lacks& left, const Lacks& right)
    {
        Lacks lacks;
        std::unordered_set<Number> known;
        const Index index = IndexOf(right);
        Spend(right.size());
        for (const Lack& one : left) {
            const Missing& set = SetOf(one);
            // Small sets can be joined with any set of the other part; larger ones only with sets that share an event.
            const std::size_t room = mMost - set.size();
            std::vector<const Lack*> others;
            for (const Lack& other : right) {
                if (SetOf(other).size() > room) {
                    break;
                }
                others.push_back(&other);
            }
            for (const Number event : set) {
                const auto found = index.find(event);
                if (found != index.end()) {
                    others.insert(others.end(), found->second.begin(), found->second.end());
                }
            }
            for (const Lack* other : others) {
                Join(one, *other, known, lacks);
                if (!Spend()) {
                    return Tidied(std::move(lacks));
                }
            }
        }
        return Tidied(std::move(lacks));
    }

    void Join(const Lack& one, const Lack& other, std::unordered_set<Number>& known, Lacks& lacks)
    {
        Missing both;
        std::set_union(SetOf(one).begin(), SetOf(one).end(), SetOf(other).begin(), SetOf(other).end(),
            std::back_inserter(both));
        if (both.size() > mMost) {
            return;
        }
        const Number set = NumberOf(std::move(both));
        if (known.insert(set).second) {
            lacks.push_back({set, JoinedChoice(one.choice, other.choice)});
        }
    }

    Number JoinedChoice(Number one, Number other)
    {
        if (one == NOTHING || other == NOTHING || one == other) {
            return std::max(one, other);
        }
        mChoices.emplace_back(one, other);
        return static_cast<Number>(mChoices.size() - 1);
    }

    using Index = std::unordered_map<Number, std::vector<const Lack*>>;

    Index IndexOf(const Lacks& lacks) const
    {
        Index index;
        for (const Lack& lack : lacks) {
            for (const Number event : SetOf(lack)) {
                index[event].push_back(&lack);
            }
        }
        return index;
    }

    // Sorts by size and drops the sets beyond LARGEST_FAMILY.
    Lacks Tidied(Lacks lacks)
    {
        std::stable_sort(lacks.begin(), lacks.end(),
            [this](const Lack& left, const Lack& right) { return SetOf(left).size() < SetOf(right).size(); });
        if (lacks.size() > LARGEST_FAMILY) {
            lacks.resize(LARGEST_FAMILY);
            mIsComplete = false;
        }
        return lacks;
    }

    // False if the budget of steps is used up.
    bool Spend(std::size_t steps = 1)
    {
        const bool isEnough = mSteps >= steps;
        mSteps -= std::min(mSteps, steps);
        mIsComplete = mIsComplete && isEnough;
        return isEnough;
    }

    Number NumberOf(Missing set)
    {
        const auto [entry, isNew] = mNumbers.try_emplace(std::move(set), static_cast<Number>(mSets.size()));
        if (isNew) {
            mSets.push_back(&entry->first);
        }
        return entry->second;
    }

    const CutFormula& mFormula;
    std::size_t mMost;
    std::size_t& mSteps;
    bool mIsComplete = true;
    std::map<Missing, Number> mNumbers;
    std::vector<const Missing*> mSets;
    std::vector<std::pair<Number, Number>> mChoices{{NOTHING, NOTHING}};
};

} // namespace

NearMisses FindNearMisses(const RecordedTree& tree, std::size_t mostMissing, std::size_t limit, std::size_t steps)
{
    NearMisses found;
    const CutFormula formula(tree);
    if (formula.GetTop() == CutFormula::NONE) {
        return found;
    }
    // Allow one more missing event at a time: if the steps run out, the smaller sets are complete.
    for (std::size_t most = 1; most <= mostMissing && found.isComplete; ++most) {
        LackFinder finder(formula, most, steps);
        Lacks lacks = finder.Find();
        std::erase_if(lacks, [&](const Lack& lack) { return finder.SetOf(lack).size() < most; });
        std::vector<std::pair<std::vector<std::size_t>, Number>> sets;
        for (const Lack& lack : lacks) {
            sets.emplace_back(finder.EventsOf(finder.SetOf(lack)), lack.choice);
        }
        std::sort(sets.begin(), sets.end());
        const std::size_t shown = std::min(sets.size(), limit - found.sets.size());
        for (std::size_t set = 0; set < shown; ++set) {
            found.sets.push_back({sets[set].first, finder.PresentOf(sets[set].second)});
        }
        found.leftOut += sets.size() - shown;
        found.isComplete = finder.IsComplete();
    }
    return found;
}

} // namespace diagnosis
