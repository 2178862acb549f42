// CommonPartDbHelper: the rows of a derived table, selected from the event log.
#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

#include <json/value.h>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "arborist/stores/repairs/reset_time_parser.h"
#include "arborist/stores/sql/simple_database_helper.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_table.h"
#include "arborist/utilities/file_util.h"
#include "arborist/utilities/json_text.h"
#include "arborist/utilities/time_util.h"

namespace {

constexpr char SELECT_EVENTS[] =
    "SELECT event_info.extra, event_info_flow.occurrence_time FROM event_info LEFT OUTER JOIN event_info_flow ON "
    "event_info_flow.event_pid = event_info._ID WHERE ";
// What a bean gets that names no ids.
constexpr char DEFAULT_EVENTS[] = "( event_info.event_id >= 902000000 AND event_info.event_id < 902500000 OR "
                                  "event_info.event_id = 902500007 ) ";
// The places of its columns.
constexpr int EXTRA_COLUMN = 0;
constexpr int TIME_COLUMN = 1;
constexpr std::int64_t SEVEN_DAYS = 604800;
constexpr std::int64_t THIRTY_DAYS = 2592000;

std::string Setting(const char* key)
{
    return FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(key, "");
}

// The last reset or update, in seconds since the epoch: what came before doesn't describe the device as it is.
std::int64_t LatestResetOrUpdate(const std::string& directory)
{
    const auto parser = std::make_unique<ResetTimeParser>(directory);
    parser->ParseLogService();
    return std::max(parser->GetResetTime(), parser->GetUpdateTime());
}

std::int64_t TimeOf(const FT::sql::SqlCursor& cursor)
{
    if (cursor.GetType(TIME_COLUMN) == FT::sql::SqlCursor::ColumnType::INTEGER) {
        return cursor.GetInteger(TIME_COLUMN);
    }
    // The number at the front of whatever stands there; 0 for nothing.
    FT::sql::SqlValue value;
    value.SetValue(std::string(cursor.GetText(TIME_COLUMN)), FT::sql::TypeInteger);
    return value.AsInteger();
}

// `row`, which is null, stays so where it doesn't.
bool HoldsJson(std::string_view extra, Json::Value& row)
{
    std::string error;
    if (!extra.empty() && ParseJson(extra, row, error)) {
        return true;
    }
    row = Json::Value();
    return false;
}

// The total of a statistic, which must not be counted as an event.
bool IsStatisticTotal(const Json::Value& extra)
{
    return MemberText(extra, "CASENAME") == "GAME_LAG_RATIO" && MemberText(extra, "FIELDNAME") == "TotalCount";
}

// Builds the rows out of what was selected, some hundred at a time: in turns with each step of the statement both would
// be slower, as SQLite and the JSON reader together don't fit the processor's nearest cache.
class RowBuilder {
public:
    explicit RowBuilder(std::vector<Json::Value>& rows) : mRows(rows) {}

    void Take(std::string_view extra, std::int64_t time)
    {
        mTexts += extra;
        mWaiting.push_back({mTexts.size(), time});
        if (mTexts.size() >= BATCH_BYTES || mWaiting.size() >= BATCH_ROWS) {
            Build();
        }
    }

    /// Builds what still waits.
    void Build()
    {
        std::size_t begin = 0;
        for (const Waiting& waiting : mWaiting) {
            BuildRow(std::string_view(mTexts).substr(begin, waiting.end - begin), waiting.time);
            begin = waiting.end;
        }
        mTexts.clear();
        mWaiting.clear();
    }

    const std::vector<std::string>& GetTextsWithoutJson() const { return mWithoutJson; }

private:
    static constexpr std::size_t BATCH_BYTES = 65536;
    static constexpr std::size_t BATCH_ROWS = 256;

    struct Waiting {
        std::size_t end; // of its text in mTexts
        std::int64_t time;
    };

    void BuildRow(std::string_view extra, std::int64_t time)
    {
        Json::Value& row = mRows.emplace_back();
        if (!HoldsJson(extra, row)) {
            mWithoutJson.emplace_back(extra);
        }
        if (IsStatisticTotal(row)) {
            mRows.pop_back();
            return;
        }
        if (!row.isObject()) {
            row = Json::Value(Json::objectValue);
        }
        row[Json::StaticString("occurrence_time")] = static_cast<Json::Int64>(time);
    }

    std::vector<Json::Value>& mRows;
    std::string mTexts; // one behind the other
    std::vector<Waiting> mWaiting;
    std::vector<std::string> mWithoutJson;
};

} // namespace

