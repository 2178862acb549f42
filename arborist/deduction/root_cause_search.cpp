#include "arborist/deduction/root_cause_search.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "arborist/deduction/error_walk.h"
#include "arborist/deduction/path_walk.h"
#include "arborist/deduction/root_cause.h"
#include "arborist/deduction/surviving_tree.h"
#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/settings.h"
#include "arborist/frame/stopping.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/utilities/string_util.h"
#include "arborist/utilities/text_hash.h"

namespace {

using Index = SurvivingTree::Index;

// The number of combinations of a branch; inexact above 2^53.
double CountBelow(const SurvivingTree& tree, Index branch)
{
    const SurvivingTree::Branch& head = tree.GetBranch(branch);
    if (head.kind == SurvivingTree::BranchKind::LEAF) {
        return 1;
    }
    const bool isSum = head.kind == SurvivingTree::BranchKind::OR;
    double count = isSum ? 0 : 1;
    for (Index below = head.first; below != SurvivingTree::NONE; below = tree.GetBranch(below).next) {
        count = isSum ? count + CountBelow(tree, below) : count * CountBelow(tree, below);
    }
    return count;
}

// The first `most` combinations of a surviving tree, in the order of expansion. A combination is a leaf or joins two others, so that
// combinations share their common parts.
class Combinations {
public:
    Combinations(const SurvivingTree& tree, std::size_t most) : mTree(tree), mMost(most)
    {
        Append(tree.GetTop(), mAll);
    }

    std::size_t Count() const { return mAll.size(); }

    /// The places of all members of one combination, in order.
    void ListMembers(std::size_t combination, std::vector<Index>& members)
    {
        members.clear();
        mToVisit.assign(1, mAll[combination]);
        while (!mToVisit.empty()) {
            const Combination next = mToVisit.back();
            mToVisit.pop_back();
            if (IsJoin(next)) {
                mToVisit.push_back(mJoins[next / 2].second);
                mToVisit.push_back(mJoins[next / 2].first);
                continue;
            }
            const SurvivingTree::Branch& leaf = mTree.GetBranch(static_cast<Index>(next / 2));
            for (Index member = 0; member < leaf.memberCount; ++member) {
                members.push_back(mTree.GetMember(std::size_t{leaf.first} + member));
            }
        }
    }

private:
    // A leaf is encoded as twice the index of its branch, a join as twice its index plus one.
    using Combination = std::size_t;

    static bool IsJoin(Combination combination) { return combination % 2 != 0; }

    Combination Join(Combination first, Combination second)
    {
        constexpr std::size_t JOINS_BETWEEN_STOPS = 4096;
        if (mJoins.size() % JOINS_BETWEEN_STOPS == 0) {
            StopPoint::Pass();
        }
        mJoins.emplace_back(first, second);
        return (mJoins.size() - 1) * 2 + 1;
    }

    // Stops where `result` has the most: what follows comes behind it in each product, too.
    void Append(Index branch, std::vector<Combination>& result)
    {
        const SurvivingTree::Branch& head = mTree.GetBranch(branch);
        if (head.kind == SurvivingTree::BranchKind::LEAF) {
            result.push_back(std::size_t{branch} * 2);
        } else if (head.kind == SurvivingTree::BranchKind::OR) {
            for (Index below = head.first; below != SurvivingTree::NONE && result.size() < mMost;
                 below = mTree.GetBranch(below).next) {
                Append(below, result);
            }
        } else {
            AppendProduct(head.first, result);
        }
    }

    void AppendProduct(Index first, std::vector<Combination>& result)
    {
        std::vector<Combination> product;
        std::vector<Combination> factor;
        Append(first, product);
        for (Index below = mTree.GetBranch(first).next; below != SurvivingTree::NONE;
             below = mTree.GetBranch(below).next) {
            factor.clear();
            Append(below, factor);
            product = Multiply(std::move(product), factor);
        }
        const auto room = static_cast<std::ptrdiff_t>(std::min(product.size(), mMost - result.size()));
        result.insert(result.end(), product.begin(), product.begin() + room);
    }

    // Joins every combination of `left` with every one of `right`; `left` is the outer loop.
    std::vector<Combination> Multiply(std::vector<Combination> left, const std::vector<Combination>& right)
    {
        if (right.size() == 1) {
            for (auto& combination : left) {
                combination = Join(combination, right.front());
            }
            return left;
        }
        std::vector<Combination> product;
        product.reserve(left.size() > mMost / right.size() ? mMost : left.size() * right.size());
        for (const Combination first : left) {
            for (const Combination second : right) {
                if (product.size() == mMost) {
                    return product;
                }
                product.push_back(Join(first, second));
            }
        }
        return product;
    }

