#include "arborist/stores/event_log/event_query.h"

#include <array>
#include <limits>

#include "arborist/stores/sql/simple_database_helper.h"
#include "arborist/stores/sql/sql_text.h"
#include "arborist/utilities/time_util.h"

namespace {

constexpr char EVENT_ID[] = "event_id";
constexpr char EXTRA[] = "extra";
constexpr char OCCURRENCE_TIME[] = "occurrence_time";
constexpr char VERSION_NAME[] = "VERSION_NAME";

// Joins the tables by their own ids; the derived tables join by event_pid. The monitoring service supports both.
constexpr char EVENT_QUERY[] =
    "select event_info.event_id,event_info.extra,event_info_flow.occurrence_time,event_version.VERSION_NAME"
    " from event_info %sjoin event_info_flow on event_info._ID=event_info_flow._ID"
    " %sjoin event_version on event_info.version_id=event_version._ID where event_id = %d and occurrence_time >= %lld";
// Room for the query with two numbers of the greatest length.
constexpr int QUERY_SIZE = sizeof(EVENT_QUERY) + 64;

using EventFields = std::array<FT::sql::SqlField, 5>;

// The columns of the query. No table of that name exists: the object keeps the result of the query.
EventFields& EventInfoUnionFields()
{
    static EventFields fields = [] {
        EventFields made{FT::sql::SqlField(EVENT_ID, FT::sql::TypeInteger, FT::sql::FlagNone, FT::sql::FlagNotNull),
            FT::sql::SqlField(EXTRA, FT::sql::TypeText), FT::sql::SqlField(OCCURRENCE_TIME, FT::sql::TypeInteger),
            FT::sql::SqlField(VERSION_NAME, FT::sql::TypeText), FT::sql::SqlField(FT::sql::FieldUseEnd)};
        // Number the fields here once, so that no table writes into fields that other threads read.
        for (std::size_t position = 0; position + 1 < made.size(); ++position) {
            made[position].SetIndex(position);
        }
        return made;
    }();
    return fields;
}

std::string TextOf(const FT::sql::SqlValue* value)
{
    return value == nullptr ? std::string() : value->AsString();
}

std::string TextOfQuery(const char* join, std::int32_t eventId, std::int64_t startTime)
{
    char query[QUERY_SIZE];
    FT::sql::Sqlite3Snprintf(
        QUERY_SIZE, query, EVENT_QUERY, join, join, eventId, static_cast<long long>(startTime));
    const std::int64_t last = TimeUtil::GetLastMoment();
    return last == std::numeric_limits<std::int64_t>::max()
        ? query : std::string(query) + " and occurrence_time <= " + std::to_string(last);
}

} // namespace

EventQuery::EventQuery(const FT::sql::Sqlite3Db& database)
    : mEventInfoUnion(database, "event_info_union", EventInfoUnionFields().data(), EventInfoUnionFields().size())
{
}

std::string EventQuery::TextFor(std::int32_t eventId, std::int64_t startTime)
{
    return TextOfQuery("", eventId, startTime);
}

void EventQuery::Run(std::int32_t eventId, std::int64_t startTime)
{
    RunText(TextFor(eventId, startTime));
}

// A cross join visits the tables in their order, whatever the condition is.
void EventQuery::RunAmong(std::int32_t eventId, std::int64_t startTime, const std::string& condition)
{
    RunText(TextOfQuery("cross ", eventId, startTime) + condition);
}

void EventQuery::RunText(const std::string& text)
{
    mFound = FT::sql::SimpleDatabaseHelper().GetRecordCountByFullSql(mEventInfoUnion, text);
    mIsWhole = mEventInfoUnion.IsOk();
}

EventQuery::EventList EventQuery::GetEvents(bool fromUpdate, const std::string& versionName) const
{
    EventList events;
    const FT::sql::SimpleDatabaseHelper helper;
    const auto valueOf = [&](std::uint64_t index, const std::string& column) {
        return helper.GetFieldValueByIndex(mEventInfoUnion, index, mFound, column);
    };
    for (std::uint64_t index = 0; index < mFound; ++index) {
        const std::string rowVersion = TextOf(valueOf(index, VERSION_NAME));
        // A row that names no version counts for every version.
        if (fromUpdate && !rowVersion.empty() && rowVersion != versionName) {
            continue;
        }
        const FT::sql::SqlValue* const id = valueOf(index, EVENT_ID);
        const FT::sql::SqlValue* const time = valueOf(index, OCCURRENCE_TIME);
        events.push_back(std::make_shared<LogEvent>(
            id == nullptr ? 0 : static_cast<std::int32_t>(id->AsInteger()),
            time == nullptr ? std::string() : TimeUtil::GetFormatTime(time->AsInteger()),
            TextOf(valueOf(index, EXTRA))));
    }
    return events;
}
