#include "diagnosis/log_db/event_log.h"

#include <filesystem>

#include "diagnosis/bundle/moment.h"
#include "diagnosis/log_db/hidden_rows.h"
#include "diagnosis/sqlite/database_files.h"
#include "diagnosis/text/json_text.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

// The tables of the monitoring service. The library finds events by their number and joins on the keys.
constexpr char CREATE_TABLES[] =
    "CREATE TABLE event_info (_ID INTEGER PRIMARY KEY, event_id INTEGER, extra TEXT, version_id INTEGER);"
    "CREATE TABLE event_info_flow (_ID INTEGER PRIMARY KEY, event_pid INTEGER, occurrence_time INTEGER);"
    "CREATE TABLE event_version (_ID INTEGER PRIMARY KEY, VERSION_NAME TEXT);";
constexpr char CREATE_INDEXES[] =
    "CREATE INDEX event_info_event_id ON event_info (event_id);"
    "CREATE INDEX event_info_flow_event_pid ON event_info_flow (event_pid);";

std::string SelectEvents()
{
    return "SELECT flow.occurrence_time, info.event_id, version.VERSION_NAME, info.extra FROM event_info AS info"
        " LEFT JOIN event_info_flow AS flow ON flow.event_pid = info._ID AND NOT " + hidden_rows::IsLater("flow")
        + " LEFT JOIN event_version AS version ON version._ID = info.version_id"
        " WHERE NOT " + hidden_rows::IsHidden("info") + " ORDER BY info._ID, flow._ID";
}

std::string Quoted(const std::string& text)
{
    JsonWriter json;
    return json.Text(text).Line();
}

std::string TextOrNull(const Statement& row, int column)
{
    return row.IsNull(column) ? "null" : Quoted(row.Text(column));
}

std::string NumberOrText(const Statement& row, int column)
{
    return row.IsInteger(column) ? std::to_string(row.Integer(column)) : TextOrNull(row, column);
}

// Local time, unless it can't be converted back to the same second (the hour that occurs twice in autumn).
std::string TimeValue(const Statement& row, bool asSeconds)
{
    if (!asSeconds && row.IsInteger(0)) {
        const std::int64_t seconds = row.Integer(0);
        const auto text = FormatMoment(seconds);
        if (text && ParseMoment(*text) == seconds) {
            return Quoted(*text);
        }
    }
    return NumberOrText(row, 0);
}

std::string ExtraValue(const Statement& row)
{
    if (row.IsNull(3)) {
        return "null";
    }
    const std::string text = row.Text(3);
    std::string problem;
    const bool isOneObject = !text.empty() && text.front() == '{' && text.back() == '}'
        && text.find_first_of("\n\r") == std::string::npos && ParseEngineJson(text, problem).has_value();
    return isOneObject ? text : Quoted(text);
}

bool Exists(const std::string& path)
{
    std::error_code error;
    return fs::exists(path, error);
}

} // namespace

std::optional<std::string> CompanionOf(const std::string& path)
{
    for (const char* companion : {"-wal", "-journal"}) {
        if (Exists(path + companion)) {
            return path + companion;
        }
    }
    return std::nullopt;
}

Failure EventLogWriter::Fail(const std::string& reason) const
{
    return Failure{FailureCode::LOG_NOT_WRITTEN, mPath + ": " + reason};
}

std::optional<Failure> EventLogWriter::Open(const std::string& path)
{
    mPath = path;
    if (const auto companion = CompanionOf(path)) {
        return Fail("is in use: there is " + *companion);
    }
    if (const auto problem = mFile.MakeWithFolders(path)) {
        return Fail(*problem);
    }
    // Nobody sees the file before it is complete, so it needs no journal.
    if (!mDatabase.Open(mFile.TemporaryPath(), Connection::Mode::CREATE) || !mDatabase.Execute("PRAGMA journal_mode = OFF")) {
        return Fail(mDatabase.GetError());
    }
    if (mDurability == Durability::NONE && !mDatabase.Execute("PRAGMA synchronous = OFF")) {
        return Fail(mDatabase.GetError());
    }
    return CreateTables();
}

