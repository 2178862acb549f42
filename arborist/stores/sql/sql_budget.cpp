#include "arborist/stores/sql/sql_budget.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

#include <sqlite3.h>

namespace FT::sql {
namespace {

// Size of the database file, or of the file whose name adds `suffix`; 0 if it doesn't exist.
std::uint64_t SizeOf(sqlite3* connection, const char* suffix)
{
    const char* const path = sqlite3_db_filename(connection, "main");
    const std::string name = std::string(path == nullptr ? "" : path) + suffix;
    std::error_code error;
    // SQLite's text is UTF-8, and said to be: on Windows other texts have the letters of the C locale.
    const auto size = std::filesystem::file_size(std::u8string(name.begin(), name.end()), error);
    return error ? 0 : size;
}

// A row takes dozens of bytes in the file. Joining it and comparing it with some hundred ids takes fewer steps than
// this allows for that many bytes.
SqlLimits LimitsForReading(sqlite3* connection)
{
    constexpr std::uint64_t LEAST_STEPS = 20'000'000;
    constexpr std::uint64_t STEPS_FOR_A_BYTE = 128;
    constexpr std::uint64_t LEAST_BYTES = 64 * 1024 * 1024;
    constexpr std::uint64_t BYTES_FOR_A_BYTE = 4;
    constexpr std::uint64_t MOST_BELIEVED = 1ULL << 36; // a file with holes may claim any size
    const std::uint64_t size = SizeOf(connection, "") + SizeOfWaitingChanges(connection);
    const std::uint64_t believed = std::min(size, MOST_BELIEVED);
    SqlLimits limits;
    limits.steps = LEAST_STEPS + STEPS_FOR_A_BYTE * believed;
    limits.rows = SIZE_MAX;
    limits.bytes = LEAST_BYTES + BYTES_FOR_A_BYTE * believed;
    return limits;
}

} // namespace

std::uint64_t SizeOfWaitingChanges(sqlite3* connection)
{
    return SizeOf(connection, "-wal");
}

void SqlBudget::SetLimits(const SqlLimits& limits)
{
    mLimits = limits;
    mConnection = nullptr;
}

void SqlBudget::LimitByFile(sqlite3* connection)
{
    mLimits = LimitsForReading(connection);
    mConnection = connection;
}

void SqlBudget::RemoveLimits()
{
    mLimits.reset();
    mConnection = nullptr;
}

bool SqlBudget::TakeSteps(std::uint64_t steps)
{
    mStepsLeft -= std::min(mStepsLeft, steps);
    if (mStepsLeft != 0) {
        return true;
    }
    const std::uint64_t taken = mLimits->steps;
    if (RaiseLimits()) {
        mStepsLeft = mLimits->steps - taken;
        return true;
    }
    if (IsLimitedByFile()) {
        mConnection = nullptr;
        mLimits->steps = 0; // later texts get none either: they would read the same tables
    }
    return false;
}

bool SqlBudget::AllowsBytes(std::uint64_t bytes)
{
    return !mLimits.has_value() || bytes <= mLimits->bytes || (RaiseLimits() && bytes <= mLimits->bytes);
}

// True if the limits are higher now because the file has grown.
bool SqlBudget::RaiseLimits()
{
    if (!IsLimitedByFile()) {
        return false;
    }
    const std::uint64_t steps = mLimits->steps;
    mLimits = LimitsForReading(mConnection);
    return mLimits->steps > steps;
}

} // namespace FT::sql
