#include "diagnosis/cases/case_databases.h"

#include <filesystem>
#include <map>

#include "diagnosis/archive/zip_writer.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/process/tree_removal.h"
#include "diagnosis/sqlite/connection.h"

namespace diagnosis::cases {

namespace fs = std::filesystem;

namespace {

using Problem = std::optional<Failure>;

std::string Quoted(const std::string& name)
{
    std::string quoted = "\"";
    for (const char letter : name) {
        quoted += letter == '"' ? "\"\"" : std::string(1, letter);
    }
    return quoted + "\"";
}

void Bind(Statement& statement, int parameter, const Json::Value& value)
{
    if (value.isNull()) {
        statement.BindNull(parameter);
    } else if (value.isString()) {
        statement.Bind(parameter, value.asString());
    } else if (value.type() == Json::realValue) { // 1.0 stays real
        statement.BindReal(parameter, value.asDouble());
    } else {
        statement.Bind(parameter, std::int64_t{value.asInt64()});
    }
}

bool AddTable(Connection& database, const CaseTable& table)
{
    std::string columns;
    std::string places;
    for (const std::string& column : table.columns) {
        columns += (columns.empty() ? "" : ", ") + column;
        places += places.empty() ? "?" : ", ?";
    }
    if (!database.Execute("CREATE TABLE " + Quoted(table.name) + " (" + columns + ")")) {
        return false;
    }
    auto insert = database.Prepare("INSERT INTO " + Quoted(table.name) + " VALUES (" + places + ")");
    for (const auto& row : table.rows) {
        if (!insert) {
            return false;
        }
        for (std::size_t i = 0; i < row.size(); ++i) {
            Bind(*insert, static_cast<int>(i) + 1, row[i]);
        }
        insert->Step();
        insert->Reset();
        if (database.HasError()) {
            return false;
        }
    }
    return insert.has_value();
}

Problem WriteDatabase(const std::string& file, const CaseDatabase& given, const fs::path& path)
{
    std::error_code error;
    fs::create_directories(path.parent_path(), error);
    Connection database;
    bool isWritten = database.Open(path.generic_string(), Connection::Mode::CREATE)
        && database.Execute("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; BEGIN");
    for (const CaseTable& table : given.tables) {
        isWritten = isWritten && AddTable(database, table);
    }
    if (isWritten && database.Execute("COMMIT")) {
        return std::nullopt;
    }
    return Failure{FailureCode::BAD_CASE, file + ":" + std::to_string(given.line) + ": the database \"" + given.path
        + "\" can't be made: " + database.GetError()};
}

struct ArchivePath {
    /// Path of the archive; empty for a file outside archives.
    std::string archive;
    /// The path in the archive, or the whole path.
    std::string inside;
};

ArchivePath SplitAtArchive(const std::string& path)
{
    static const std::string END = ".zip/";
    const auto end = path.find(END);
    return end == std::string::npos ? ArchivePath{"", path}
                                    : ArchivePath{path.substr(0, end + END.size() - 1), path.substr(end + END.size())};
}

} // namespace

Problem WriteDatabases(
    const TestCase& testCase, const std::string& folder, const std::string& device, const std::string& work)
{
    std::map<std::string, std::vector<std::pair<std::string, const CaseDatabase*>>> archives;
    for (const CaseDatabase& database : testCase.databases) {
        const ArchivePath path = SplitAtArchive(NameOnDevice(device, database.path));
        archives[path.archive].emplace_back(path.inside, &database);
    }
    for (const auto& [archive, databases] : archives) {
        const std::string target = archive.empty() ? folder : work;
        for (const auto& [path, database] : databases) {
            if (auto failure = WriteDatabase(testCase.file, *database, fs::path(target) / path)) {
                return failure;
            }
        }
        if (!archive.empty()) {
            std::error_code error;
            fs::create_directories((fs::path(folder) / archive).parent_path(), error);
            auto failure = PackZip(work, (fs::path(folder) / archive).generic_string(), archive);
            RemoveTree(work.c_str());
            if (failure) {
                return failure;
            }
        }
    }
    return std::nullopt;
}

} // namespace diagnosis::cases
