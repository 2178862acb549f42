#include "diagnosis/redaction/log_copy.h"

#include <algorithm>
#include <filesystem>

#include "diagnosis/redaction/redaction_file.h"

namespace diagnosis {

namespace {

struct LogTable {
    const char* name;
    std::vector<std::string> columns;
};

// The columns that readers of a log use.
const std::vector<LogTable>& LogTables()
{
    static const std::vector<LogTable> TABLES = {{"event_info", {"_ID", "event_id", "extra", "version_id"}},
        {"event_info_flow", {"_ID", "event_pid", "occurrence_time"}}, {"event_version", {"_ID", "VERSION_NAME"}}};
    return TABLES;
}

// A type of the same affinity: how a column compares depends on it. Not the type itself, which is any text.
std::string TypeLike(const std::string& declared)
{
    const std::string type = LowerLetters(declared);
    const auto has = [&type](const char* part) { return type.find(part) != std::string::npos; };
    return has("int")                                  ? "INTEGER"
        : has("char") || has("clob") || has("text")    ? "TEXT"
        : type.empty() || has("blob")                  ? "BLOB"
        : has("real") || has("floa") || has("doub")    ? "REAL"
                                                       : "NUMERIC";
}

std::string Joined(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() ? "" : ", ") + part;
    }
    return text;
}

} // namespace

std::optional<Failure> LogCopy::Run(const std::string& source, const std::string& target, const NewExtra& newExtra)
{
    if (auto failure = mLog.Open(source, FailureCode::BAD_LOG)) {
        return failure;
    }
    mSource = &mLog.Get();
    std::error_code error;
    // Views of a foreign log may have far more than the file.
    mBytesLeft = 4 * std::filesystem::file_size(source, error) + (std::uint64_t{64} << 20U);
    bool isCopied = Open(target);
    for (const LogTable& table : LogTables()) {
        isCopied = isCopied && CopyTable(table.name, table.columns, newExtra);
    }
    if (!isCopied) {
        // The source first: where it can't be read, the target may not even be open.
        const std::string reason = mSource->HasError() ? mSource->GetError() : mTarget.HasError() ? mTarget.GetError()
            : "has more text than its file can hold";
        return Failure{FailureCode::BAD_LOG, source + ": can't be redacted: " + reason};
    }
    CountOtherTables();
    return mTarget.Close() ? std::nullopt : std::optional(Failure{FailureCode::LOG_NOT_WRITTEN, target + ": can't be closed"});
}

bool LogCopy::Open(const std::string& target)
{
    auto encoding = mSource->Prepare("PRAGMA encoding");
    // Bytes of another encoding are another text.
    return encoding && encoding->Step() && mTarget.Open(target, Connection::Mode::CREATE)
        && mTarget.Execute("PRAGMA encoding = '" + encoding->Text(0) + "'; PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;");
}

bool LogCopy::CopyTable(const std::string& table, const std::vector<std::string>& wanted, const NewExtra& newExtra)
{
    const std::vector<Column> columns = ColumnsOf(table, wanted);
    if (columns.empty()) {
        return !mSource->HasError();
    }
    std::vector<std::string> declarations;
    for (const Column& column : columns) {
        declarations.push_back(column.declaration);
    }
    return mTarget.Execute("BEGIN; CREATE TABLE " + table + " (" + Joined(declarations) + ")")
        && CopyRows(table, columns, newExtra) && CopyIndexes(table, columns) && mTarget.Execute("COMMIT");
}

std::vector<LogCopy::Column> LogCopy::ColumnsOf(const std::string& table, const std::vector<std::string>& wanted)
{
    std::vector<Column> columns;
    auto row = mSource->Prepare("SELECT name, type, pk FROM pragma_table_xinfo('" + table + "')");
    std::uint64_t keys = 0;
    while (row && row->Step()) {
        const std::string name = row->Text(0);
        const auto known = std::find_if(wanted.begin(), wanted.end(),
            [&name](const std::string& one) { return LowerLetters(one) == LowerLetters(name); });
        keys += row->Integer(2) != 0 ? 1U : 0U;
        if (known != wanted.end()) {
            const bool isKey = row->Integer(2) == 1 && LowerLetters(row->Text(1)) == "integer";
            columns.push_back({*known, *known + " " + TypeLike(row->Text(1)) + (isKey ? " PRIMARY KEY" : "")});
        }
    }
    if (keys > 1) { // none of them is the key
        for (Column& column : columns) {
            column.declaration = column.declaration.substr(0, column.declaration.find(" PRIMARY KEY"));
        }
    }
    return columns;
}