void CommonPartDbHelper::GetLumbraDataByFilter(
    const EventIdList& ids, const std::string& eventDbPath, RowList& rows)
{
    static constexpr char NAME[] = "CommonPartDbHelper::GetLumbraDataByFilter";
    FT::sql::SqlDatabase database;
    // A missing log comes into being here, empty, and is turned away for its missing tables.
    database.Open(eventDbPath);
    if (!database.IsOpen()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: open db %s fail.", NAME,
            FileUtil::ExtractFileName(eventDbPath).c_str());
        return;
    }
    database.Restrict(FT::sql::SqlAccess::READ_ONLY);
    if (!IsTableExist(database, "event_info") || !IsTableExist(database, "event_info_flow")) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN,
            "FUNc:%s: lumbra db not exist or table event_info not exist or table event_info_flow not exist.", NAME);
        return;
    }
    std::string sql = GenerateSql(ids, SELECT_EVENTS);
    const std::string appFileDir = Setting(Settings::APP_FILE_DIR);
    FT::Log::GetInstance().Output(FT::LEVEL_DEBUG, "FUNc:%s: AppFileDir: %s", NAME, appFileDir.c_str());
    const std::int64_t minTime = LatestResetOrUpdate(appFileDir);
    const std::int64_t version = QueryVersion(database);
    if (version != 0) {
        sql += " AND event_info.version_id = " + std::to_string(version);
    }
    QueryDataSet(database, sql, rows, minTime);
}

std::string CommonPartDbHelper::GenerateSql(const EventIdList& ids, const std::string& baseSql)
{
    const std::int64_t now = TimeUtil::GetTimeOfDay();
    const std::string selection = ids.IsEmpty() ? DEFAULT_EVENTS : ids.ToSql();
    const std::int64_t floor = now - (ids.IsEmpty() ? SEVEN_DAYS : THIRTY_DAYS);
    return baseSql + selection + " AND event_info_flow.occurrence_time > " + std::to_string(floor);
}

std::int64_t CommonPartDbHelper::QueryVersion(const FT::sql::SqlDatabase& database)
{
    static constexpr char NAME[] = "CommonPartDbHelper::QueryVersion";
    if (!database.IsOpen()) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: database was not exist, open database failed.", NAME);
        return 0;
    }
    const std::string versionName = Setting(Settings::VERSION_NAME);
    FT::Log::GetInstance().Output(FT::LEVEL_DEBUG, "FUNc:%s: version name: %s", NAME, versionName.c_str());
    if (versionName.empty()) {
        return 0;
    }
    FT::sql::SqlField fields[] = {{"_ID", FT::sql::TypeInteger}, {"VERSION_NAME", FT::sql::TypeText},
        FT::sql::SqlField(FT::sql::FieldUseEnd)};
    FT::sql::SqlTable table(database.GetHandle(), "event_version", fields, std::size(fields));
    // The name goes in as it stands: a quote in it makes the statement fail, and no version is known.
    const std::uint64_t count = FT::sql::SimpleDatabaseHelper().GetRecordCountByFullSql(
        table, "select * from event_version where VERSION_NAME = '" + versionName + "' ORDER BY _ID DESC");
    for (std::uint64_t index = 0; index < count; ++index) {
        const FT::sql::SqlValue* const id = table.GetRecord(index)->GetValue("_ID");
        if (id != nullptr && id->AsInteger() != 0) {
            return id->AsInteger();
        }
    }
    return 0;
}

void CommonPartDbHelper::QueryDataSet(
    const FT::sql::SqlDatabase& database, const std::string& sql, RowList& rows, std::int64_t minTime)
{
    // As they come: what the selection holds need not be there twice, as text and as JSON.
    FT::sql::SqlCursor cursor(database.GetHandle(), sql);
    RowBuilder builder(rows);
    std::uint64_t bytes = 0;
    std::string error;
    bool isEmpty = true;
    for (; error.empty() && cursor.Step(); isEmpty = false) {
        const std::int64_t time = TimeOf(cursor);
        if (time <= minTime) {
            continue;
        }
        const std::string_view extra = cursor.GetText(EXTRA_COLUMN);
        bytes += extra.size();
        if (!database.GetHandle().AllowsBytes(bytes)) {
            error = "query aborted"; // columns that are computed may hold far more than the file
            continue;
        }
        builder.Take(extra, time);
    }
    builder.Build();
    if (!cursor.IsOk()) {
        error = cursor.GetError();
    }
    if (!error.empty()) {
        // As every statement of the stores tells it. The rows that came before stay.
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Execute sql failed: %s",
            "FT::sql::SqlOperator::Execute", error.c_str());
    }
    for (const std::string& extra : builder.GetTextsWithoutJson()) { // behind the line of a statement that fails
        ExtraStrToJson(extra);
    }
    if (isEmpty) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_INFO, "FUNc:%s: event_info table record is empty.", "CommonPartDbHelper::QueryDataSet");
    }
}

Json::Value CommonPartDbHelper::ExtraStrToJson(const std::string& extra)
{
    static constexpr char NAME[] = "CommonPartDbHelper::ExtraStrToJson";
    if (extra.empty()) {
        FT::Log::GetInstance().Output(FT::LEVEL_DEBUG, "FUNc:%s: extra is empty.", NAME);
        return Json::Value();
    }
    Json::Value value;
    std::string error;
    if (!ParseJson(extra, value, error)) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: jsonStr[%s] err. %s ", NAME, extra.c_str(), error.c_str());
        return Json::Value();
    }
    return value;
}
