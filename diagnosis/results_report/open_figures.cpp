#include "diagnosis/results_report/open_figures.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "diagnosis/analysis/next_checks.h"

namespace diagnosis {

namespace {

using Evidence::Reason;

constexpr std::int64_t NONE = -1;

Reason ReasonOf(const std::string& word)
{
    for (int number = 0; number <= static_cast<int>(Evidence::LAST_REASON); ++number) {
        if (word == Evidence::ReasonText(static_cast<Reason>(number))) {
            return static_cast<Reason>(number);
        }
    }
    return Reason::NONE;
}

/// A row of check_def.
struct Definition {
    std::int64_t id;
    /// Index of its check and reason, and of its reason and detail.
    std::size_t reason;
    std::size_t source;
    bool isOfLog;
    /// The place of its reason among LOG_REASONS, if it says that the log is missing.
    std::optional<std::size_t> missesLog;
};

struct Definitions {
    std::vector<Definition> all;
    std::size_t reasons = 0;
    std::size_t sources = 0;

    const Definition* Of(std::int64_t id) const
    {
        const auto found = std::lower_bound(all.begin(), all.end(), id,
            [](const Definition& definition, std::int64_t wanted) { return definition.id < wanted; });
        return found == all.end() || found->id != id ? nullptr : &*found;
    }
};

Definitions ReadDefinitions(Questions& questions)
{
    Definitions definitions;
    questions.Ask("SELECT id, dense_rank() OVER (ORDER BY \"check\", reason), dense_rank() OVER (ORDER BY reason, detail), "
                  "reason, detail FROM check_def ORDER BY id",
        [&definitions](const Statement& row) {
            const Reason reason = ReasonOf(row.Text(3));
            Definition definition{row.Integer(0), static_cast<std::size_t>(row.Integer(1) - 1),
                static_cast<std::size_t>(row.Integer(2) - 1), RestsOnLog(reason, row.Text(4)), std::nullopt};
            for (std::size_t place = 0; place < LOG_REASONS.size(); ++place) {
                definition.missesLog = LOG_REASONS[place] == reason ? std::optional(place) : definition.missesLog;
            }
            definitions.reasons = std::max(definitions.reasons, definition.reason + 1);
            definitions.sources = std::max(definitions.sources, definition.source + 1);
            definitions.all.push_back(definition);
        });
    return definitions;
}

struct OpenCount {
    std::uint64_t checks = 0;
    std::uint64_t bundles = 0;
    std::uint64_t undecidedTrees = 0;
    std::int64_t lastBundle = NONE;
    std::int64_t lastTree = NONE;
    /// A definition that counted here.
    std::int64_t example = NONE;
    /// Set where the event log is missing, whatever the definition's own reason is: one of LOG_REASONS.
    std::optional<Reason> log = std::nullopt;
};

/// Counts open checks, which come bundle by bundle and in each tree by tree.
class OpenCounter {
public:
    explicit OpenCounter(const Definitions& definitions)
        : mReasons(definitions.reasons), mLogs(definitions.sources), mSources(mLogs + LOG_REASONS.size())
    {
        for (std::size_t place = 0; place < LOG_REASONS.size(); ++place) {
            mSources[mLogs + place].log = LOG_REASONS[place];
        }
    }

    void Add(std::int64_t bundle, std::int64_t tree, bool isUndecided, const Definition& definition)
    {
        if (bundle != mBundle || tree != mTree) {
            EndTree();
            mBundle = bundle;
            mTree = tree;
            mIsUndecided = isUndecided;
        }
        mOpen.push_back(&definition);
    }

    // Which source a check lacks is known when all checks of its tree are.
    void EndTree()
    {
        std::optional<std::size_t> missing;
        for (const Definition* definition : mOpen) {
            const auto& place = definition->missesLog;
            missing = place && (!missing || *place < *missing) ? place : missing;
        }
        for (const Definition* definition : mOpen) {
            Count(mReasons[definition->reason], *definition);
            Count(mSources[missing && definition->isOfLog ? mLogs + *missing : definition->source], *definition);
        }
        mOpen.clear();
    }

