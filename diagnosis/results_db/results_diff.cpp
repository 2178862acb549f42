#include "diagnosis/results_db/results_diff.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <tuple>

#include "diagnosis/results_db/diff_side.h"
#include "diagnosis/results_db/import_results.h"
#include "diagnosis/results_db/results_database.h"
#include "diagnosis/scratch/scratch.h"
#include "diagnosis/sqlite/database_files.h"

namespace diagnosis::results_db {

namespace {

using Number = DiffCatalogue::Number;
using Line = DiffSide::Line;

/// What a comparison has found about one root cause.
struct CauseTally {
    Occurrences added;
    Occurrences gone;
    Occurrences unchanged;
    Occurrences notComparable;
};

/// A bundle that both sides have diagnosed.
struct Pair {
    const std::string& bundle;
    DiffLine before;
    DiffLine after;
};

TreeVerdict VerdictIn(const DiffLine& line, Number tree)
{
    const auto place = std::lower_bound(line.trees.begin(), line.trees.end(), std::pair(tree, TreeVerdict::FAULT));
    return place != line.trees.end() && place->first == tree ? place->second : TreeVerdict::ABSENT;
}

// Calls `take` for each number that either of two sorted lists has, with whether each has it.
template <typename Take>
void ForEachOfEither(const std::vector<Number>& one, const std::vector<Number>& other, Take take)
{
    auto left = one.begin();
    auto right = other.begin();
    while (left != one.end() || right != other.end()) {
        const bool isLeft = left != one.end() && (right == other.end() || *left <= *right);
        const bool isRight = right != other.end() && (left == one.end() || *right <= *left);
        take(isLeft ? *left : *right, isLeft, isRight);
        left += isLeft ? 1 : 0;
        right += isRight ? 1 : 0;
    }
}

// The line of each side that counts: of the latest moment that both have, otherwise the first.
std::pair<const Line*, const Line*> ChooseLines(const std::vector<Line>& before, const std::vector<Line>& after)
{
    for (auto one = before.begin(), other = after.begin(); one != before.end() && other != after.end();) {
        if (one->now == other->now && !one->now.empty()) {
            return {&*one, &*other};
        }
        (one->now > other->now ? one : other)++;
    }
    return {&before.front(), &after.front()};
}

// Whether another result of the same moment could count as well: one of another rule set or engine.
bool IsOneOfSeveral(const std::vector<Line>& lines, const Line& line)
{
    const auto next = lines.begin() + (&line - lines.data()) + 1;
    return next != lines.end() && next->ok && next->now == line.now;
}

Failure MixedRuns(const ResultsSide& side, const std::string& bundle, const Line& line)
{
    return {FailureCode::MIXED_RULES, side.path + ": has several results of the bundle \"" + bundle + "\" "
        + (line.now.empty() ? "without a moment" : "as of " + line.now)
        + ", of different rule sets or engines, and none of them is the latest: compare results of one rule set and one engine"};
}

/// Walks through both sides and fills a ResultsDiff.
class Comparison {
public:
    Comparison(Questions& before, Questions& after, ResultsDiff& diff)
        : mBefore(before, mCatalogue), mAfter((mCatalogue.BeginLaterSide(), after), mCatalogue), mDiff(diff)
    {
    }

    std::optional<Failure> Run()
    {
        mTallies.resize(mCatalogue.CauseCount());
        bool hasBefore = mBefore.Next();
        bool hasAfter = mAfter.Next();
        while ((hasBefore || hasAfter) && !mFailure) {
            const bool isBefore = hasBefore && (!hasAfter || mBefore.Bundle() <= mAfter.Bundle());
            const bool isAfter = hasAfter && (!hasBefore || mAfter.Bundle() <= mBefore.Bundle());
            if (isBefore && isAfter) {
                CompareBundle();
            } else {
                NoteMissing(isBefore);
            }
            hasBefore = isBefore ? mBefore.Next() : hasBefore;
            hasAfter = isAfter ? mAfter.Next() : hasAfter;
        }
        Finish();
        return mFailure;
    }

private:
    Occurrences& Reason(NotComparable reason) { return mDiff.notComparable[static_cast<std::size_t>(reason)]; }

