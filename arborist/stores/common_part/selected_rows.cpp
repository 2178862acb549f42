#include "arborist/stores/common_part/selected_rows.h"

#include <cstddef>
#include <cstdlib>
#include <string_view>

#include <json/value.h>

#include "arborist/frame/log.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/utilities/json_text.h"

namespace SelectedRows {
namespace {

// Positions of the columns in the statement.
constexpr int EXTRA_COLUMN = 0;
constexpr int TIME_COLUMN = 1;

std::int64_t TimeOf(const FT::sql::SqlCursor& cursor)
{
    if (cursor.GetType(TIME_COLUMN) == FT::sql::SqlCursor::ColumnType::INTEGER) {
        return cursor.GetInteger(TIME_COLUMN);
    }
    // The number at the front of the value; 0 if there is none.
    return std::strtoll(std::string(cursor.GetText(TIME_COLUMN)).c_str(), nullptr, 10);
}

// On failure `row` is left null.
bool HoldsJson(std::string_view extra, Json::Value& row)
{
    std::string error;
    if (!extra.empty() && ParseJson(extra, row, error)) {
        return true;
    }
    row = Json::Value();
    return false;
}

// True for the total of a statistic, which must not count as an event.
bool IsStatisticTotal(const Json::Value& extra)
{
    return MemberText(extra, "CASENAME") == "GAME_LAG_RATIO" && MemberText(extra, "FIELDNAME") == "TotalCount";
}

// Builds rows from the selected texts, some hundred at a time: SQLite and the JSON reader don't fit into the
// processor's first cache together, so that alternating between them for each row would be slower.
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

    /// Builds the rows of the texts that were added since the last call.
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
    /// True if a text was JSON, but no object.
    bool HasOtherJson() const { return mHasOtherJson; }

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
        } else if (!row.isObject()) {
            mHasOtherJson = true;
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
    std::string mTexts; // concatenated
    std::vector<Waiting> mWaiting;
    std::vector<std::string> mWithoutJson;
    bool mHasOtherJson = false;
};

void TellBadExtra(std::string_view words, std::string_view eventDbPath)
{
    TroubleWatch::Tell(Evidence::Trouble::Kind::BAD_EXTRA, words, {{}, eventDbPath});
}

// Logs why an `extra` is no JSON. False if it has text that could not be read.
bool TellExtraWithoutJson(const std::string& extra, const std::string& eventDbPath)
{
    static constexpr char NAME[] = "CommonPartDbHelper::ExtraStrToJson";
    if (extra.empty()) {
        FT::Log::GetInstance().Output(FT::LEVEL_DEBUG, "FUNc:%s: extra is empty.", NAME);
        return true;
    }
    Json::Value ignored;
    std::string error;
    ParseJson(extra, ignored, error); // fails again, now for its words
    FT::Log::GetInstance().Output(
        FT::LEVEL_ERROR, "FUNc:%s: jsonStr[%s] err. %s ", NAME, extra.c_str(), error.c_str());
    TellBadExtra(error, eventDbPath);
    return false;
}

} // namespace

bool QueryDataSet(const FT::sql::SqlDatabase& database, const std::string& sql, std::vector<Json::Value>& rows,
                  std::int64_t minTime)
{
    // Streams the rows: the selection need not be in memory twice, as text and as JSON.
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
        if (!database.GetHandle().budget->AllowsBytes(bytes)) {
            error = "query aborted"; // computed columns may be far larger than the file
            continue;
        }
        builder.Take(extra, time);
    }
    builder.Build();
    if (!cursor.IsOk()) {
        error = cursor.GetError();
    }
    if (!error.empty()) {
        // The same line as for every failing statement of the stores. Rows read before it stay.
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Execute sql failed: %s",
            "FT::sql::SqlOperator::Execute", error.c_str());
        StatementTrouble::Tell(error, database.GetHandle().path);
    }
    bool isEachRead = true;
    for (const std::string& extra : builder.GetTextsWithoutJson()) { // after the line of a failed statement
        isEachRead = TellExtraWithoutJson(extra, database.GetHandle().path) && isEachRead;
    }
    if (builder.HasOtherJson()) {
        TellBadExtra("no JSON object", database.GetHandle().path);
    }
    if (isEmpty) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_INFO, "FUNc:%s: event_info table record is empty.", "CommonPartDbHelper::QueryDataSet");
    }
    return error.empty() && isEachRead && !builder.HasOtherJson();
}

} // namespace SelectedRows