    const std::vector<OpenCount>& Reasons() const { return mReasons; }
    const std::vector<OpenCount>& Sources() const { return mSources; }

private:
    void Count(OpenCount& count, const Definition& definition) const
    {
        ++count.checks;
        const bool isNewBundle = count.lastBundle != mBundle;
        count.bundles += isNewBundle ? 1 : 0;
        count.undecidedTrees += mIsUndecided && (isNewBundle || count.lastTree != mTree) ? 1 : 0;
        count.lastBundle = mBundle;
        count.lastTree = mTree;
        count.example = definition.id;
    }

    std::vector<OpenCount> mReasons;
    /// Where those of LOG_REASONS begin, behind all others.
    std::size_t mLogs;
    std::vector<OpenCount> mSources;
    std::int64_t mBundle = NONE;
    std::int64_t mTree = NONE;
    bool mIsUndecided = false;
    std::vector<const Definition*> mOpen;
};

OpenCounter CountOpen(Questions& questions, const Definitions& definitions, std::uint64_t& checks)
{
    OpenCounter counter(definitions);
    questions.Ask("SELECT open_check.bundle, check_def.tree_def, ifnull((SELECT verdict = 'undecided' FROM tree "
                  "JOIN outcome_def ON outcome_def.id = tree.outcome_def WHERE tree.bundle = open_check.bundle "
                  "AND tree.tree_def = check_def.tree_def), 0), check_def.id FROM open_check CROSS JOIN check_def "
                  "ON check_def.id = open_check.check_def ORDER BY open_check.bundle, check_def.tree_def",
        [&](const Statement& row) {
            if (const Definition* const definition = definitions.Of(row.Integer(3))) {
                ++checks;
                counter.Add(row.Integer(0), row.Integer(1), row.Integer(2) != 0, *definition);
            }
        });
    counter.EndTree();
    return counter;
}

void FillReasons(Questions& questions, const std::vector<OpenCount>& counts, std::vector<OpenByReason>& reasons)
{
    for (const OpenCount& count : counts) {
        questions.Ask("SELECT \"check\", reason FROM check_def WHERE id = " + std::to_string(count.example),
            [&](const Statement& row) { reasons.push_back({row.Text(0), row.Text(1), count.checks, count.bundles}); });
    }
    std::stable_sort(reasons.begin(), reasons.end(),
        [](const OpenByReason& one, const OpenByReason& other) { return one.checks > other.checks; });
}

OpenBySource SourceOf(const OpenCount& count, const Statement& row)
{
    return {count.log.value_or(ReasonOf(row.Text(0))), count.log ? "" : row.Text(1), count.checks, count.bundles,
        count.undecidedTrees};
}

bool IsMore(const OpenCount& one, const OpenCount& other)
{
    return one.undecidedTrees != other.undecidedTrees ? one.undecidedTrees > other.undecidedTrees
                                                      : one.checks > other.checks;
}

void FillSources(Questions& questions, std::vector<OpenCount> counts, OpenChecks& open)
{
    std::erase_if(counts, [](const OpenCount& count) { return count.checks == 0; });
    std::stable_sort(counts.begin(), counts.end(), IsMore);
    for (std::size_t place = 0; place < counts.size(); ++place) {
        if (place >= OpenChecks::MOST) {
            ++open.sourcesInRest;
            open.checksInRest += counts[place].checks;
            continue;
        }
        questions.Ask("SELECT reason, detail FROM check_def WHERE id = " + std::to_string(counts[place].example),
            [&](const Statement& row) { open.bySource.push_back(SourceOf(counts[place], row)); });
    }
}

} // namespace

void ReadOpenFigures(Questions& questions, OpenChecks& open)
{
    const Definitions definitions = ReadDefinitions(questions);
    const OpenCounter counter = CountOpen(questions, definitions, open.checks);
    FillReasons(questions, counter.Reasons(), open.byReason);
    FillSources(questions, counter.Sources(), open);
}

} // namespace diagnosis
