// Importing the lines of a fleet against plain inserts of the same rows, and the bytes that a bundle takes. The lines are
// those of the laptop's rule set in examples/results, under other names and at other moments.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "bench/compare.h"
#include "bench/scratch_folder.h"
#include "diagnosis/results_db/import_results.h"
#include "diagnosis/results_db/results_database.h"
#include "diagnosis/sqlite/connection.h"

namespace {

using diagnosis::Connection;
using diagnosis::Statement;

constexpr int BUNDLES = 20'000;

std::vector<std::string> LinesOf(const std::string& file)
{
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

void WriteFleet(const std::vector<std::string>& lines, const std::string& path)
{
    std::ofstream stream(path, std::ios::binary);
    for (int bundle = 0; bundle < BUNDLES; ++bundle) {
        std::string line = lines[static_cast<std::size_t>(bundle) % lines.size()];
        char name[32];
        std::snprintf(name, sizeof name, "/fleet/device-%07d.zip", bundle);
        const auto start = line.find("may/");
        line.replace(start, line.find('"', start) - start, name);
        stream << line << '\n';
    }
}

/// The rows of one table as they are bound: nothing for NULL, a number, or a text.
struct Table {
    struct Value {
        bool isNull = false;
        bool isNumber = false;
        std::int64_t number = 0;
        std::string text;
    };

    std::string name;
    std::vector<std::vector<Value>> rows;
};

Table ReadTable(Connection& database, const std::string& name)
{
    Table table{name, {}};
    auto statement = database.Prepare("SELECT * FROM " + name);
    while (statement->Step()) {
        std::vector<Table::Value> row;
        for (int column = 0; column < statement->ColumnCount(); ++column) {
            const bool isNumber = statement->IsInteger(column);
            row.push_back({statement->IsNull(column), isNumber, isNumber ? statement->Integer(column) : 0,
                isNumber ? "" : statement->Text(column)});
        }
        table.rows.push_back(std::move(row));
    }
    return table;
}

std::vector<Table> ReadTables(const std::string& path)
{
    Connection database;
    database.Open(path, Connection::Mode::READ_ONLY);
    std::vector<std::string> names;
    auto statement = database.Prepare("SELECT name FROM sqlite_master WHERE type = 'table'");
    while (statement->Step()) {
        names.push_back(statement->Text(0));
    }
    std::vector<Table> tables;
    for (const std::string& name : names) {
        tables.push_back(ReadTable(database, name));
    }
    return tables;
}

void InsertRow(Statement& insert, const std::vector<Table::Value>& row)
{
    int parameter = 0;
    for (const Table::Value& value : row) {
        ++parameter;
        if (value.isNull) {
            insert.BindNull(parameter);
        } else if (value.isNumber) {
            insert.Bind(parameter, value.number);
        } else {
            insert.Bind(parameter, value.text);
        }
    }
    insert.Step();
    insert.Reset();
}

// What any program has to do: one prepared statement for each table, one transaction, the same file settings.
void InsertPlainly(const std::vector<Table>& tables, const std::string& path)
{
    std::filesystem::remove(path);
    Connection database;
    database.Open(path, Connection::Mode::CREATE);
    database.Execute("PRAGMA journal_mode = OFF; BEGIN");
    diagnosis::results_db::CreateSchema(database, path);
    for (const Table& table : tables) {
        std::string marks = "?";
        for (std::size_t column = 1; !table.rows.empty() && column < table.rows.front().size(); ++column) {
            marks += ", ?";
        }
        if (!table.rows.empty()) {
            auto insert = database.Prepare("INSERT INTO " + table.name + " VALUES (" + marks + ")");
            for (const auto& row : table.rows) {
                InsertRow(*insert, row);
            }
        }
    }
    database.Execute("COMMIT");
}

bool Import(const std::string& lines, const std::string& path)
{
    std::filesystem::remove(path);
    return diagnosis::results_db::ImportResults({lines}, path, {}).isImported;
}

} // namespace

int main(int count, char** words)
{
    static constexpr int ROUNDS = 7;
    const std::vector<std::string> lines = count > 1 ? LinesOf(words[1]) : std::vector<std::string>();
    const bench::ScratchFolder folder;
    const std::string fleet = folder.Path() + "/fleet.jsonl";
    const std::string imported = folder.Path() + "/imported.db";
    const std::string plain = folder.Path() + "/plain.db";
    if (lines.empty()) {
        std::fprintf(stderr, "results_bench: call it with examples/results/before.jsonl\n");
        return 1;
    }
    WriteFleet(lines, fleet);
    if (!Import(fleet, imported)) {
        return 1;
    }
    const std::vector<Table> tables = ReadTables(imported);
    const std::string size = " [" + std::to_string(BUNDLES) + " bundles]";
    const bench::Pair times =
        bench::Alternate(ROUNDS, [&] { Import(fleet, imported); }, [&] { InsertPlainly(tables, plain); });
    bench::Report("results import" + size, times, 1.5);
    static constexpr double MOST_BYTES = 400;
    const double bytes = static_cast<double>(std::filesystem::file_size(imported)) / BUNDLES;
    bench::Report("results import, bytes a bundle", {bytes, MOST_BYTES}, 1);
}
