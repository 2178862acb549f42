#include "arborist/deduction/root_cause_search.h"

#include <string_view>
#include <unordered_map>
#include <utility>

#include "arborist/deduction/error_walk.h"
#include "arborist/deduction/path_walk.h"
#include "arborist/deduction/root_cause.h"
#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/settings.h"
#include "arborist/frame/stopping.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/utilities/text_hash.h"

namespace {

using Index = SurvivingTree::Index;

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
    // The top event is above every member and part of every path: it must be in error, and "&" in its id would split
    // every path so that no member is found.
    if (top == nullptr || !IsError(top->GetResult()) || top->GetId().find('&') != std::string::npos) {
        return tree;
    }
    if (!ErrorWalk::Walk(top, tree)) {
        tree = SurvivingTree();
        PathWalk::Walk(top, tree);
    }
    return tree;
}

} // namespace

std::size_t RootCauseSearch::LimitOfSettings()
{
    const std::int64_t limit = FaultTreePropGlobal::GetInstance().GetNumber(Settings::CAUSE_LIMIT).value_or(0);
    return limit > 0 ? static_cast<std::size_t>(limit) : NO_LIMIT;
}

RootCauseSearch::RootCauseSearch(const FaultTree& tree)
    : mTop(tree.GetIntermediateEvent()), mSurvivors(CutDown(mTop)), mCombinations(mSurvivors)
{
}

const std::vector<std::shared_ptr<RootCause>>& RootCauseSearch::Find(std::size_t most)
{
    mCombinations.Make(most);
    WaysUp waysUp(mSurvivors);
    mFound.reserve(mCombinations.Count());
    for (std::size_t combination = 0; combination < mCombinations.Count(); ++combination) {
        StopPoint::Pass();
        mFound.push_back(waysUp.Collect(mCombinations.ListMembers(combination)));
    }
    return mFound;
}

CutSet RootCauseSearch::CutSetOf(std::size_t cause)
{
    CutSet cutSet;
    for (const Index member : mCombinations.ListMembers(cause)) {
        cutSet.push_back(mSurvivors.GetPath(member));
    }
    return cutSet;
}

Evidence::RootCause RootCauseSearch::RecordOf(std::size_t cause)
{
    return {mFound[cause]->GetLeaf().front()->GetId(), CutSetOf(cause), mFound[cause]->GetPaths()};
}