    void NoteMissing(bool isBefore)
    {
        const DiffSide& side = isBefore ? mBefore : mAfter;
        Count(isBefore ? mDiff.before : mDiff.after, side.Lines().front());
        Reason(isBefore ? NotComparable::MISSING_AFTER : NotComparable::MISSING_BEFORE).Add(side.Bundle());
    }

    static void Count(ResultsSide& side, const Line& line)
    {
        ++side.bundles;
        side.failed += line.ok ? 0 : 1;
    }

    void CompareBundle()
    {
        const auto [before, after] = ChooseLines(mBefore.Lines(), mAfter.Lines());
        Count(mDiff.before, *before);
        Count(mDiff.after, *after);
        if (!before->ok || !after->ok) {
            Reason(before->ok        ? NotComparable::FAILED_AFTER
                       : after->ok ? NotComparable::FAILED_BEFORE
                                   : NotComparable::FAILED_BOTH)
                .Add(mBefore.Bundle());
            return;
        }
        if (IsOneOfSeveral(mBefore.Lines(), *before)) {
            mFailure = MixedRuns(mDiff.before, mBefore.Bundle(), *before);
        } else if (IsOneOfSeveral(mAfter.Lines(), *after)) {
            mFailure = MixedRuns(mDiff.after, mAfter.Bundle(), *after);
        }
        ++mDiff.compared;
        mDiff.otherMoment += before->now == after->now ? 0 : 1;
        mDiff.before.seconds += before->seconds;
        mDiff.after.seconds += after->seconds;
        const Pair pair{mBefore.Bundle(), mBefore.Read(*before), mAfter.Read(*after)};
        CompareTrees(pair);
        CompareCauses(pair);
        CompareChecks(pair);
    }

    void CompareTrees(const Pair& pair)
    {
        const auto treesOf = [](const DiffLine& line) {
            std::vector<Number> trees;
            for (const auto& [tree, verdict] : line.trees) {
                trees.push_back(tree);
            }
            return trees;
        };
        ForEachOfEither(treesOf(pair.before), treesOf(pair.after), [&](Number tree, bool, bool) {
            CompareTree(pair, tree, VerdictIn(pair.before, tree), VerdictIn(pair.after, tree));
        });
    }

    void CompareTree(const Pair& pair, Number tree, TreeVerdict before, TreeVerdict after)
    {
        ++mDiff.matrix[static_cast<std::size_t>(before)][static_cast<std::size_t>(after)];
        if (before == TreeVerdict::UNDECIDED || after == TreeVerdict::UNDECIDED) {
            Reason(before != TreeVerdict::UNDECIDED        ? NotComparable::UNDECIDED_AFTER
                       : after != TreeVerdict::UNDECIDED ? NotComparable::UNDECIDED_BEFORE
                                                         : NotComparable::UNDECIDED_BOTH)
                .Add(pair.bundle);
        } else if (before != after) {
            mVerdicts[{mCatalogue.TreeOf(tree), before, after}].Add(pair.bundle);
        }
    }

    void CompareCauses(const Pair& pair)
    {
        ForEachOfEither(pair.before.causes, pair.after.causes, [&](Number number, bool isBefore, bool isAfter) {
            CauseTally& tally = mTallies[static_cast<std::size_t>(number - 1)];
            if (isBefore && isAfter) {
                tally.unchanged.Add(pair.bundle);
            } else if (IsUndecided(pair, number) || IsOpen(pair, number, isBefore)) {
                tally.notComparable.Add(pair.bundle);
            } else {
                (isAfter ? tally.added : tally.gone).Add(pair.bundle);
            }
        });
    }

    // Its tree is undecided on a side, which CompareTree has noted.
    bool IsUndecided(const Pair& pair, Number number) const
    {
        const Number tree = mCatalogue.CauseOf(number).treeNumber;
        return VerdictIn(pair.before, tree) == TreeVerdict::UNDECIDED
            || VerdictIn(pair.after, tree) == TreeVerdict::UNDECIDED;
    }

