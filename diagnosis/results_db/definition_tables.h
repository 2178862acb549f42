#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_DEFINITION_TABLES_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_DEFINITION_TABLES_H

#include <cstdint>
#include <optional>
#include <string>

#include "diagnosis/results_db/definitions.h"
#include "diagnosis/results_db/result_line.h"
#include "diagnosis/results_db/statement_runner.h"

namespace diagnosis::results_db {

/// The tables run, tree_def, outcome_def, cause_def with cut_set_member and repair, check_def and warning_def. Each
/// function gives the number of a row, which is added if the table has none like it.
///
/// Reads all rows when it is made; failures stay with the runner.
class DefinitionTables {
public:
    DefinitionTables(Connection& database, StatementRunner& runner);

    std::int64_t Run(const std::string& engine, const std::string& ruleSet);
    std::int64_t Tree(const ResultTree& tree);
    std::int64_t Outcome(const ResultTree& tree);
    std::int64_t Cause(std::int64_t tree, const ResultCause& cause);
    std::int64_t OpenCheck(std::int64_t tree, const ResultOpenCheck& check);
    std::int64_t Warning(const ResultWarning& warning);

private:
    void Load(Connection& database);

    StatementRunner& mRunner;
    std::optional<Statement> mAddRun;
    std::optional<Statement> mAddTree;
    std::optional<Statement> mAddOutcome;
    std::optional<Statement> mAddCause;
    std::optional<Statement> mAddMember;
    std::optional<Statement> mAddRepair;
    std::optional<Statement> mAddCheck;
    std::optional<Statement> mAddWarning;
    Definitions mRuns;
    Definitions mTrees;
    Definitions mOutcomes;
    Definitions mCauses;
    Definitions mChecks;
    Definitions mWarnings;
};

} // namespace diagnosis::results_db

#endif
