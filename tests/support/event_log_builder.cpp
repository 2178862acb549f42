#include "tests/support/event_log_builder.h"

#include <filesystem>
#include <map>
#include <utility>

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace {

constexpr char SCHEMA[] =
    "CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
    "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id integer);"
    "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);";

std::string Quoted(const std::string& text)
{
    std::string quoted = "'";
    for (const char character : text) {
        quoted += character == '\'' ? "''" : std::string(1, character);
    }
    return quoted + "'";
}

} // namespace

EventLogBuilder& EventLogBuilder::Row(LoggedRow row)
{
    mRows.push_back(std::move(row));
    return *this;
}

EventLogBuilder& EventLogBuilder::Rows(const std::vector<LoggedRow>& rows)
{
    mRows.insert(mRows.end(), rows.begin(), rows.end());
    return *this;
}

EventLogBuilder& EventLogBuilder::Sql(const std::string& sql)
{
    mStatements.push_back(sql);
    return *this;
}

EventLogBuilder& EventLogBuilder::Schema(const std::string& sql)
{
    mSchema = sql;
    return *this;
}

void EventLogBuilder::WriteTo(const std::string& path) const
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::filesystem::remove(path);
    std::string sql = "BEGIN;" + (mSchema.empty() ? std::string(SCHEMA) : mSchema);
    std::map<std::string, std::size_t> versions;
    std::size_t number = 0;
    for (const LoggedRow& row : mRows) {
        const auto [version, isNew] = versions.emplace(row.version, versions.size() + 1);
        const std::string versionId = std::to_string(version->second);
        if (isNew) {
            sql += "INSERT INTO event_version VALUES (" + versionId + ", " + Quoted(row.version) + ");";
        }
        const std::string id = std::to_string(++number);
        sql += "INSERT INTO event_info VALUES (" + id + ", " + std::to_string(row.event) + ", " + Quoted(row.extra) +
            ", " + versionId + ");";
        sql += "INSERT INTO event_info_flow VALUES (" + id + ", " + id + ", " + std::to_string(row.time) + ");";
    }
    for (const std::string& statement : mStatements) {
        sql += statement + ";";
    }
    Run(path, sql + "COMMIT;");
}

void EventLogBuilder::Run(const std::string& path, const std::string& sql)
{
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &connection), SQLITE_OK) << path;
    const int result = sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr);
    EXPECT_EQ(result, SQLITE_OK) << sqlite3_errmsg(connection);
    sqlite3_close(connection);
}

void EventLogBuilder::RunIntoWal(const std::string& path, const std::string& sql)
{
    // Closing the connection would move the changes into the file, so the files are copied while it is open and
    // restored afterwards.
    sqlite3* service = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &service), SQLITE_OK) << path;
    const int result = sqlite3_exec(service, ("PRAGMA journal_mode = WAL;" + sql).c_str(), nullptr, nullptr, nullptr);
    EXPECT_EQ(result, SQLITE_OK) << sqlite3_errmsg(service);
    const std::string wal = path + "-wal";
    for (const std::string& file : {path, wal}) {
        std::filesystem::copy_file(file, file + ".taken");
    }
    sqlite3_close(service);
    for (const std::string& file : {path, wal}) {
        std::filesystem::rename(file + ".taken", file);
    }
}
