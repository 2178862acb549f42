#ifndef ARBORIST_STORES_SQL_SQL_BUDGET_H
#define ARBORIST_STORES_SQL_SQL_BUDGET_H

#include <cstddef>
#include <cstdint>
#include <optional>

struct sqlite3;

namespace FT::sql {

/// Limits beyond which statements are interrupted.
struct SqlLimits {
    /// Steps of SQLite's virtual machine for one SQL text: about half a minute.
    std::uint64_t steps = 5'000'000'000;
    /// Limits on the rows that a SqlOperator keeps, and on the bytes of all their texts.
    std::size_t rows = 100'000;
    std::uint64_t bytes = 256 * 1024 * 1024;
    /// Limit on the files in which SQLite sorts and joins what doesn't fit into memory, together.
    std::uint64_t temporaryBytes = 1024 * 1024 * 1024;
};

/// What the SQL texts on a connection may take, each by itself. At first nothing is limited.
class SqlBudget {
public:
    void SetLimits(const SqlLimits& limits);
    /// Derives the limits from the size of the connection's file, also later, when the file has grown. After one SQL text
    /// has taken all steps, those that follow get none.
    void LimitByFile(sqlite3* connection);
    void RemoveLimits();

    const std::optional<SqlLimits>& GetLimits() const { return mLimits; }
    bool IsLimitedByFile() const { return mConnection != nullptr; }

    /// Call before each SQL text is run.
    void StartText() { mStepsLeft = mLimits.has_value() ? mLimits->steps : 0; }
    /// False if the text has taken all its steps. Requires limits.
    bool TakeSteps(std::uint64_t steps);
    /// True if the last SQL text was interrupted for taking too many steps.
    bool HasTakenAllSteps() const { return mLimits.has_value() && mStepsLeft == 0; }
    /// True if the rows of one SQL text may take this many bytes.
    bool AllowsBytes(std::uint64_t bytes);

private:
    bool RaiseLimits();

    std::optional<SqlLimits> mLimits;
    std::uint64_t mStepsLeft = 0;
    sqlite3* mConnection = nullptr; // null unless the limits are those of its file
};

/// The size of the write-ahead log of the connection's file; 0 if there is none.
std::uint64_t SizeOfWaitingChanges(sqlite3* connection);

} // namespace FT::sql

#endif
