#include "diagnosis/analysis/minimal_sets.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace diagnosis {

namespace {

using Number = std::uint32_t;
using Numbers = std::vector<Number>;

/// The sets with a number in place of each id; ids are numbered in the order of their first occurrence.
struct NumberedSets {
    std::vector<std::string> ids;
    /// Ascending members.
    std::vector<Numbers> sets;
    /// For each number, how many sets contain it.
    std::vector<std::size_t> counts;

    explicit NumberedSets(const std::vector<DistinctCause>& causes)
    {
        std::unordered_map<std::string_view, Number> numbers;
        for (const DistinctCause& cause : causes) {
            Numbers set;
            for (const std::string& id : cause.ids) {
                const auto [entry, isNew] = numbers.try_emplace(id, static_cast<Number>(ids.size()));
                if (isNew) {
                    ids.push_back(id);
                    counts.push_back(0);
                }
                set.push_back(entry->second);
                ++counts[entry->second];
            }
            std::sort(set.begin(), set.end());
            sets.push_back(std::move(set));
        }
    }
};

bool Holds(const Numbers& set, const Numbers& part)
{
    return std::includes(set.begin(), set.end(), part.begin(), part.end());
}

/// Searches for a smallest set of numbers that has a member in every set (a hitting set). Branches over the members of
/// a shortest set that is not hit yet, and abandons a branch as soon as disjoint sets prove that it can't be better.
class RepairSearch {
public:
    RepairSearch(const NumberedSets& numbered, std::size_t steps)
        : mSets(numbered.sets), mIsTaken(numbered.ids.size(), false), mIsBarred(numbered.ids.size(), false),
          mMark(numbered.ids.size(), 0), mSteps(steps)
    {
    }

    Numbers Find(bool& isSmallest)
    {
        TakeGreedily();
        Branch();
        isSmallest = mSteps > 0;
        return mBest;
    }

private:
    void TakeGreedily()
    {
        std::vector<const Numbers*> unmet;
        for (const Numbers& set : mSets) {
            unmet.push_back(&set);
        }
        std::vector<std::size_t> counts(mIsTaken.size());
        while (!unmet.empty()) {
            std::fill(counts.begin(), counts.end(), 0);
            for (const Numbers* set : unmet) {
                for (const Number member : *set) {
                    ++counts[member];
                }
            }
            const auto best = static_cast<Number>(
                std::distance(counts.begin(), std::max_element(counts.begin(), counts.end())));
            mBest.push_back(best);
            std::erase_if(unmet, [best](const Numbers* set) {
                return std::binary_search(set->begin(), set->end(), best);
            });
        }
    }

    bool Spend(std::size_t steps)
    {
        mSteps -= std::min(mSteps, steps);
        return mSteps > 0;
    }

    bool IsMet(const Numbers& set) const
    {
        return std::any_of(set.begin(), set.end(), [this](Number member) { return mIsTaken[member]; });
    }

    std::size_t Choices(const Numbers& set) const
    {
        return static_cast<std::size_t>(
            std::count_if(set.begin(), set.end(), [this](Number member) { return !mIsBarred[member]; }));
    }

    // A lower bound of the numbers still needed: counts sets that share no available member, as each needs a number of
    // its own. Sets `shortest` to the set with the fewest choices; null if all sets are hit.
    std::size_t LeastMore(const Numbers*& shortest)
    {
        std::size_t apart = 0;
        std::size_t fewest = SIZE_MAX;
        ++mRound;
        for (const Numbers& set : mSets) {
            if (!Spend(set.size()) || IsMet(set)) {
                continue;
            }
            const std::size_t choices = Choices(set);
            if (choices < fewest) {
                fewest = choices;
                shortest = &set;
            }
            const auto isUsed = [this](Number member) { return !mIsBarred[member] && mMark[member] == mRound; };
            if (std::none_of(set.begin(), set.end(), isUsed)) {
                ++apart;
                std::for_each(set.begin(), set.end(), [this](Number member) { mMark[member] = mRound; });
            }
        }
        return apart;
    }