    // Whether a check that is open on the side without the cause could make it one there, too.
    bool IsOpen(const Pair& pair, Number number, bool isBefore)
    {
        const DiffCatalogue::Cause& cause = mCatalogue.CauseOf(number);
        for (const Number open : (isBefore ? pair.after : pair.before).checks) {
            const DiffCatalogue::Check& check = mCatalogue.CheckOf(open);
            if (check.treeNumber == cause.treeNumber
                && (check.mayBeAnywhere
                    || std::binary_search(cause.events.begin(), cause.events.end(), check.eventNumber))) {
                Reason(isBefore ? NotComparable::OPEN_AFTER : NotComparable::OPEN_BEFORE).Add(pair.bundle);
                return true;
            }
        }
        return false;
    }

    void CompareChecks(const Pair& pair)
    {
        ForEachOfEither(pair.before.checks, pair.after.checks, [&](Number check, bool isBefore, bool) {
            if (!isBefore) {
                mNewlyOpen[check].Add(pair.bundle);
            }
        });
    }

    void Finish()
    {
        for (const auto& [what, bundles] : mVerdicts) {
            const auto& [tree, before, after] = what;
            mDiff.verdicts.push_back({tree, before, after, bundles});
        }
        for (std::size_t place = 0; place < mTallies.size(); ++place) {
            AddCause(mCatalogue.CauseOf(static_cast<Number>(place) + 1), mTallies[place]);
        }
        for (const auto& [number, bundles] : mNewlyOpen) {
            const DiffCatalogue::Check& check = mCatalogue.CheckOf(number);
            mDiff.newlyOpen.push_back({check.tree, check.event, check.rule, check.reason, bundles});
        }
        Sort();
    }

    // Leave out definitions that no bundle refers to, or only lines that don't count.
    void AddCause(const DiffCatalogue::Cause& cause, const CauseTally& tally)
    {
        if (tally.added.count + tally.gone.count + tally.unchanged.count + tally.notComparable.count > 0) {
            mDiff.causes.push_back({cause.tree, cause.cutSet, cause.id, cause.name, tally.added, tally.gone,
                tally.unchanged, tally.notComparable});
        }
    }

    void Sort()
    {
        const auto numbers = [](const CauseChange& cause) {
            return std::tuple(cause.added.count + cause.gone.count, cause.notComparable.count, cause.unchanged.count);
        };
        std::sort(mDiff.causes.begin(), mDiff.causes.end(), [&](const CauseChange& one, const CauseChange& other) {
            return numbers(one) != numbers(other) ? numbers(one) > numbers(other)
                                                  : std::tie(one.tree, one.cutSet) < std::tie(other.tree, other.cutSet);
        });
        std::sort(mDiff.newlyOpen.begin(), mDiff.newlyOpen.end(), [](const NewlyOpen& one, const NewlyOpen& other) {
            return std::tie(other.bundles.count, one.tree, one.event, one.rule, one.reason)
                < std::tie(one.bundles.count, other.tree, other.event, other.rule, other.reason);
        });
    }

    DiffCatalogue mCatalogue;
    DiffSide mBefore;
    DiffSide mAfter;
    ResultsDiff& mDiff;
    std::optional<Failure> mFailure;
    std::vector<CauseTally> mTallies;
    std::map<std::tuple<std::string, TreeVerdict, TreeVerdict>, Occurrences> mVerdicts;
    std::map<Number, Occurrences> mNewlyOpen;
};

/// A results database, or one that is made of lines.
class OpenedResults {
public:
    explicit OpenedResults(const std::function<bool(int tries)>& tryAgain) : mTryAgain(tryAgain) {}

    std::optional<Failure> Open(const std::string& path)
    {
        if (IsDatabaseFile(path)) {
            return OpenResults(path, mDatabase, mTryAgain);
        }
        if (auto failure = mScratch.Make()) {
            return failure;
        }
        ImportOptions options;
        options.acceptsMixedRules = true;
        const std::string database = mScratch.Path("results.db");
        const ImportReport report = ImportResults({path}, database, options);
        return report.isImported ? OpenResults(database, mDatabase, mTryAgain) : std::optional(report.failures.front());
    }

