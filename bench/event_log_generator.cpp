#include "bench/event_log_generator.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>

#include <sqlite3.h>

namespace {

void Check(bool isDone, sqlite3* connection)
{
    if (!isDone) {
        std::cerr << "event log: " << sqlite3_errmsg(connection) << '\n';
        std::exit(1);
    }
}

sqlite3_stmt* Prepare(sqlite3* connection, const char* sql)
{
    sqlite3_stmt* statement = nullptr;
    Check(sqlite3_prepare_v2(connection, sql, -1, &statement, nullptr) == SQLITE_OK, connection);
    return statement;
}

void Run(sqlite3* connection, const char* sql)
{
    Check(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr) == SQLITE_OK, connection);
}

std::string Extra(std::mt19937& random)
{
    std::string text = "{\"module\":\"module_" + std::to_string(random() % 40) +
        "\",\"pid\":" + std::to_string(random() % 1000000) + ",\"level\":" + std::to_string(random() % 5) +
        ",\"temp\":" + std::to_string(20 + random() % 80);
    if (random() % 3 == 0) {
        text += ",\"COUNT\":" + std::to_string(1 + random() % 9);
    }
    return text + "}";
}

} // namespace

void GenerateEventLog(const std::string& path, const EventLogShape& shape)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::filesystem::remove(path);
    sqlite3* connection = nullptr;
    Check(sqlite3_open(path.c_str(), &connection) == SQLITE_OK, connection);
    Run(connection, "PRAGMA synchronous=0; PRAGMA journal_mode=off; BEGIN;"
        "CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
        "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id integer);"
        "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);"
        "INSERT INTO event_version VALUES (1, '2.1.0'), (2, '2.0.7'), (3, '')");
    sqlite3_stmt* const info = Prepare(connection, "INSERT INTO event_info VALUES (?, ?, ?, ?)");
    sqlite3_stmt* const flow = Prepare(connection, "INSERT INTO event_info_flow VALUES (?1, ?1, ?2)");
    std::mt19937 random(1);
    const std::int64_t span = std::int64_t{shape.days} * 86400;
    for (std::int64_t row = 1; row <= shape.rows; ++row) {
        const auto number = static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(shape.ids));
        const std::string extra = Extra(random);
        const unsigned int version = static_cast<unsigned int>(random() % 8);
        sqlite3_bind_int64(info, 1, row);
        sqlite3_bind_int(info, 2, FirstIdOfBlock(number / 1000) + number % 1000);
        sqlite3_bind_text(info, 3, extra.c_str(), static_cast<int>(extra.size()), SQLITE_STATIC);
        sqlite3_bind_int(info, 4, version < 6 ? 1 : version == 6 ? 2 : 3);
        sqlite3_bind_int64(flow, 1, row);
        sqlite3_bind_int64(flow, 2, shape.now - span + span * row / shape.rows);
        Check(sqlite3_step(info) == SQLITE_DONE && sqlite3_step(flow) == SQLITE_DONE, connection);
        sqlite3_reset(info);
        sqlite3_reset(flow);
    }
    sqlite3_finalize(info);
    sqlite3_finalize(flow);
    Run(connection, "COMMIT");
    sqlite3_close(connection);
}