bool LogCopy::CopyRows(const std::string& table, const std::vector<Column>& columns, const NewExtra& newExtra)
{
    std::vector<std::string> names;
    for (const Column& column : columns) {
        names.push_back(column.name);
    }
    auto row = mSource->Prepare("SELECT " + Joined(names) + " FROM " + table);
    auto insert = mTarget.Prepare("INSERT INTO " + table + " VALUES ("
        + Joined(std::vector<std::string>(columns.size(), "?")) + ")");
    if (!row || !insert) {
        return false;
    }
    while (row->Step()) {
        if (!BindRow(*row, columns, newExtra, *insert)) {
            return false;
        }
        insert->Step();
        insert->Reset();
        if (mTarget.HasError()) {
            return false;
        }
    }
    return !mSource->HasError();
}

// False if the rows so far have more text than the file.
bool LogCopy::BindRow(
    const Statement& row, const std::vector<Column>& columns, const NewExtra& newExtra, Statement& insert)
{
    static constexpr std::uint64_t BYTES_OF_A_ROW = 32; // without its texts, four times the least
    LoggedExtra logged;
    int extra = -1;
    if (mBytesLeft < BYTES_OF_A_ROW) {
        return false;
    }
    mBytesLeft -= BYTES_OF_A_ROW;
    for (int column = 0; column < static_cast<int>(columns.size()); ++column) {
        const std::string& name = columns[static_cast<std::size_t>(column)].name;
        insert.BindColumn(column + 1, row, column); // before the calls that convert the value
        const std::uint64_t bytes = row.Bytes(column);
        if (bytes > mBytesLeft) {
            return false;
        }
        mBytesLeft -= bytes;
        if (name == "extra") {
            extra = column;
        } else if (name == "event_id" && row.IsInteger(column)) {
            logged.event = row.Integer(column);
        }
    }
    if (extra >= 0) {
        logged.extra = row.Text(extra);
        if (const auto text = newExtra(logged)) {
            insert.Bind(extra + 1, *text);
        }
    }
    return true;
}

bool LogCopy::CopyIndexes(const std::string& table, const std::vector<Column>& columns)
{
    auto row = mSource->Prepare("SELECT list.name, info.name, info.\"desc\" FROM pragma_index_list('" + table + "') AS list,"
        " pragma_index_xinfo(list.name) AS info WHERE info.\"key\" = 1 AND list.partial = 0 ORDER BY list.seq DESC, info.seqno");
    std::vector<std::pair<std::string, std::vector<std::string>>> indexes;
    while (row && row->Step()) {
        if (indexes.empty() || indexes.back().first != row->Text(0)) {
            indexes.push_back({row->Text(0), {}});
        }
        const std::string name = LowerLetters(row->Text(1)); // empty for an expression
        const auto known = std::find_if(columns.begin(), columns.end(),
            [&name](const Column& column) { return LowerLetters(column.name) == name; });
        indexes.back().second.push_back(known == columns.end() ? "" : known->name + (row->Integer(2) != 0 ? " DESC" : ""));
    }
    return std::all_of(indexes.begin(), indexes.end(), [&](const auto& index) {
        const bool isKnown = std::find(index.second.begin(), index.second.end(), "") == index.second.end();
        return !isKnown || mTarget.Execute("CREATE INDEX log_index_" + std::to_string(++mIndexes) + " ON " + table + " ("
            + Joined(index.second) + ")");
    });
}

void LogCopy::CountOtherTables()
{
    auto count = mSource->Prepare("SELECT count(*) FROM sqlite_master WHERE type IN ('table', 'view') AND lower(name)"
        " NOT IN ('event_info', 'event_info_flow', 'event_version') AND name NOT LIKE 'sqlite_%'");
    mOtherTables = count && count->Step() ? static_cast<std::uint64_t>(count->Integer(0)) : 0;
}

} // namespace diagnosis
