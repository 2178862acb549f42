#include "diagnosis/lint/sql/prepared_queries.h"

#include "diagnosis/lint/sql/derived_tables.h"

namespace diagnosis::lint {

namespace {

using rule_source::CommandRule;
using State = PreparedQuery::State;

// Tries only queries: preparing some statements, such as "pragma", already runs them.
bool IsQuery(const SqlPieces& pieces)
{
    for (const char* word : {"select", "with", "values"}) {
        if (IsKeyword(pieces.tokens.front(), word)) {
            return true;
        }
    }
    return false;
}

std::string WithLimit(std::string_view sql)
{
    const bool hasWhere = sql.find("where") != std::string_view::npos;
    return std::string(sql) + (hasWhere ? " and" : " where") + " occurrence_time >0";
}

// The tables of copied databases are unknown, but some queries are wrong whatever the tables are.
bool IsWrongOnAnyTables(const std::string& error)
{
    for (const char* text : {"syntax error", "incomplete input", "unrecognized token"}) {
        if (error.find(text) != std::string::npos) {
            return true;
        }
    }
    return false;
}

void ReadColumns(const Statement& statement, PreparedQuery& query)
{
    for (int column = 0; column < statement.ColumnCount(); ++column) {
        query.columns.push_back(statement.ColumnName(column));
    }
}

void NoteFailure(const Connection& database, PreparedQuery& query)
{
    const bool isLimited = !query.rule->referenceDefDb;
    if (!database.IsInterrupted() && (isLimited || IsWrongOnAnyTables(database.GetError()))) {
        query.state = State::FAILED;
        query.error = database.GetError();
    }
}

void PrepareOn(Connection& database, PreparedQuery& query)
{
    const std::string sql(query.rule->sql);
    const auto statement = database.Prepare(sql);
    if (!statement) {
        NoteFailure(database, query);
        return;
    }
    ReadColumns(*statement, query);
    query.state = statement->IsReadOnly() && !query.columns.empty() ? State::PREPARED : State::CHANGES;
    if (!query.rule->referenceDefDb && !database.Prepare(WithLimit(sql))) {
        query.limitedError = database.GetError();
    }
}

PreparedQuery Prepare(const CommandRule& rule, DerivedTables& tables)
{
    PreparedQuery query{&rule};
    const SqlPieces pieces = ReadSql(rule.sql);
    if (pieces.tokens.empty()) {
        query.state = State::FAILED;
        query.error = "there is no statement";
    } else if (!IsQuery(pieces)) {
        query.state = State::CHANGES;
    } else if (Connection* const database = tables.For(pieces.tokens)) {
        PrepareOn(*database, query);
    }
    return query;
}

} // namespace

const std::vector<PreparedQuery>& PreparedQueries::All()
{
    if (!mIsDone) {
        mIsDone = true;
        DerivedTables tables(mRules.commonPart);
        for (const CommandRule& rule : mRules.rules.commandRules) {
            if (rule.isKept && rule.sqlItem) {
                mQueries.push_back(Prepare(rule, tables));
            }
        }
        mCreated = tables.Created();
    }
    return mQueries;
}

std::string PreparedQueries::ErrorOfTable(const rule_source::ThresholdBean& bean)
{
    All(); // which creates the tables of most entries
    return mCreated.count(&bean) != 0 ? "" : DerivedTables::ErrorOf(bean);
}

} // namespace diagnosis::lint