    Connection& Get() { return mDatabase.Get(); }

private:
    const std::function<bool(int tries)>& mTryAgain;
    // In this order, so that the connection is closed before its file is removed.
    Scratch mScratch;
    ReadOnlyDatabase mDatabase;
};

std::vector<std::string> Texts(Questions& questions, const std::string& sql)
{
    std::vector<std::string> texts;
    questions.Ask(sql, [&texts](const Statement& row) { texts.push_back(row.Text(0)); });
    return texts;
}

// Rows that a damaged database lacks would be reported as differences.
std::optional<Failure> FailureOf(const Questions& questions, const ResultsSide& side)
{
    return questions.Problem().empty() ? std::nullopt
                                       : std::optional(Failure{FailureCode::BAD_RESULTS, side.path + ": " + questions.Problem()});
}

void Describe(Questions& questions, ResultsSide& side)
{
    side.engines = Texts(questions, "SELECT DISTINCT engine FROM run WHERE id IN (SELECT run FROM bundle) ORDER BY engine");
    side.ruleSets = Texts(questions, "SELECT DISTINCT rule_set FROM run WHERE rule_set <> ''"
        " AND id IN (SELECT run FROM bundle) ORDER BY rule_set");
    for (const std::string& text : Texts(questions, "SELECT datetime(min(now), 'unixepoch') FROM bundle")) {
        side.firstMoment = text;
    }
    for (const std::string& text : Texts(questions, "SELECT datetime(max(now), 'unixepoch') FROM bundle")) {
        side.lastMoment = text;
    }
}

} // namespace

const char* VerdictWord(TreeVerdict verdict)
{
    static constexpr const char* WORDS[] = {"fault", "undecided", "no_fault", "not_applicable", "absent"};
    return WORDS[static_cast<std::size_t>(verdict)];
}

const char* NotComparableWord(NotComparable reason)
{
    static constexpr const char* WORDS[] = {"missing_before", "missing_after", "failed_before", "failed_after",
        "failed_both", "undecided_before", "undecided_after", "undecided_both", "open_before", "open_after"};
    return WORDS[static_cast<std::size_t>(reason)];
}

void Occurrences::Add(const std::string& bundle)
{
    ++count;
    if (examples.size() < MOST_EXAMPLES && (examples.empty() || examples.back() != bundle)) {
        examples.push_back(bundle);
    }
}

std::int64_t ResultsDiff::Added() const
{
    return std::accumulate(causes.begin(), causes.end(), std::int64_t{0},
        [](std::int64_t sum, const CauseChange& cause) { return sum + cause.added.count; });
}

std::int64_t ResultsDiff::Gone() const
{
    return std::accumulate(causes.begin(), causes.end(), std::int64_t{0},
        [](std::int64_t sum, const CauseChange& cause) { return sum + cause.gone.count; });
}

std::int64_t ResultsDiff::ChangedVerdicts() const
{
    return std::accumulate(verdicts.begin(), verdicts.end(), std::int64_t{0},
        [](std::int64_t sum, const VerdictChange& change) { return sum + change.bundles.count; });
}

bool ResultsDiff::HasDifference() const
{
    bool isOneSided = false;
    for (std::size_t reason = 0; reason < notComparable.size(); ++reason) {
        const auto what = static_cast<NotComparable>(reason);
        const bool isOfBoth = what == NotComparable::FAILED_BOTH || what == NotComparable::UNDECIDED_BOTH;
        isOneSided = isOneSided || (!isOfBoth && notComparable[reason].count > 0);
    }
    return isOneSided || Added() > 0 || Gone() > 0 || ChangedVerdicts() > 0 || !newlyOpen.empty();
}

std::optional<Failure> CompareDatabases(Connection& before, Connection& after, ResultsDiff& diff)
{
    Questions ofBefore(before);
    Questions ofAfter(after);
    const auto mixed = Comparison(ofBefore, ofAfter, diff).Run();
    Describe(ofBefore, diff.before);
    Describe(ofAfter, diff.after);
    for (const auto& failure : {FailureOf(ofBefore, diff.before), FailureOf(ofAfter, diff.after)}) {
        if (failure) {
            return failure;
        }
    }
    return mixed;
}

std::optional<Failure> CompareResults(const std::string& before, const std::string& after, ResultsDiff& diff,
    const std::function<bool(int tries)>& tryAgain)
{
    diff.before.path = before;
    diff.after.path = after;
    OpenedResults one(tryAgain);
    OpenedResults other(tryAgain);
    for (auto failure : {one.Open(before), other.Open(after)}) {
        if (failure) {
            return failure;
        }
    }
    return CompareDatabases(one.Get(), other.Get(), diff);
}

} // namespace diagnosis::results_db
