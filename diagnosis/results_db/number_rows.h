#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_NUMBER_ROWS_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_NUMBER_ROWS_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/results_db/statement_runner.h"

namespace diagnosis::results_db {

/// Adds rows of whole numbers to a table, many with one run of a statement, as a run costs more than a row does. A row
/// whose key is there already is left out.
///
/// The last rows are in the table after Flush. Failures stay with the runner.
class NumberRows {
public:
    NumberRows(Connection& database, StatementRunner& runner, const std::string& table, std::size_t columns);

    void Add(std::initializer_list<std::int64_t> row)
    {
        mNumbers.insert(mNumbers.end(), row);
        if (mNumbers.size() == mColumns * AT_ONCE) {
            mRunner.RunWith(mAddMany, mNumbers.data(), mNumbers.size());
            mNumbers.clear();
        }
    }
    void Flush();

private:
    static constexpr std::size_t AT_ONCE = 64;

    StatementRunner& mRunner;
    std::size_t mColumns;
    std::optional<Statement> mAddMany;
    std::optional<Statement> mAddOne;
    std::vector<std::int64_t> mNumbers;
};

} // namespace diagnosis::results_db

#endif
