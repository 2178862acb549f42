#ifndef ARBORIST_DIAGNOSIS_LINT_SQL_PREPARED_QUERIES_H
#define ARBORIST_DIAGNOSIS_LINT_SQL_PREPARED_QUERIES_H

#include <set>
#include <string>
#include <vector>

#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::lint {

/// The result of preparing the query of a command rule on the empty derived tables.
struct PreparedQuery {
    enum class State {
        UNKNOWN, ///< not prepared: it reads tables that can't be created, or copies of unknown databases
        FAILED, ///< can't be prepared; `error` says why
        CHANGES, ///< no query, or one that changes the database
        PREPARED,
    };

    const rule_source::CommandRule* rule = nullptr;
    State state = State::UNKNOWN;
    /// SQLite's message.
    std::string error = {};
    /// SQLite's message for the query with the time limit added; empty if that can be prepared, or if it gets no limit.
    std::string limitedError = {};
    /// The names of its columns.
    std::vector<std::string> columns = {};
};

/// Prepares the queries of all command rules at the first call.
class PreparedQueries {
public:
    explicit PreparedQueries(const rule_source::RuleSet& rules) : mRules(rules) {}

    const std::vector<PreparedQuery>& All();

    /// SQLite's message if the derived table of an entry can't be created; otherwise empty.
    std::string ErrorOfTable(const rule_source::ThresholdBean& bean);

private:
    const rule_source::RuleSet& mRules;
    bool mIsDone = false;
    std::vector<PreparedQuery> mQueries;
    /// The entries whose tables were created for queries.
    std::set<const rule_source::ThresholdBean*> mCreated;
};

} // namespace diagnosis::lint

#endif
