#include "diagnosis/results_db/definition_tables.h"

#include <algorithm>
#include <initializer_list>

#include "diagnosis/sqlite/questions.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis::results_db {

namespace {

// The content of a row whose columns are read from the database, all but the first, which is its number: texts and whole
// numbers make the key that the functions below make of a record.
RowKey KeyOf(const Statement& row)
{
    RowKey key;
    for (int column = 1; column < row.ColumnCount(); ++column) {
        if (row.IsInteger(column)) {
            key.Number(row.Integer(column));
        } else {
            key.Text(row.Text(column));
        }
    }
    return key;
}

void Append(RowKey& key, const std::string& text)
{
    key.Text(text);
}

void Append(RowKey& key, std::int64_t number)
{
    key.Number(number);
}

template <typename... Values>
RowKey KeyFrom(const Values&... values)
{
    RowKey key;
    (Append(key, values), ...);
    return key;
}

void LoadRows(Questions& questions, const std::string& sql, Definitions& definitions)
{
    questions.Ask(sql, [&](const Statement& row) { definitions.Know(KeyOf(row), row.Integer(0)); });
}

/// Rows of a table that belong to causes, read along with these in the order of their numbers.
class PartsOfCauses {
public:
    PartsOfCauses(Questions& questions, const std::string& sql) : mQuestions(questions), mRows(questions.Prepare(sql))
    {
        Next();
    }

    /// Appends the rows of this cause to its key.
    void AppendTo(RowKey& key, std::int64_t cause)
    {
        for (; mIsThere && mRows->Integer(0) <= cause; Next()) {
            if (mRows->Integer(0) == cause) {
                for (int column = 1; column < mRows->ColumnCount(); ++column) {
                    key.Text(mRows->Text(column));
                }
            }
        }
    }

private:
    void Next() { mIsThere = mRows && mQuestions.Next(*mRows); }

    Questions& mQuestions;
    std::optional<Statement> mRows;
    bool mIsThere = false;
};

void LoadCauses(Questions& questions, Definitions& causes)
{
    PartsOfCauses members(questions, "SELECT cause_def, path FROM cut_set_member ORDER BY cause_def, place");
    PartsOfCauses repairs(questions, "SELECT cause_def, repair, extra, operation FROM repair ORDER BY cause_def, place");
    const auto know = [&](const Statement& row) {
        const std::int64_t id = row.Integer(0);
        RowKey key = KeyOf(row);
        members.AppendTo(key, id);
        repairs.AppendTo(key, id);
        causes.Know(key, id);
    };
    questions.Ask("SELECT id, tree_def, event, name, fault_description, suggestions, user_defined,"
        " (SELECT count(*) FROM cut_set_member WHERE cause_def = id) FROM cause_def ORDER BY id", know);
}

std::string Joined(std::vector<std::string> paths)
{
    std::sort(paths.begin(), paths.end());
    std::string text;
    for (const std::string& path : paths) {
        text += (text.empty() ? "" : " & ") + path;
    }
    return text;
}

} // namespace

DefinitionTables::DefinitionTables(Connection& database, StatementRunner& runner)
    : mRunner(runner),
      mAddRun(database.Prepare("INSERT INTO run VALUES (?, ?, ?)")),
      mAddTree(database.Prepare("INSERT INTO tree_def VALUES (?, ?, ?)")),
      mAddOutcome(database.Prepare("INSERT INTO outcome_def VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")),
      mAddCause(database.Prepare("INSERT INTO cause_def VALUES (?, ?, ?, ?, ?, ?, ?, ?)")),
      mAddMember(database.Prepare("INSERT INTO cut_set_member VALUES (?, ?, ?)")),
      mAddRepair(database.Prepare("INSERT INTO repair VALUES (?, ?, ?, ?, ?)")),
      mAddCheck(database.Prepare("INSERT INTO check_def VALUES (?, ?, ?, ?, ?, ?, ?, ?)")),
      mAddWarning(database.Prepare("INSERT INTO warning_def VALUES (?, ?, ?, ?, ?, ?, ?, ?)"))
{
    Load(database);
}

