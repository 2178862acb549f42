#include "arborist/stores/event_log/alarm_rule_db_helper.h"

#include <algorithm>
#include <array>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/stores/sql/simple_database_helper.h"
#include "arborist/stores/sql/sql_text.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/file_util.h"
#include "arborist/utilities/time_util.h"

namespace {

constexpr char GET_EVENT_LIST[] = "AlarmRuleDbHelper::GetEventList";

constexpr char EVENT_ID[] = "event_id";
constexpr char EXTRA[] = "extra";
constexpr char OCCURRENCE_TIME[] = "occurrence_time";
constexpr char VERSION_NAME[] = "VERSION_NAME";

// The rows are paired by their own ids; the derived tables pair them by event_pid. Both are as the service means them.
constexpr char EVENT_QUERY[] =
    "select event_info.event_id,event_info.extra,event_info_flow.occurrence_time,event_version.VERSION_NAME"
    " from event_info join event_info_flow on event_info._ID=event_info_flow._ID"
    " join event_version on event_info.version_id=event_version._ID where event_id = %d and occurrence_time >= %lld";
// Room for the query with both numbers at their longest.
constexpr int QUERY_SIZE = sizeof(EVENT_QUERY) + 64;

using EventFields = std::array<FT::sql::SqlField, 5>;

// The columns of the query. There is no table of that name: the object holds what the query finds.
EventFields& EventInfoUnionFields()
{
    static EventFields fields = [] {
        EventFields made{FT::sql::SqlField(EVENT_ID, FT::sql::TypeInteger, FT::sql::FlagNone, FT::sql::FlagNotNull),
            FT::sql::SqlField(EXTRA, FT::sql::TypeText), FT::sql::SqlField(OCCURRENCE_TIME, FT::sql::TypeInteger),
            FT::sql::SqlField(VERSION_NAME, FT::sql::TypeText), FT::sql::SqlField(FT::sql::FieldUseEnd)};
        // Numbered here, once, so that no table has to write into what other threads read.
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

} // namespace

AlarmRuleDbHelper::AlarmRuleDbHelper() : mIndex(mDatabase.GetHandle()), mMembers(mIndex, mDatabase.GetHandle())
{
    InitDatabaseHelper();
}

AlarmRuleDbHelper::~AlarmRuleDbHelper()
{
    CleanDatabaseHelper();
}

void AlarmRuleDbHelper::InitDatabaseHelper()
{
    OpenDatabase();
    InitEventInfoUnionTable();
}

bool AlarmRuleDbHelper::OpenDatabase()
{
    const std::string path = DevicePaths::EventLog();
    // Ask first: SQLite would create the missing file, and an empty log passes for a quiet device.
    if (!FileUtil::FileExists(path)) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_WARN, "FUNc:%s: log.db is not exist.", "AlarmRuleDbHelper::OpenDatabase");
        return false;
    }
    if (!mDatabase.Open(path)) {
        return false;
    }
    // The service's own changes may wait beside the file; closing must not move them in.
    mDatabase.Restrict(FT::sql::SqlAccess::READ_ONLY);
    return true;
}

void AlarmRuleDbHelper::InitEventInfoUnionTable()
{
    EventFields& fields = EventInfoUnionFields();
    mEventInfoUnionTable = std::make_unique<FT::sql::SqlTable>(
        mDatabase.GetHandle(), "event_info_union", fields.data(), fields.size());
}

void AlarmRuleDbHelper::CleanDatabaseHelper()
{
    mMembers.Clear(); // its statement must be gone before the connection
    if (mDatabase.IsOpen()) {
        mDatabase.Close();
    }
    mEventInfoUnionTable.reset();
}

bool AlarmRuleDbHelper::EnsureOpen()
{
    if (mDatabase.IsOpen() || OpenDatabase()) {
        return true;
    }
    FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: Open log.db fail.", GET_EVENT_LIST);
    return false;
}

AlarmRuleDbHelper::EventList AlarmRuleDbHelper::GetEventList(
    std::int32_t eventId, std::int64_t startTime, bool fromUpdate)
{
    if (!EnsureOpen()) {
        return {};
    }
    const std::uint64_t count = RunQuery(eventId, startTime);
    if (count == 0) {
        return {};
    }
    TakeVersionName();
    TellVersionName();
    return GetEventListFromDb(fromUpdate, mVersionName, count);
}

std::uint64_t AlarmRuleDbHelper::RunQuery(std::int32_t eventId, std::int64_t startTime)
{
    char query[QUERY_SIZE];
    FT::sql::Sqlite3Snprintf(QUERY_SIZE, query, EVENT_QUERY, eventId, static_cast<long long>(startTime));
    return FT::sql::SimpleDatabaseHelper().GetRecordCountByFullSql(*mEventInfoUnionTable, query);
}

void AlarmRuleDbHelper::TakeVersionName()
{
    mVersionName = FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(Settings::VERSION_NAME, "");
}

void AlarmRuleDbHelper::TellVersionName() const
{
    FT::Log::GetInstance().Output(FT::LEVEL_DEBUG, "FUNc:%s: version name: %s", GET_EVENT_LIST, mVersionName.c_str());
}

