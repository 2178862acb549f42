#include "diagnosis/results_db/number_rows.h"

namespace diagnosis::results_db {

namespace {

// "text, text, text"
std::string Repeated(const std::string& text, std::size_t times)
{
    std::string list = text;
    for (std::size_t time = 1; time < times; ++time) {
        list += ", " + text;
    }
    return list;
}

} // namespace

NumberRows::NumberRows(Connection& database, StatementRunner& runner, const std::string& table, std::size_t columns)
    : mRunner(runner), mColumns(columns)
{
    const std::string row = "(" + Repeated("?", columns) + ")";
    const std::string insert = "INSERT OR IGNORE INTO " + table + " VALUES ";
    mAddMany = database.Prepare(insert + Repeated(row, AT_ONCE));
    mAddOne = database.Prepare(insert + row);
    mNumbers.reserve(columns * AT_ONCE);
}

void NumberRows::Flush()
{
    for (std::size_t row = 0; row < mNumbers.size(); row += mColumns) {
        mRunner.RunWith(mAddOne, mNumbers.data() + row, mColumns);
    }
    mNumbers.clear();
}

} // namespace diagnosis::results_db
