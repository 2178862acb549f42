#include "diagnosis/cases/recorded_databases.h"

#include <filesystem>
#include <vector>

#include "arborist/frame/rule_set_summary.h"
#include "diagnosis/archive/zip_reader.h"
#include "diagnosis/scratch/scratch.h"
#include "diagnosis/sqlite/database_files.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis::cases {

namespace fs = std::filesystem;

namespace {

using Problem = std::optional<Failure>;

constexpr char ARCHIVE_END[] = ".zip";

Failure Refused(const std::string& name, const std::string& reason)
{
    return {FailureCode::NOT_RECORDED, name + ": " + reason};
}

std::string Quoted(const std::string& name)
{
    std::string quoted = "\"";
    for (const char letter : name) {
        quoted += letter == '"' ? "\"\"" : std::string(1, letter);
    }
    return quoted + "\"";
}

// A real number as JSON: with a point, and with as many digits as it needs to be read back.
std::string RealText(const std::string& name)
{
    return "printf(CASE WHEN CAST(printf('%.15g', " + name + ") AS REAL) = " + name + " THEN '%!.15g' ELSE '%!.17g' END, "
        + name + ")";
}

struct Column {
    std::string name;
    std::string type;
};

/// Writes the tables of one database as JSON.
class TableWriter {
public:
    TableWriter(Connection& database, std::size_t mostRows) : mDatabase(database), mMostRows(mostRows) {}

    /// The reason why the tables can't be written; empty if they are.
    std::string Write(JsonWriter& json)
    {
        const auto tables = TableNames();
        json.BeginObject();
        for (const std::string& table : tables) {
            json.Key(table);
            const std::string problem = WriteTable(table, json);
            if (!problem.empty()) {
                return problem;
            }
        }
        json.EndObject();
        return mDatabase.HasError() ? mDatabase.GetError() : "";
    }

    std::size_t Rows() const { return mRows; }

private:
    std::vector<std::string> TableNames()
    {
        std::vector<std::string> names;
        auto rows = mDatabase.Prepare(
            "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY rowid");
        while (rows && rows->Step()) {
            names.push_back(rows->Text(0));
        }
        return names;
    }

    std::vector<Column> ColumnsOf(const std::string& table)
    {
        std::vector<Column> columns;
        auto rows = mDatabase.Prepare("SELECT name, type FROM pragma_table_info(?1) ORDER BY cid");
        if (rows) {
            rows->Bind(1, table);
        }
        while (rows && rows->Step()) {
            columns.push_back({rows->Text(0), rows->Text(1)});
        }
        return columns;
    }

    std::string WriteTable(const std::string& table, JsonWriter& json)
    {
        const auto columns = ColumnsOf(table);
        std::string selected;
        json.BeginObject().Key("columns").BeginArray();
        for (const Column& column : columns) {
            const std::string name = Quoted(column.name);
            json.Text(name + (column.type.empty() ? "" : " " + column.type));
            selected += (selected.empty() ? "typeof(" : ", typeof(") + name + "), CASE typeof(" + name
                + ") WHEN 'real' THEN " + RealText(name) + " ELSE " + name + " END";
        }
        json.EndArray().Key("rows").BeginArray();
        auto rows = mDatabase.Prepare("SELECT " + selected + " FROM " + Quoted(table));
        while (rows && rows->Step()) {
            if (++mRows > mMostRows) {
                return "the rules asked for more rows than a case holds";
            }
            const std::string problem = WriteRow(*rows, columns.size(), json);
            if (!problem.empty()) {
                return problem;
            }
        }
        json.EndArray().EndObject();
        return mDatabase.HasError() ? mDatabase.GetError() : "";
    }

    static std::string WriteRow(const Statement& row, std::size_t columns, JsonWriter& json)
    {
        json.BeginArray();
        for (std::size_t i = 0; i < columns; ++i) {
            const int column = static_cast<int>(2 * i);
            const std::string type = row.Text(column);
            const bool isInfinite =
                type == "real" && row.Text(column + 1).find_first_not_of("+-.0123456789e") != std::string::npos;
            if (type == "blob" || isInfinite) {
                return "a value is no text and no number";
            }
            type == "null"   ? json.Null()
                : type == "text" ? json.Text(row.Text(column + 1))
                                 : json.Raw(row.Text(column + 1));
        }
        json.EndArray();
        return "";
    }

    Connection& mDatabase;
    std::size_t mMostRows;
    std::size_t mRows = 0;
};

} // namespace

Problem RecordedDatabases::AddFolder(const std::string& folder, const std::string& name, const std::string& root)
{
    std::map<std::string, std::string> files; // real paths by their names below the folder
    std::error_code error;
    const fs::path real = fs::canonical(folder, error);
    for (fs::recursive_directory_iterator entry(real, error), end; !error && entry != end; entry.increment(error)) {
        const fs::path& path = entry->path();
        std::error_code ignored;
        const bool isLink = entry->is_symlink(ignored) && !root.empty();
        const std::string target =
            isLink ? PathOnDevice(root, "/" + path.lexically_relative(root).generic_string()) : path.generic_string();
        if (fs::is_regular_file(target, ignored)) {
            files[path.lexically_relative(real).generic_string()] = target;
        }
    }
    for (const auto& [file, target] : files) {
        if (auto failure = AddFile(target, (fs::path(name) / file).generic_string())) {
            return failure;
        }
    }
    return std::nullopt;
}

Problem RecordedDatabases::AddFile(const std::string& file, const std::string& name)
{
    if (IsZip(file)) {
        return AddArchive(file, name);
    }
    return mNames.count(fs::path(name).filename().generic_string()) != 0 ? AddDatabase(file, name) : std::nullopt;
}

Problem RecordedDatabases::AddArchive(const std::string& file, const std::string& name)
{
    Scratch scratch;
    if (auto failure = scratch.Make()) {
        return failure;
    }
    std::vector<Warning> warnings;
    if (UnpackZip(file, name, scratch.Path(), warnings)) {
        return std::nullopt; // no archive for the engine either
    }
    const std::size_t before = mJson.size();
    if (auto failure = AddFolder(scratch.Path(), name, "")) {
        return failure;
    }
    return mJson.size() > before && !name.ends_with(ARCHIVE_END)
        ? std::optional(Refused(name, "a case can't hold an archive whose name doesn't end in .zip")) : std::nullopt;
}

Problem RecordedDatabases::AddDatabase(const std::string& file, const std::string& name)
{
    ReadOnlyDatabase database;
    if (auto failure = database.Open(file, FailureCode::NOT_RECORDED)) {
        return failure;
    }
    JsonWriter json;
    TableWriter writer(database.Get(), mMostRows - mRows);
    const std::string problem = writer.Write(json);
    if (!problem.empty()) {
        return Refused(name, problem);
    }
    mRows += writer.Rows();
    mJson[name] = json.Line();
    return std::nullopt;
}

} // namespace diagnosis::cases