std::optional<Failure> EventLogWriter::CreateTables()
{
    if (!mDatabase.Execute("BEGIN") || !mDatabase.Execute(CREATE_TABLES)) {
        return Fail(mDatabase.GetError());
    }
    mInfo = mDatabase.Prepare("INSERT INTO event_info VALUES (?1, ?2, ?3, ?4)");
    mFlow = mDatabase.Prepare("INSERT INTO event_info_flow VALUES (?1, ?1, ?2)");
    mVersion = mDatabase.Prepare("INSERT INTO event_version VALUES (?1, ?2)");
    return mInfo && mFlow && mVersion ? std::nullopt : std::optional(Fail(mDatabase.GetError()));
}

std::optional<std::int64_t> EventLogWriter::VersionId(const std::string& version)
{
    const auto known = mVersionIds.find(version);
    if (known != mVersionIds.end()) {
        return known->second;
    }
    const auto id = static_cast<std::int64_t>(mVersionIds.size()) + 1;
    mVersion->Bind(1, id);
    mVersion->Bind(2, version);
    mVersion->Step();
    mVersion->Reset();
    mVersionIds[version] = id;
    return mDatabase.HasError() ? std::nullopt : std::optional(id);
}

std::optional<Failure> EventLogWriter::Add(const LoggedEvent& event)
{
    ++mRows;
    mInfo->Bind(1, mRows);
    mInfo->Bind(2, event.event);
    event.extra ? mInfo->Bind(3, *event.extra) : mInfo->BindNull(3);
    const auto version = event.version ? VersionId(*event.version) : std::nullopt;
    if (event.version && !version) {
        return Fail(mDatabase.GetError());
    }
    version ? mInfo->Bind(4, *version) : mInfo->BindNull(4);
    mFlow->Bind(1, mRows);
    mFlow->Bind(2, event.time);
    for (Statement* statement : {&*mInfo, &*mFlow}) {
        statement->Step();
        statement->Reset();
        if (mDatabase.HasError()) {
            return Fail(mDatabase.GetError());
        }
    }
    return std::nullopt;
}

std::optional<Failure> EventLogWriter::Finish()
{
    mInfo.reset();
    mFlow.reset();
    mVersion.reset();
    if (!mDatabase.Execute(CREATE_INDEXES) || !mDatabase.Execute("COMMIT")) {
        return Fail(mDatabase.GetError());
    }
    if (!mDatabase.Close()) {
        return Fail("can't be closed");
    }
    if (const auto problem = mFile.PutInPlace()) {
        return Fail(*problem);
    }
    return std::nullopt;
}

std::optional<Failure> ShowEventLog(const std::string& path, bool asSeconds, std::optional<std::int64_t> asOf,
    const std::function<void(const ShownEvent&)>& show,
    const std::function<bool(std::int64_t event, std::int64_t time)>& wants)
{
    if (!Exists(path)) {
        return Failure{FailureCode::NO_LOG, path + ": no such file"};
    }
    ReadOnlyDatabase file;
    if (auto failure = file.Open(path, FailureCode::BAD_LOG)) {
        return failure;
    }
    Connection& database = file.Get();
    std::optional<Statement> rows = database.Prepare(SelectEvents());
    if (!rows) {
        return Failure{FailureCode::BAD_LOG, path + ": " + database.GetError()};
    }
    if (asOf) {
        rows->Bind(1, *asOf);
    }
    while (rows->Step()) {
        if (wants && !(rows->IsInteger(0) && rows->IsInteger(1) && wants(rows->Integer(1), rows->Integer(0)))) {
            continue;
        }
        show({TimeValue(*rows, asSeconds), NumberOrText(*rows, 1), TextOrNull(*rows, 2), ExtraValue(*rows)});
    }
    if (database.HasError()) {
        return Failure{FailureCode::BAD_LOG, path + ": " + database.GetError()};
    }
    return std::nullopt;
}

} // namespace diagnosis
