#ifndef ARBORIST_DIAGNOSIS_LINT_SQL_PREPARED_QUERIES_H
#define ARBORIST_DIAGNOSIS_LINT_SQL_PREPARED_QUERIES_H

#include <string>
#include <vector>

#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::lint {

/// What SQLite says of the query of a command rule on the empty derived tables.
struct PreparedQuery {
    enum class State {
        UNKNOWN, ///< it was not prepared: it reads tables that can't be made, or copies of unknown databases
        FAILED, ///< it does not prepare, as `error` says
        CHANGES, ///< it is no query, or changes the database
        PREPARED,
    };

    const rule_source::CommandRule* rule = nullptr;
    State state = State::UNKNOWN;
    /// In the words of SQLite.
    std::string error = {};
    /// What it says of the query with a time limit behind it; empty where that prepares and where it gets none.
    std::string limitedError = {};
    /// The names of its columns.
    std::vector<std::string> columns = {};
};

/// Prepares the queries of all command rules when they are first asked for.
class PreparedQueries {
public:
    explicit PreparedQueries(const rule_source::RuleSet& rules) : mRules(rules) {}

    const std::vector<PreparedQuery>& All();

private:
    const rule_source::RuleSet& mRules;
    bool mIsDone = false;
    std::vector<PreparedQuery> mQueries;
};

} // namespace diagnosis::lint

#endif
