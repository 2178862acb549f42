#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_STATEMENT_RUNNER_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_STATEMENT_RUNNER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "diagnosis/sqlite/connection.h"

namespace diagnosis::results_db {

/// Runs prepared statements of one connection, and keeps the reason of the first that fails; nothing runs after that.
/// Values are bound, never put into the SQL.
class StatementRunner {
public:
    explicit StatementRunner(Connection& database) : mDatabase(database) {}

    /// Runs the statement with its parameters in order.
    template <typename... Values>
    void Run(std::optional<Statement>& statement, const Values&... values)
    {
        HasRow(statement, values...);
    }

    /// The same; true if the statement gives a row.
    template <typename... Values>
    bool HasRow(std::optional<Statement>& statement, const Values&... values)
    {
        if (!CanRun(statement)) {
            return false;
        }
        int parameter = 0;
        (Bind(*statement, ++parameter, values), ...);
        return Step(*statement);
    }

    /// Runs the statement with `count` numbers as its parameters.
    void RunWith(std::optional<Statement>& statement, const std::int64_t* numbers, std::size_t count)
    {
        if (!CanRun(statement)) {
            return;
        }
        for (std::size_t place = 0; place < count; ++place) {
            statement->Bind(static_cast<int>(place) + 1, numbers[place]);
        }
        Step(*statement);
    }

    /// Runs a statement that may leave its row out; true if it changed one.
    template <typename... Values>
    bool HasChanged(std::optional<Statement>& statement, const Values&... values)
    {
        Run(statement, values...);
        return mError.empty() && mDatabase.Changes() > 0;
    }

    /// Keeps `problem` as the reason of a failure, unless it is empty or there was one before.
    void Note(const std::string& problem) { mError = mError.empty() ? problem : mError; }

    /// The reason of the first failure; empty if there was none.
    const std::string& Error() const { return mError; }

private:
    bool CanRun(const std::optional<Statement>& statement)
    {
        if (!statement && mError.empty()) {
            mError = "lacks a table or a column of results";
        }
        return mError.empty();
    }

    // True if there is a row. Whether the statement failed is told by its reset.
    bool Step(Statement& statement)
    {
        const bool hasRow = statement.Step();
        if (!statement.Reset()) {
            mError = mDatabase.GetError();
        }
        return hasRow;
    }

    template <typename Value>
    static void Bind(Statement& statement, int parameter, const Value& value)
    {
        statement.Bind(parameter, value);
    }
    static void Bind(Statement& statement, int parameter, const std::optional<std::int64_t>& number)
    {
        if (number) {
            statement.Bind(parameter, *number);
        } else {
            statement.BindNull(parameter);
        }
    }

    Connection& mDatabase;
    std::string mError;
};

} // namespace diagnosis::results_db

#endif
