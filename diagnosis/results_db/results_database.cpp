#include "diagnosis/results_db/results_database.h"

#include <filesystem>
#include <fstream>
#include <string_view>

#include "diagnosis/results_db/schema.h"

namespace diagnosis::results_db {

namespace {

std::optional<std::int64_t> Number(Connection& database, const std::string& sql)
{
    auto statement = database.Prepare(sql);
    return statement && statement->Step() ? std::optional(statement->Integer(0)) : std::nullopt;
}

} // namespace

Failure DatabaseFailure(const std::string& path, const Connection& database)
{
    return {FailureCode::BAD_RESULTS, path + ": " + database.GetError()};
}

std::optional<Failure> CreateSchema(Connection& database, const std::string& path)
{
    const std::string numbers = "PRAGMA application_id = " + std::to_string(APPLICATION_ID) + "; PRAGMA user_version = "
        + std::to_string(SCHEMA_VERSION) + ";";
    return database.Execute(numbers + SCHEMA) ? std::nullopt : std::optional(DatabaseFailure(path, database));
}

std::optional<Failure> CheckSchema(Connection& database, const std::string& path)
{
    const auto application = Number(database, "PRAGMA application_id");
    const auto version = Number(database, "PRAGMA user_version");
    if (!application || !version) {
        return DatabaseFailure(path, database);
    }
    if (*application != APPLICATION_ID) {
        return Failure{FailureCode::BAD_RESULTS, path + ": is no results database"};
    }
    if (*version != SCHEMA_VERSION) {
        return Failure{FailureCode::BAD_RESULTS, path + ": is a results database of version " + std::to_string(*version)
            + ", and this command reads version " + std::to_string(SCHEMA_VERSION) + ": import the lines again"};
    }
    return std::nullopt;
}

std::optional<Failure> OpenResults(const std::string& path, Connection& database)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        return Failure{FailureCode::BAD_RESULTS, path + ": no such file"};
    }
    if (!database.Open(path, Connection::Mode::READ_ONLY)) {
        return DatabaseFailure(path, database);
    }
    return CheckSchema(database, path);
}

bool IsDatabaseFile(const std::string& path)
{
    static constexpr std::string_view MAGIC("SQLite format 3\0", 16);
    // Of a pipe the first bytes would be gone.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    std::string start(MAGIC.size(), '\0');
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    return file && start == MAGIC;
}

} // namespace diagnosis::results_db
