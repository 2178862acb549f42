#include "diagnosis/results_db/diff_side.h"

#include <algorithm>

namespace diagnosis::results_db {

namespace {

template <typename Value>
void SortUnique(std::vector<Value>& values)
{
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
}

TreeVerdict VerdictOf(const std::string& word)
{
    for (const TreeVerdict verdict : {TreeVerdict::FAULT, TreeVerdict::UNDECIDED, TreeVerdict::NO_FAULT}) {
        if (word == VerdictWord(verdict)) {
            return verdict;
        }
    }
    return TreeVerdict::NOT_APPLICABLE;
}

// Passes what `values` has for the first column of each row of a statement whose only parameter is `id`. A row that refers
// to nothing, as in a damaged database, is passed over.
template <typename Values, typename Take>
void ForEachOf(Questions& questions, Statement& statement, std::int64_t id, const Values& values, Take take)
{
    statement.Bind(1, id);
    questions.Ask(statement, [&](const Statement& row) {
        if (const auto value = values.find(row.Integer(0)); value != values.end()) {
            take(value->second, row);
        }
    });
}

} // namespace

DiffCatalogue::Number DiffCatalogue::Tree(const std::string& id)
{
    return mTrees.Find(RowKey().Text(id), [&](Number) { mTreeIds.push_back(id); });
}

DiffCatalogue::Number DiffCatalogue::Event(const std::string& id)
{
    return mEvents.Find(RowKey().Text(id), [](Number) {});
}

std::vector<DiffCatalogue::Number> DiffCatalogue::EventsOf(const std::vector<std::string>& cutSet)
{
    std::vector<Number> events;
    for (const std::string& path : cutSet) {
        for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
            end = path.find('/', start);
            events.push_back(Event(path.substr(start, end - start)));
        }
    }
    SortUnique(events);
    return events;
}

DiffCatalogue::Number DiffCatalogue::AddCause(
    const std::string& tree, std::vector<std::string> cutSet, const std::string& id, const std::string& name)
{
    SortUnique(cutSet);
    RowKey key;
    key.Text(tree);
    for (const std::string& path : cutSet) {
        key.Text(path);
    }
    const Number number = mCauseNumbers.Find(key, [&](Number) {
        mCauses.push_back({tree, cutSet, "", "", EventsOf(cutSet), Tree(tree)});
        mNamedBy.push_back(0);
    });
    Cause& cause = mCauses[Place(number)];
    int& namedBy = mNamedBy[Place(number)];
    if (namedBy != mSide || std::pair(id, name) < std::pair(cause.id, cause.name)) {
        cause.id = id;
        cause.name = name;
        namedBy = mSide;
    }
    return number;
}

DiffCatalogue::Number DiffCatalogue::AddCheck(const Check& check)
{
    const RowKey key = RowKey().Text(check.tree).Text(check.event).Text(check.rule).Text(check.reason);
    return mCheckNumbers.Find(key, [&](Number) {
        mChecks.push_back(check);
        mChecks.back().treeNumber = Tree(check.tree);
        mChecks.back().eventNumber = Event(check.event);
        mChecks.back().mayBeAnywhere = check.event.find('/') != std::string::npos;
    });
}

void DiffCatalogue::BeginLaterSide()
{
    ++mSide;
}

DiffSide::DiffSide(Questions& questions, DiffCatalogue& catalogue)
    : mQuestions(questions),
      // A line without moment, and one that failed, come last.
      mBundles(questions.Prepare("SELECT name, id, ok, ifnull(datetime(now, 'unixepoch'), ''), microseconds / 1e6"
          " FROM bundle ORDER BY name, now DESC, ok DESC")),
      mFindTrees(questions.Prepare("SELECT tree_def, outcome_def FROM tree WHERE bundle = ?")),
      mFindCauses(questions.Prepare("SELECT cause_def FROM root_cause WHERE bundle = ?")),
      mFindChecks(questions.Prepare("SELECT check_def FROM open_check WHERE bundle = ?"))
{
    LoadTrees(catalogue);
    LoadCauses(catalogue);
    LoadChecks(catalogue);
    mHasRow = NextRow();
}

