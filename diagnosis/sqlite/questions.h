#ifndef ARBORIST_DIAGNOSIS_SQLITE_QUESTIONS_H
#define ARBORIST_DIAGNOSIS_SQLITE_QUESTIONS_H

#include <optional>
#include <string>

#include "diagnosis/sqlite/connection.h"

namespace diagnosis {

/// Asks one database one question after the other. After one that fails all are left out.
class Questions {
public:
    explicit Questions(Connection& connection) : mConnection(connection) {}

    /// Calls `take(row)` for each row of the answer.
    template <typename Take>
    void Ask(const std::string& sql, Take take)
    {
        std::optional<Statement> statement = Prepare(sql);
        if (statement) {
            Ask(*statement, take);
        }
    }

    /// The same with a statement that has its parameters, and can be asked again.
    template <typename Take>
    void Ask(Statement& statement, Take take)
    {
        while (mProblem.empty() && statement.Step()) {
            take(statement);
        }
        Note();
        statement.Reset();
    }

    /// Nothing if this or an earlier question failed.
    std::optional<Statement> Prepare(const std::string& sql)
    {
        if (!mProblem.empty()) {
            return std::nullopt;
        }
        std::optional<Statement> statement = mConnection.Prepare(sql);
        Note();
        return statement;
    }

    /// The next row of a statement that is read beside others; false at the end or where one failed.
    bool Next(Statement& statement)
    {
        const bool isRow = mProblem.empty() && statement.Step();
        Note();
        return isRow;
    }

    /// Why the first one failed; empty if none did.
    const std::string& Problem() const { return mProblem; }

private:
    void Note()
    {
        if (mProblem.empty() && mConnection.HasError()) {
            mProblem = mConnection.GetError();
        }
    }

    Connection& mConnection;
    std::string mProblem;
};

} // namespace diagnosis

#endif