    const SurvivingTree& mTree;
    std::size_t mMost;
    std::vector<std::pair<Combination, Combination>> mJoins;
    std::vector<Combination> mAll;
    std::vector<Combination> mToVisit;
};

// Collects the members of a cut set and all events above them, but of several events with the same id only the first.
class WaysUp {
public:
    explicit WaysUp(const SurvivingTree& tree)
        : mTree(tree), mIdOfPlace(tree.Count(), SurvivingTree::NONE), mRoundOfPlace(mIdOfPlace.size(), 0)
    {
    }

    std::shared_ptr<RootCause> Collect(const std::vector<Index>& members)
    {
        ++mRound;
        mWay.clear();
        for (const Index member : members) {
            GoUp(member);
        }
        std::vector<std::shared_ptr<Event>> events;
        std::vector<std::string> ids;
        events.reserve(mWay.size());
        ids.reserve(mWay.size());
        for (const Index place : mWay) {
            events.push_back(mTree.GetSharedEvent(place));
            ids.push_back(mTree.GetId(place));
        }
        auto rootCause = std::make_shared<RootCause>();
        rootCause->SetLeaf(std::move(events));
        rootCause->SetPaths(std::move(ids));
        return rootCause;
    }

private:
    // Stops at a place that this round has visited: all places above that one have been visited, too.
    void GoUp(Index member)
    {
        for (Index place = member; place != SurvivingTree::NONE && mRoundOfPlace[place] != mRound;
             place = mTree.GetParent(place)) {
            mRoundOfPlace[place] = mRound;
            std::size_t& roundOfId = mRoundOfId[IdOf(place)];
            if (roundOfId != mRound) {
                roundOfId = mRound;
                mWay.push_back(place);
            }
        }
    }

    // Numbers the ids, so that equal texts have equal numbers.
    Index IdOf(Index place)
    {
        if (mIdOfPlace[place] == SurvivingTree::NONE) {
            const auto [entry, isNew] =
                mIds.try_emplace(std::string_view(mTree.GetId(place)), static_cast<Index>(mIds.size()));
            mIdOfPlace[place] = entry->second;
            if (isNew) {
                mRoundOfId.push_back(0);
            }
        }
        return mIdOfPlace[place];
    }

    const SurvivingTree& mTree;
    std::vector<Index> mIdOfPlace;
    std::vector<std::size_t> mRoundOfPlace;
    std::unordered_map<std::string_view, Index, TextHash> mIds;
    std::vector<std::size_t> mRoundOfId;
    std::size_t mRound = 0;
    std::vector<Index> mWay;
};

SurvivingTree CutDown(const std::shared_ptr<Event>& top)
{
    SurvivingTree tree;
    if (!ErrorWalk::Walk(top, tree)) {
        tree = SurvivingTree();
        PathWalk::Walk(top, tree);
    }
    return tree;
}

std::vector<RootCauseSearch::Found> Collect(const SurvivingTree& tree, bool withCutSets, std::size_t most)
{
    std::vector<RootCauseSearch::Found> found;
    Combinations combinations(tree, most);
    WaysUp waysUp(tree);
    std::vector<Index> members;
    found.reserve(combinations.Count());
    for (std::size_t combination = 0; combination < combinations.Count(); ++combination) {
        StopPoint::Pass();
        combinations.ListMembers(combination, members);
        CutSet& cutSet = found.emplace_back(RootCauseSearch::Found{waysUp.Collect(members)}).cutSet;
        if (withCutSets) {
            for (const Index member : members) {
                cutSet.push_back(tree.GetPath(member));
            }
        }
    }
    return found;
}

} // namespace

std::size_t RootCauseSearch::LimitOfSettings()
{
    const std::string text = FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(Settings::CAUSE_LIMIT, "");
    const std::int32_t limit = StringUtil::Int32Of(text).value_or(0);
    return limit > 0 ? static_cast<std::size_t>(limit) : NO_LIMIT;
}

Evidence::RootCause RootCauseSearch::Found::TakeRecord()
{
    return {rootCause->GetLeaf().front()->GetId(), std::move(cutSet), rootCause->GetPaths()};
}

std::vector<RootCauseSearch::Found> RootCauseSearch::Find(const FaultTree& tree, bool withCutSets, std::size_t most,
    const std::function<void(const std::string& number)>& tellNumber)
{
    const std::shared_ptr<Event> top = tree.GetIntermediateEvent();
    // The top event is above every member and part of every path: it must be in error, and "&" in its id would split
    // every path so that no member is found.
    if (top == nullptr || !IsError(top->GetResult()) || top->GetId().find('&') != std::string::npos) {
        return {};
    }
    const SurvivingTree survivors = CutDown(top);
    if (survivors.GetTop() == SurvivingTree::NONE) {
        return {};
    }
    const double number = CountBelow(survivors, survivors.GetTop());
    if (tellNumber && number > static_cast<double>(most)) {
        char text[32];
        std::snprintf(text, sizeof(text), "%.15g", number);
        tellNumber(text);
    }
    return Collect(survivors, withCutSets, most);
}
