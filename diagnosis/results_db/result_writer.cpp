#include "diagnosis/results_db/result_writer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string_view>

#include "diagnosis/results_db/local_moment.h"
#include "diagnosis/results_db/schema.h"
#include "diagnosis/sqlite/questions.h"

namespace diagnosis::results_db {

namespace {

using Trees = std::vector<std::shared_ptr<const ResultTree>>;

// The tables with rows of a bundle, evidence apart.
constexpr const char* TABLES_OF_BUNDLES[] = {"failure", "tree", "root_cause", "open_check", "warning", "repaired"};

// Stands for the run of a failed bundle whose rule set is not known.
constexpr std::int64_t NO_RULE_SET = 0;
// No number of a row.
constexpr std::int64_t NONE = 0;

std::size_t Seriousness(const std::string& verdict)
{
    constexpr std::array<std::string_view, 3> WORDS = {"fault", "undecided", "no_fault"};
    return static_cast<std::size_t>(std::find(WORDS.begin(), WORDS.end(), verdict) - WORDS.begin());
}

// A rule set may have several trees of one id and version, which are one row of a bundle: that of the most serious verdict,
// since the first one stays.
Trees MostSeriousFirst(Trees trees)
{
    std::stable_sort(trees.begin(), trees.end(), [](const auto& one, const auto& other) {
        return Seriousness(one->verdict) < Seriousness(other->verdict);
    });
    return trees;
}

} // namespace

ResultWriter::ResultWriter(Connection& database, bool withEvidence)
    : mRunner(database),
      mDefinitions(database, mRunner),
      mAddBundle(database.Prepare("INSERT OR IGNORE INTO bundle VALUES (?, ?, ?, ?, ?, ?, ?)")),
      mAddFailure(database.Prepare("INSERT INTO failure VALUES (?, ?, ?, ?)")),
      mAddRepaired(database.Prepare("INSERT INTO repaired VALUES (?, ?, ?, ?)")),
      mTrees(database, mRunner, "tree", 3),
      mCauses(database, mRunner, "root_cause", 2),
      mOpenChecks(database, mRunner, "open_check", 2),
      mWarnings(database, mRunner, "warning", 2),
      mFindUndated(database.Prepare("SELECT 1 FROM bundle WHERE name = ? AND ok = 1 AND run = ? AND now IS NULL")),
      mFindInRun(database.Prepare("SELECT 1 FROM bundle WHERE name = ? AND ok = 1 AND run = ?")),
      mFindInAnyRun(database.Prepare("SELECT 1 FROM bundle WHERE name = ? AND ok = 1")),
      mFindFailure(database.Prepare("SELECT 1 FROM failure JOIN bundle ON bundle.id = failure.bundle WHERE bundle.id = ?"
          " AND code = ? AND message = ? AND retry = ? AND run = ? AND now IS ?"))
{
    if (withEvidence && database.Execute(EVIDENCE_SCHEMA)) {
        mAddEvidence = database.Prepare("INSERT INTO evidence VALUES (?, ?, ?, ?, ?)");
    }
    for (const std::string table : TABLES_OF_BUNDLES) {
        mRemove.push_back(database.Prepare("DELETE FROM " + table + " WHERE bundle = ?"));
    }
    mRemove.push_back(database.Prepare("DELETE FROM bundle WHERE id = ?"));
    Load(database);
}

void ResultWriter::Load(Connection& database)
{
    Questions questions(database);
    questions.Ask("SELECT max(id) FROM bundle", [this](const Statement& last) { mLastBundle = last.Integer(0); });
    // A cross join keeps the order: failures are few, bundles may be many.
    questions.Ask("SELECT name, iif(rule_set = '', 0, run), bundle.id FROM failure CROSS JOIN bundle"
        " ON bundle.id = failure.bundle JOIN run ON run.id = bundle.run",
        [this](const Statement& failed) { mFailed[{failed.Text(0), failed.Integer(1)}] = failed.Integer(2); });
    mRunner.Note(questions.Problem());
}

Added ResultWriter::Add(const ResultLine& line)
{
    const std::int64_t run = mDefinitions.Run(line.engine, line.ruleSet);
    const Added added = line.ok ? AddDiagnosed(line, run) : AddFailed(line, run);
    return Error().empty() ? added : Added::FAILED;
}

bool ResultWriter::Finish()
{
    for (NumberRows* const rows : {&mTrees, &mCauses, &mOpenChecks, &mWarnings}) {
        rows->Flush();
    }
    return Error().empty();
}

Added ResultWriter::AddDiagnosed(const ResultLine& line, std::int64_t run)
{
    // The index of bundles refuses what is there, but for lines without moment.
    if (line.now.empty() && mRunner.HasRow(mFindUndated, line.bundle, run)) {
        return Added::THERE;
    }
    const std::int64_t bundle = AddBundle(line, run);
    if (bundle == NONE) {
        return Added::THERE;
    }
    const bool hadFailed = RemoveFailed(mFailed.find({line.bundle, run}));
    const bool hadFailedEarly = RemoveFailed(mFailed.find({line.bundle, NO_RULE_SET}));
    AddTrees(bundle, line);
    AddWarnings(bundle, line);
    AddRepaired(bundle, line);
    AddEvidence(bundle, line);
    return hadFailed || hadFailedEarly ? Added::REPLACED : Added::NEW;
}

Added ResultWriter::AddFailed(const ResultLine& line, std::int64_t run)
{
    const FailedKey key{line.bundle, line.ruleSet.empty() ? NO_RULE_SET : run};
    if (key.second == NO_RULE_SET ? mRunner.HasRow(mFindInAnyRun, line.bundle)
                                  : mRunner.HasRow(mFindInRun, line.bundle, run)) {
        return Added::THERE;
    }
    const auto before = FailedBefore(key);
    const ResultError& error = line.error;
    if (before != mFailed.end()
        && mRunner.HasRow(
            mFindFailure, before->second, error.code, error.message, error.retry, run, LocalMoment(line.now))) {
        return Added::THERE;
    }
    const bool isReplaced = RemoveFailed(before);
    const std::int64_t bundle = AddBundle(line, run);
    if (bundle == NONE) {
        return Added::THERE;
    }
    mRunner.Run(mAddFailure, bundle, error.code, error.message, error.retry);
    AddWarnings(bundle, line);
    AddRepaired(bundle, line);
    mFailed[key] = bundle;
    return isReplaced ? Added::REPLACED : Added::NEW;
}

// The line that a failed one takes the place of: of the same run, of no known rule set, or any if its own is not known.
ResultWriter::Failed::iterator ResultWriter::FailedBefore(const FailedKey& key)
{
    if (const auto same = mFailed.find(key); same != mFailed.end()) {
        return same;
    }
    const auto first = mFailed.lower_bound({key.first, NO_RULE_SET});
    const bool isOfBundle = first != mFailed.end() && first->first.first == key.first;
    const bool fits = key.second == NO_RULE_SET || (isOfBundle && first->first.second == NO_RULE_SET);
    return isOfBundle && fits ? first : mFailed.end();
}

// False if there is none at this place.
bool ResultWriter::RemoveFailed(Failed::iterator place)
{
    if (place == mFailed.end()) {
        return false;
    }
    // Of all rows that are written late, a bundle that failed has these.
    mWarnings.Flush();
    for (auto& statement : mRemove) {
        mRunner.Run(statement, place->second);
    }
    mFailed.erase(place);
    return true;
}

// The number of the bundle, NONE if it is there already.
std::int64_t ResultWriter::AddBundle(const ResultLine& line, std::int64_t run)
{
    const std::int64_t microseconds = std::llround(line.seconds * 1e6);
    const bool isNew = mRunner.HasChanged(
        mAddBundle, mLastBundle + 1, run, line.bundle, LocalMoment(line.now), line.ok, microseconds, line.device);
    return isNew ? ++mLastBundle : NONE;
}

void ResultWriter::AddWarnings(std::int64_t bundle, const ResultLine& line)
{
    for (const auto& warning : line.warnings) {
        mWarnings.Add({bundle, mWarningRows.Find(warning, [&] { return mDefinitions.Warning(*warning); })});
    }
}

void ResultWriter::AddTrees(std::int64_t bundle, const ResultLine& line)
{
    for (const auto& tree : MostSeriousFirst(line.trees)) {
        const TreeRows& rows = RowsOf(tree);
        mTrees.Add({bundle, rows.treeDef, rows.outcome});
        for (const std::int64_t cause : rows.causes) {
            mCauses.Add({bundle, cause});
        }
        for (const std::int64_t check : rows.open) {
            mOpenChecks.Add({bundle, check});
        }
    }
}

void ResultWriter::AddRepaired(std::int64_t bundle, const ResultLine& line)
{
    std::int64_t place = 0;
    for (const ResultRepaired& repaired : line.repaired) {
        mRunner.Run(mAddRepaired, bundle, place++, repaired.id, LocalMoment(repaired.date));
    }
}

void ResultWriter::AddEvidence(std::int64_t bundle, const ResultLine& line)
{
    std::map<std::string, std::int64_t> treeOf;
    for (const auto& tree : line.trees) {
        if (!line.evidence.empty()) {
            treeOf[tree->id] = RowsOf(tree).treeDef;
        }
    }
    std::int64_t place = 0;
    for (const ResultEvidence& evidence : line.evidence) {
        mRunner.Run(mAddEvidence, bundle, place++, treeOf[evidence.treeId], evidence.event, evidence.json);
    }
}

const ResultWriter::TreeRows& ResultWriter::RowsOf(const std::shared_ptr<const ResultTree>& tree)
{
    return mTreeRows.Find(tree, [&] {
        TreeRows rows{mDefinitions.Tree(*tree), mDefinitions.Outcome(*tree), {}, {}};
        for (const ResultCause& cause : tree->causes) {
            rows.causes.push_back(mDefinitions.Cause(rows.treeDef, cause));
        }
        for (const ResultOpenCheck& check : tree->open) {
            rows.open.push_back(mDefinitions.OpenCheck(rows.treeDef, check));
        }
        return rows;
    });
}

} // namespace diagnosis::results_db
