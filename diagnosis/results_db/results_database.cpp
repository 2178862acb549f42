#include "diagnosis/results_db/results_database.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <string_view>
#include <thread>

#include "diagnosis/results_db/schema.h"
#include "diagnosis/sqlite/questions.h"

namespace diagnosis::results_db {

namespace {

std::optional<std::int64_t> Number(Connection& database, const std::string& sql)
{
    auto statement = database.Prepare(sql);
    return statement && statement->Step() ? std::optional(statement->Integer(0)) : std::nullopt;
}

// The statement of each table, view, index and trigger, by "table NAME"; an index that SQLite makes itself has none.
using Schema = std::map<std::string, std::string>;

Schema ReadSchema(Questions& questions)
{
    Schema schema;
    questions.Ask("SELECT type || ' ' || name, ifnull(sql, '') FROM sqlite_master",
        [&schema](const Statement& row) { schema[row.Text(0)] = row.Text(1); });
    return schema;
}

// What CreateSchema makes, with the table of evidence or without it.
Schema ExpectedSchema(bool withEvidence)
{
    Connection database;
    Questions questions(database);
    const bool isMade = database.OpenInMemory() && database.Execute(SCHEMA)
        && (!withEvidence || database.Execute(EVIDENCE_SCHEMA));
    return isMade ? ReadSchema(questions) : Schema();
}

// Whether a statement makes a table, a view or an index that our statements neither ask nor run: an index of columns alone,
// without a condition and without an expression, whose functions would run with each row.
bool IsHarmless(std::string_view sql)
{
    const bool isIndex = sql.starts_with("CREATE INDEX ") && std::count(sql.begin(), sql.end(), '(') == 1
        && sql.find(')') == sql.size() - 1;
    return isIndex || sql.starts_with("CREATE TABLE ") || sql.starts_with("CREATE VIEW ");
}

// What the schema has or lacks that it must not; empty if nothing.
std::string ProblemOf(const Schema& schema)
{
    const Schema expected = ExpectedSchema(schema.contains("table evidence"));
    if (expected.empty()) {
        return "can't be compared with the tables of results: out of memory";
    }
    for (const auto& [what, sql] : expected) {
        const auto found = schema.find(what);
        if (found == schema.end()) {
            return "lacks the " + what;
        }
        if (found->second != sql) {
            return "has another " + what + " than a results database";
        }
    }
    for (const auto& [what, sql] : schema) {
        if (!expected.contains(what) && !sql.empty() && !IsHarmless(sql)) {
            return "has the " + what + ", which an import would run";
        }
    }
    return "";
}

} // namespace

bool WaitForOthers(int tries)
{
    static constexpr std::chrono::milliseconds PAUSE(20);
    static constexpr int MOST_TRIES = 60'000 / 20;
    std::this_thread::sleep_for(PAUSE);
    return tries < MOST_TRIES;
}

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
    Questions questions(database);
    const Schema schema = ReadSchema(questions);
    const std::string problem = questions.Problem().empty() ? ProblemOf(schema) : questions.Problem();
    return problem.empty() ? std::nullopt : std::optional(Failure{FailureCode::BAD_RESULTS, path + ": " + problem});
}

std::optional<Failure> OpenResults(
    const std::string& path, ReadOnlyDatabase& database, const std::function<bool(int tries)>& tryAgain)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        return Failure{FailureCode::BAD_RESULTS, path + ": no such file"};
    }
    if (auto failure = database.Open(path, FailureCode::BAD_RESULTS)) {
        return failure;
    }
    database.Get().WhileLocked(tryAgain);
    return database.Get().Execute("BEGIN") ? CheckSchema(database.Get(), path)
                                           : std::optional(DatabaseFailure(path, database.Get()));
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
