#include "tests/support/database_rows.h"

#include <sqlite3.h>

namespace {

int AddRow(void* context, int count, char** texts, char**)
{
    std::string row;
    for (int column = 0; column < count; ++column) {
        row += (column == 0 ? "" : "|");
        row += texts[column] == nullptr ? "null" : texts[column];
    }
    static_cast<std::vector<std::string>*>(context)->push_back(row);
    return 0;
}

} // namespace

std::vector<std::string> DatabaseRows(const std::string& path, const std::string& sql)
{
    std::vector<std::string> rows;
    sqlite3* connection = nullptr;
    if (sqlite3_open_v2(path.c_str(), &connection, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK ||
        sqlite3_exec(connection, sql.c_str(), AddRow, &rows, nullptr) != SQLITE_OK) {
        rows = {std::string("error: ") + sqlite3_errmsg(connection)};
    }
    sqlite3_close(connection);
    return rows;
}