    void Branch()
    {
        const Numbers* shortest = nullptr;
        const std::size_t more = LeastMore(shortest);
        if (mSteps == 0 || mTaken.size() + more >= mBest.size()) {
            return;
        }
        if (shortest == nullptr) {
            mBest = mTaken;
            return;
        }
        Numbers barred;
        for (const Number member : *shortest) {
            if (mIsBarred[member]) {
                continue;
            }
            mIsTaken[member] = true;
            mTaken.push_back(member);
            Branch();
            mTaken.pop_back();
            mIsTaken[member] = false;
            // The following branches need not try this one again.
            mIsBarred[member] = true;
            barred.push_back(member);
        }
        for (const Number member : barred) {
            mIsBarred[member] = false;
        }
    }

    const std::vector<Numbers>& mSets;
    std::vector<bool> mIsTaken;
    std::vector<bool> mIsBarred;
    std::vector<std::size_t> mMark;
    std::size_t mRound = 0;
    std::size_t mSteps;
    Numbers mTaken;
    Numbers mBest;
};

std::vector<EventShare> SharesOf(const NumberedSets& numbered)
{
    std::vector<EventShare> shares;
    for (std::size_t number = 0; number < numbered.ids.size(); ++number) {
        const double share = static_cast<double>(numbered.counts[number]) / static_cast<double>(numbered.sets.size());
        shares.push_back({numbered.ids[number], numbered.counts[number], share});
    }
    std::stable_sort(shares.begin(), shares.end(),
        [](const EventShare& left, const EventShare& right) { return left.sets > right.sets; });
    return shares;
}

} // namespace

std::vector<DistinctCause> MinimalAmong(const std::vector<DistinctCause>& causes)
{
    const NumberedSets numbered(causes);
    std::vector<std::size_t> order(causes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return numbered.sets[left].size() < numbered.sets[right].size();
    });
    // Each set is filed under its rarest member, so that a set can only contain sets that are filed under one of its
    // own members.
    std::vector<std::vector<std::size_t>> keptUnder(numbered.ids.size());
    std::vector<bool> isKept(causes.size(), false);
    for (const std::size_t candidate : order) {
        const Numbers& set = numbered.sets[candidate];
        const bool holdsAnother = std::any_of(set.begin(), set.end(), [&](Number member) {
            return std::any_of(keptUnder[member].begin(), keptUnder[member].end(),
                [&](std::size_t kept) { return Holds(set, numbered.sets[kept]); });
        });
        if (!holdsAnother) {
            const Number rarest = *std::min_element(set.begin(), set.end(),
                [&](Number left, Number right) { return numbered.counts[left] < numbered.counts[right]; });
            keptUnder[rarest].push_back(candidate);
            isKept[candidate] = true;
        }
    }
    std::vector<DistinctCause> minimal;
    for (std::size_t cause = 0; cause < causes.size(); ++cause) {
        if (isKept[cause]) {
            minimal.push_back(causes[cause]);
        }
    }
    return minimal;
}

RepairSet FindRepairs(const std::vector<DistinctCause>& sets, std::size_t steps)
{
    const NumberedSets numbered(sets);
    RepairSet repairs;
    for (const Number number : RepairSearch(numbered, steps).Find(repairs.isSmallest)) {
        repairs.ids.push_back(numbered.ids[number]);
    }
    return repairs;
}

MinimalSets FindMinimalSets(const RecordedTree& tree)
{
    MinimalSets minimal;
    const std::vector<DistinctCause> causes = DistinctCausesOf(tree);
    minimal.listed = tree.causes.size();
    minimal.distinct = causes.size();
    minimal.sets = MinimalAmong(causes);
    minimal.shares = SharesOf(NumberedSets(minimal.sets));
    minimal.repairs = FindRepairs(minimal.sets);
    return minimal;
}

} // namespace diagnosis
