#include "arborist/stores/event_log/query_plan.h"

#include <vector>

#include "arborist/stores/sql/sql_cursor.h"

namespace {

constexpr int DETAIL_COLUMN = 3;

std::vector<std::string> StepsOf(const FT::sql::Sqlite3Db& database, const std::string& sql)
{
    std::vector<std::string> steps;
    FT::sql::SqlCursor cursor(database, "EXPLAIN QUERY PLAN " + sql);
    while (cursor.Step()) {
        steps.emplace_back(cursor.GetText(DETAIL_COLUMN));
    }
    return steps;
}

} // namespace

bool QueryPlan::IsScanOfEvents(const FT::sql::Sqlite3Db& database, const std::string& query)
{
    return StepsOf(database, query) == std::vector<std::string>{"SCAN event_info",
        "SEARCH event_info_flow USING INTEGER PRIMARY KEY (rowid=?)",
        "SEARCH event_version USING INTEGER PRIMARY KEY (rowid=?)"};
}

std::string QueryPlan::RowNameOfEvents(const FT::sql::Sqlite3Db& database)
{
    for (const char* const name : {"_ID", "rowid", "_rowid_", "oid"}) {
        const std::vector<std::string> steps =
            StepsOf(database, std::string("select extra from event_info where ") + name + " = 1");
        if (steps == std::vector<std::string>{"SEARCH event_info USING INTEGER PRIMARY KEY (rowid=?)"}) {
            return name;
        }
    }
    return "";
}