void DiffSide::LoadTrees(DiffCatalogue& catalogue)
{
    mQuestions.Ask("SELECT id, tree FROM tree_def",
        [&](const Statement& row) { mTrees[row.Integer(0)] = catalogue.Tree(row.Text(1)); });
    mQuestions.Ask("SELECT id, verdict FROM outcome_def",
        [&](const Statement& row) { mOutcomes[row.Integer(0)] = VerdictOf(row.Text(1)); });
}

void DiffSide::LoadCauses(DiffCatalogue& catalogue)
{
    auto members = mQuestions.Prepare("SELECT cause_def, path FROM cut_set_member ORDER BY cause_def");
    bool hasMember = members && mQuestions.Next(*members);
    const auto addCause = [&](const Statement& cause) {
        std::vector<std::string> cutSet;
        for (; hasMember && members->Integer(0) <= cause.Integer(0); hasMember = mQuestions.Next(*members)) {
            if (members->Integer(0) == cause.Integer(0)) {
                cutSet.push_back(members->Text(1));
            }
        }
        mCauses[cause.Integer(0)] = catalogue.AddCause(cause.Text(1), std::move(cutSet), cause.Text(2), cause.Text(3));
    };
    mQuestions.Ask("SELECT cause_def.id, tree, event, name FROM cause_def JOIN tree_def"
        " ON tree_def.id = tree_def ORDER BY cause_def.id", addCause);
}

void DiffSide::LoadChecks(DiffCatalogue& catalogue)
{
    const auto addCheck = [&](const Statement& row) {
        DiffCatalogue::Check check;
        check.tree = row.Text(1);
        check.event = row.Text(2);
        check.rule = row.Text(3);
        check.reason = row.Text(4);
        mChecks[row.Integer(0)] = catalogue.AddCheck(check);
    };
    mQuestions.Ask("SELECT check_def.id, tree, event, rule, reason FROM check_def JOIN tree_def ON tree_def.id = tree_def",
        addCheck);
}

bool DiffSide::Next()
{
    mLines.clear();
    if (!mHasRow) {
        return false;
    }
    for (mBundle = mBundles->Text(0); mHasRow && mBundles->Text(0) == mBundle; mHasRow = NextRow()) {
        mLines.push_back({mBundles->Integer(1), mBundles->Integer(2) != 0, mBundles->Text(3), mBundles->Real(4)});
    }
    return true;
}

DiffLine DiffSide::Read(const Line& line)
{
    DiffLine read;
    ForEachOf(mQuestions, *mFindTrees, line.id, mTrees, [&](DiffCatalogue::Number tree, const Statement& row) {
        const auto outcome = mOutcomes.find(row.Integer(1));
        read.trees.emplace_back(tree, outcome == mOutcomes.end() ? TreeVerdict::UNDECIDED : outcome->second);
    });
    ForEachOf(mQuestions, *mFindCauses, line.id, mCauses,
        [&read](DiffCatalogue::Number cause, const Statement&) { read.causes.push_back(cause); });
    ForEachOf(mQuestions, *mFindChecks, line.id, mChecks,
        [&read](DiffCatalogue::Number check, const Statement&) { read.checks.push_back(check); });
    // Of several versions of a tree in one line the most serious verdict counts, which is the first in order.
    std::sort(read.trees.begin(), read.trees.end());
    const auto isSameTree = [](const auto& one, const auto& other) { return one.first == other.first; };
    read.trees.erase(std::unique(read.trees.begin(), read.trees.end(), isSameTree), read.trees.end());
    SortUnique(read.causes);
    SortUnique(read.checks);
    return read;
}

} // namespace diagnosis::results_db