AlarmRuleDbHelper::EventList AlarmRuleDbHelper::GetEventListFromDb(
    bool fromUpdate, const std::string& versionName, std::uint64_t recordCount)
{
    EventList events;
    const FT::sql::SimpleDatabaseHelper helper;
    const auto valueOf = [&](std::uint64_t index, const std::string& column) {
        return helper.GetFieldValueByIndex(*mEventInfoUnionTable, index, recordCount, column);
    };
    for (std::uint64_t index = 0; index < recordCount; ++index) {
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

AlarmRuleDbHelper::EventList AlarmRuleDbHelper::QueryRows(std::int32_t eventId)
{
    const std::uint64_t count = RunQuery(eventId, mQuery.startTime);
    return GetEventListFromDb(mQuery.fromUpdate, mVersionName, count);
}

EventLogIndex::State AlarmRuleDbHelper::RefreshIndex()
{
    const std::uint64_t before = mIndex.GetGeneration();
    const EventLogIndex::State state = mIndex.Refresh();
    if (mIndex.GetGeneration() != before) {
        mMembers.Clear();
    }
    return state;
}

bool AlarmRuleDbHelper::VisitEvents(const Query& query, const Visitor& visitor)
{
    mQuery = query;
    TakeVersionName();
    std::int64_t firstId = query.firstId;
    while (!EnsureOpen()) {
        ++firstId;
        if (firstId > query.lastId || firstId - query.firstId >= LONGEST_UNREADABLE_RANGE) {
            return false;
        }
    }
    switch (RefreshIndex()) {
    case EventLogIndex::State::READY:
        VisitEntries(firstId, visitor);
        return true;
    case EventLogIndex::State::BROKEN_OFF:
        VisitBrokenOff(firstId, visitor);
        return true;
    default:
        return VisitUnreadable(firstId, visitor);
    }
}

bool AlarmRuleDbHelper::VisitEntries(std::int64_t firstId, const Visitor& visitor)
{
    const EventLogIndex::Filter filter = mQuery.fromUpdate ? mIndex.FilterFor(mQuery.startTime, mVersionName)
                                                           : EventLogIndex::FilterFor(mQuery.startTime);
    const std::size_t first = mIndex.FirstEntryFrom(firstId);
    const std::size_t end = mIndex.FirstEntryFrom(std::int64_t{mQuery.lastId} + 1);
    if (mQuery.withMembers) {
        mMembers.Prepare(first, end, mQuery.startTime);
    }
    const EventLogIndex::Counts found = mIndex.CountsFor(EventLogIndex::FilterFor(mQuery.startTime));
    const EventLogIndex::Counts counts = mIndex.CountsFor(filter);
    for (std::size_t number = first; number < end; ++number) {
        if (VisitEntry(number, filter, found, counts, visitor)) {
            return true;
        }
    }
    return false;
}

bool AlarmRuleDbHelper::VisitEntry(std::size_t entryNumber, const EventLogIndex::Filter& filter,
    const EventLogIndex::Counts& found, const EventLogIndex::Counts& counts, const Visitor& visitor)
{
    const EventLogIndex::Entry entry = mIndex.GetEntry(entryNumber);
    if (entry.needsQuery) {
        return VisitByQuery(entry.eventId, visitor);
    }
    const std::size_t foundCount = found.Of(entryNumber);
    if (foundCount == 0) {
        return false;
    }
    TellVersionName();
    mPositions.clear();
    EventRows rows(*this,
        {mIndex, mMembers, mPositions, entryNumber, EventLogIndex::RangeOf(entry, foundCount), filter}, foundCount,
        counts.Of(entryNumber));
    return visitor(rows);
}

bool AlarmRuleDbHelper::VisitByQuery(std::int32_t eventId, const Visitor& visitor)
{
    const std::uint64_t count = RunQuery(eventId, mQuery.startTime);
    if (count == 0) {
        return false;
    }
    TellVersionName();
    EventRows rows(*this, eventId, GetEventListFromDb(mQuery.fromUpdate, mVersionName, count), count);
    return visitor(rows);
}

// Each id asks for itself and says why it fails; should the log become readable on the way, the rest goes fast.
bool AlarmRuleDbHelper::VisitUnreadable(std::int64_t firstId, const Visitor& visitor)
{
    const std::int64_t lastId = std::min<std::int64_t>(mQuery.lastId, firstId + LONGEST_UNREADABLE_RANGE - 1);
    for (std::int64_t id = firstId; id <= lastId; ++id) {
        if (RefreshIndex() == EventLogIndex::State::READY) {
            VisitEntries(id, visitor);
            return true;
        }
        if (VisitByQuery(static_cast<std::int32_t>(id), visitor)) {
            return true;
        }
    }
    return false;
}

// A log that is damaged in the middle: the rows before count, as they do in a query that fails on its way, and each id
// has the line of that failure.
void AlarmRuleDbHelper::VisitBrokenOff(std::int64_t firstId, const Visitor& visitor)
{
    const std::int64_t wholeLastId = mQuery.lastId;
    const std::int64_t lastId = std::min(wholeLastId, firstId + LONGEST_UNREADABLE_RANGE - 1);
    for (std::int64_t id = firstId; id <= lastId; ++id) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Execute sql failed: %s",
            "FT::sql::SqlOperator::Execute", mIndex.GetError().c_str());
        StatementTrouble::Tell(mIndex.GetError());
        mQuery.lastId = static_cast<std::int32_t>(id);
        if (VisitEntries(id, visitor)) {
            return;
        }
    }
    mQuery.lastId = static_cast<std::int32_t>(wholeLastId);
}