void DefinitionTables::Load(Connection& database)
{
    Questions questions(database);
    LoadRows(questions, "SELECT * FROM run", mRuns);
    LoadRows(questions, "SELECT * FROM tree_def", mTrees);
    LoadRows(questions, "SELECT * FROM outcome_def", mOutcomes);
    LoadRows(questions, "SELECT * FROM check_def", mChecks);
    LoadRows(questions, "SELECT * FROM warning_def", mWarnings);
    LoadCauses(questions, mCauses);
    mRunner.Note(questions.Problem());
}

std::int64_t DefinitionTables::Run(const std::string& engine, const std::string& ruleSet)
{
    return mRuns.Find(
        KeyFrom(engine, ruleSet), [&](std::int64_t id) { mRunner.Run(mAddRun, id, engine, ruleSet); });
}

std::int64_t DefinitionTables::Tree(const ResultTree& tree)
{
    return mTrees.Find(KeyFrom(tree.id, tree.version),
        [&](std::int64_t id) { mRunner.Run(mAddTree, id, tree.id, tree.version); });
}

std::int64_t DefinitionTables::Outcome(const ResultTree& tree)
{
    const ResultChecks& checks = tree.checks;
    const auto withColumns = [&](auto use) {
        return use(tree.verdict, tree.isFault, tree.isComplete, checks.total, checks.decided, checks.notApplicable,
            checks.notSelected, checks.notChecked, checks.noData, checks.error, tree.possibleCauses,
            tree.arePossibleCausesTruncated);
    };
    const RowKey key = withColumns([](const auto&... columns) { return KeyFrom(columns...); });
    return mOutcomes.Find(key, [&](std::int64_t id) {
        withColumns([&](const auto&... columns) { mRunner.Run(mAddOutcome, id, columns...); });
    });
}

std::int64_t DefinitionTables::Cause(std::int64_t tree, const ResultCause& cause)
{
    JsonWriter suggestions;
    suggestions.Texts(cause.suggestions);
    RowKey key = KeyFrom(tree, cause.id, cause.name, cause.faultDescription, suggestions.Line(), cause.userDefined,
        static_cast<std::int64_t>(cause.cutSet.size()));
    for (const std::string& path : cause.cutSet) {
        key.Text(path);
    }
    for (const ResultRepair& repair : cause.repairs) {
        key.Text(repair.id).Text(repair.extra).Text(repair.operation);
    }
    return mCauses.Find(key, [&](std::int64_t id) {
        mRunner.Run(mAddCause, id, tree, cause.id, cause.name, Joined(cause.cutSet), cause.faultDescription,
            suggestions.Line(), cause.userDefined);
        std::int64_t place = 0;
        for (const std::string& path : cause.cutSet) {
            mRunner.Run(mAddMember, id, place++, path);
        }
        place = 0;
        for (const ResultRepair& repair : cause.repairs) {
            mRunner.Run(mAddRepair, id, place++, repair.id, repair.extra, repair.operation);
        }
    });
}

std::int64_t DefinitionTables::OpenCheck(std::int64_t tree, const ResultOpenCheck& check)
{
    const auto restsOnDefault = static_cast<std::int64_t>(check.restsOnDefault);
    const RowKey key =
        KeyFrom(tree, check.event, check.rule, check.check, check.reason, check.detail, restsOnDefault);
    return mChecks.Find(key, [&](std::int64_t id) {
        mRunner.Run(mAddCheck, id, tree, check.event, check.rule, check.check, check.reason, check.detail,
            restsOnDefault);
    });
}

std::int64_t DefinitionTables::Warning(const ResultWarning& warning)
{
    const RowKey key = KeyFrom(warning.code, warning.message, warning.lint, warning.rule, warning.event, warning.file,
        warning.line);
    return mWarnings.Find(key, [&](std::int64_t id) {
        mRunner.Run(mAddWarning, id, warning.code, warning.message, warning.lint, warning.rule, warning.event,
            warning.file, warning.line);
    });
}

} // namespace diagnosis::results_db
