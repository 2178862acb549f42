#include "arborist/stores/event_log/event_log_reader.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include "arborist/stores/event_log/event_query.h"
#include "arborist/stores/event_log/file_check.h"
#include "arborist/stores/event_log/log_state.h"
#include "arborist/stores/event_log/query_plan.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/stores/sql/sql_scan.h"
#include "arborist/utilities/time_util.h"

namespace {

using FT::sql::ScannedRow;
using FT::sql::SqlCursor;

// The join of EventQuery, forced to visit the tables in the order in which that query does. Keeps the rows that the query
// drops because they have no partners.
constexpr char FROM_TABLES[] =
    " from event_info left join event_info_flow on event_info._ID=event_info_flow._ID"
    " left join event_version on event_info.version_id=event_version._ID";
constexpr std::size_t MOST_ROWS = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t FLAT_VERSIONS = 65536;
// Least number of bytes of an event in the file.
constexpr std::int64_t SHORTEST_ROW = 16;
// Limit on the guess, as a file with holes may claim any size.
constexpr std::int64_t MOST_GUESSED_ROWS = 1 << 24;

template <typename Number>
bool Fits(std::int64_t value)
{
    return value >= std::numeric_limits<Number>::min() && value <= std::numeric_limits<Number>::max();
}

// Fits into 64 bits, and no rule can name an id as great.
constexpr double BEYOND_IDS = 1e12;

// The number that SQLite compares with the id of a query. Only a whole number is sure to be equal to it: text compares as
// the number that it begins with, or not at all.
template <typename Reading>
std::int64_t IdIn(const Reading& reading, bool isInteger)
{
    return isInteger ? reading.GetInteger(0)
                     : static_cast<std::int64_t>(std::clamp(reading.GetReal(0), -BEYOND_IDS, BEYOND_IDS));
}

// The whole number that `sql` returns; 0 if it returns none.
std::int64_t NumberOf(const FT::sql::Sqlite3Db& database, const std::string& sql)
{
    SqlCursor cursor(database, sql);
    return cursor.Step() && cursor.GetType(0) == SqlCursor::ColumnType::INTEGER ? cursor.GetInteger(0) : 0;
}

std::int64_t RowsThatFit(const FT::sql::Sqlite3Db& database)
{
    return NumberOf(database, "PRAGMA page_count") * NumberOf(database, "PRAGMA page_size") / SHORTEST_ROW;
}

// Guesses the number of rows: as many as there are row numbers from the first to the last, or as fit into the file.
// Reserving memory for them avoids growing, which would need the memory twice.
std::size_t GuessRowCount(const FT::sql::Sqlite3Db& database, const std::string& rowName)
{
    const std::string numbers = "(" + rowName + ") from event_info)";
    const std::int64_t span =
        NumberOf(database, "select (select max" + numbers + " - (select min" + numbers + " + 1");
    return static_cast<std::size_t>(
        std::clamp<std::int64_t>(span, 0, std::clamp<std::int64_t>(RowsThatFit(database), 0, MOST_GUESSED_ROWS)));
}

} // namespace

struct EventLogReader::Row {
    bool isFound; // a query finds the row, as it has an id and a time
    bool hasTime;
    bool isWhole; // all are whole numbers
    std::int64_t id;
    std::int64_t time;
    std::int64_t version;
    std::int64_t rowId;
};

EventLogReader::EventLogReader(const FT::sql::Sqlite3Db& database) : mDb(database)
{
    Clear();
    mNumberOfId.max_load_factor(0.8F);
}

std::shared_ptr<const EventLogSnapshot> EventLogReader::Read()
{
    const ReadTransaction transaction(mDb);
    const std::string query = EventQuery::TextFor(0, 0);
    if (!SqlCursor(mDb, query).IsReady()) {
        return nullptr;
    }
    mOrigin.rowName = QueryPlan::RowNameOfEvents(mDb);
    mOrigin.isInTableOrder = QueryPlan::IsScanOfEvents(mDb, query) && !mOrigin.rowName.empty();
    mOrigin.lastMoment = TimeUtil::GetLastMoment();
    mOrigin.isInTableOrder ? ReadInTableOrder() : ReadInAnyOrder();
    mNumberOfId = IdDictionary();
    mOrigin.dataVersion = ReadDataVersion(mDb);
    return std::make_shared<EventLogSnapshot>(std::move(mIds), std::move(mNeedsQuery), std::move(mIdOfRow),
        std::move(mColumns), std::move(mVersionNumbers), std::move(mDropped), std::move(mOrigin));
}

void EventLogReader::Clear()
{
    mIds.clear();
    mNumberOfId.clear();
    mNeedsQuery.clear();
    mIdOfRow.clear();
    mColumns = {};
    mVersionNumbers = {{"", EventLogSnapshot::UNNAMED_VERSION}};
    mVersions.clear();
    mOtherVersions.clear();
    mDropped.clear();
    mIsInOrder = true;
    mLastRowId = std::numeric_limits<std::int64_t>::min();
}

// Each query scans event_info as the pass does, so that only the look-ups of partners may depend on where they start.
void EventLogReader::ReadInTableOrder()
{
    FileCheck::Result partners = FileCheck::WorseOf(
        FileCheck::OfTable(mDb, "event_info_flow"), FileCheck::OfTable(mDb, "event_version"));
    const bool isRead = ReadInOnePass();
    if (!isRead) {
        Clear();
        ReadRowByRow();
    }
    if (partners.state == FileCheck::Result::State::DISORDER || !mIsInOrder) {
        mOrigin.damage = partners.message.empty() ? "rows of event_info are out of order" : std::move(partners.message);
        LeaveAllToQueries();
    } else if (partners.state != FileCheck::Result::State::SOUND) {
        // A search that starts nearby may meet an unreadable page behind the place where the row should be.
        LeaveDroppedToQueries();
    }
}

// Rows are found by an index, say, whose damage the pass would not meet.
void EventLogReader::ReadInAnyOrder()
{
    FileCheck::Result file = FileCheck::OfFile(mDb);
    if (file.state != FileCheck::Result::State::SOUND || !ReadInOnePass()) {
        Clear();
        ReadIds();
        mOrigin.damage = std::move(file.message);
    }
}

bool EventLogReader::ReadInOnePass()
{
    if (!ReadVersions()) {
        return false;
    }
    const bool hasRowIds = !mOrigin.rowName.empty();
    const std::size_t guess = hasRowIds ? GuessRowCount(mDb, mOrigin.rowName) : 0;
    mColumns.times.reserve(guess);
    mColumns.rowIds.reserve(guess);
    mColumns.versions.reserve(guess);
    mIdOfRow.reserve(guess);
    // Reads the text only to meet its damage here, as a query would.
    const std::string columns = "event_info.event_id, event_info_flow.occurrence_time, event_version._ID, " +
        (hasRowIds ? "event_info." + mOrigin.rowName : "null") + ", event_info.extra";
    std::string error;
    return FT::sql::ScanRows(mDb, columns, FROM_TABLES, [this](const ScannedRow& row) {
        // Get types first: reading a text as a number may change its type.
        const bool isWhole = row.IsInteger(0) && row.IsInteger(1) && row.IsInteger(2) && row.IsInteger(3);
        const bool isFound = isWhole || !(row.IsNull(0) || row.IsNull(1) || row.IsNull(2));
        const bool hasTime = !row.IsNull(1);
        const std::int64_t id = IdIn(row, row.IsInteger(0));
        TakeRow({isFound, hasTime, isWhole, id, row.GetInteger(1), row.GetInteger(2), row.GetInteger(3)});
    }, error);
}

bool EventLogReader::ReadVersions()
{
    std::string error;
    return FT::sql::ScanRows(mDb, "_ID, VERSION_NAME", "from event_version", [this](const ScannedRow& row) {
        const bool isNumber = row.IsInteger(0);
        TakeVersion(row.GetInteger(0), isNumber, std::string(row.GetText(1)));
    }, error);
}

// Visits event_info like the query for an id without rows, so that an error that ends this ends every query. If the
// partners or the text of a row can't be read, its id is left to its own query.
void EventLogReader::ReadRowByRow()
{
    using Type = SqlCursor::ColumnType;
    SqlCursor events(mDb, "select event_id, " + mOrigin.rowName + " from event_info not indexed");
    SqlCursor partners(mDb, std::string("select event_info.event_id, event_info_flow.occurrence_time, "
        "event_version._ID, event_version.VERSION_NAME, event_info.extra") + FROM_TABLES + " where event_info." +
        mOrigin.rowName + " = ?1");
    while (events.Step()) {
        const Type type = events.GetType(0);
        const std::int64_t id = IdIn(events, type == Type::INTEGER);
        const std::int64_t rowId = events.GetInteger(1);
        if (type == Type::NONE || !Fits<std::int32_t>(id)) {
            continue;
        }
        partners.Restart(rowId);
        bool isThere = false;
        while (partners.Step()) {
            isThere = true;
            const bool isWhole = type == Type::INTEGER && partners.GetType(1) == Type::INTEGER &&
                partners.GetType(2) == Type::INTEGER;
            const bool isFound = partners.GetType(1) != Type::NONE && partners.GetType(2) != Type::NONE;
            TakeVersion(partners.GetInteger(2), isWhole, std::string(partners.GetText(3)));
            TakeRow({isFound, partners.GetType(1) != Type::NONE, isWhole, id, partners.GetInteger(1), partners.GetInteger(2), rowId});
        }
        if (!isThere || !partners.IsOk()) {
            mNeedsQuery[NumberOfId(static_cast<std::int32_t>(id))] = true;
        }
    }
    mOrigin.breakError = events.GetError();
}

void EventLogReader::LeaveDroppedToQueries()
{
    for (const auto& [id, time] : mDropped) {
        mNeedsQuery[NumberOfId(id)] = true;
    }
}

void EventLogReader::LeaveAllToQueries()
{
    LeaveDroppedToQueries();
    mNeedsQuery.assign(mNeedsQuery.size(), true);
    mIdOfRow.clear();
    mColumns = {};
}

// Indexes are read from both ends, as one of their rows may tell another id than the table's.
void EventLogReader::ReadIds()
{
    mOrigin.isEachIdAsked = true;
    mOrigin.areAllIdsKnown = ReadIdsOfTable() || ReadIdsFrom("event_info");
    SqlCursor indexes(mDb, "select replace(name, '\"', '\"\"') from sqlite_master"
        " where type = 'index' and tbl_name = 'event_info' collate nocase");
    while (indexes.Step()) {
        const std::string from = "event_info indexed by \"" + std::string(indexes.GetText(0)) + "\" order by event_id";
        if (!ReadIdsFrom(from)) {
            ReadIdsFrom(from + " desc");
        }
    }
}

// Reads the id of each row that a search for its row number finds, as the query for an id does in the end, whatever leads
// it there. Behind an unreadable page only trying tells where the readable rows go on. False if that takes too long.
bool EventLogReader::ReadIdsOfTable()
{
    const std::string flow = "select rowid from event_info_flow order by rowid";
    const std::int64_t first = std::min<std::int64_t>(NumberOf(mDb, flow + " limit 1"), 1);
    const std::int64_t lastOfFlow = NumberOf(mDb, flow + " desc limit 1");
    const std::int64_t last = lastOfFlow == 0 ? RowsThatFit(mDb) : lastOfFlow; // no query finds a row without a flow
    SqlCursor rows(mDb, "select event_id, rowid from event_info not indexed where rowid >= ?1 order by rowid");
    std::int64_t next = std::numeric_limits<std::int64_t>::min();
    for (std::int64_t tries = 0; rows.IsReady() && tries < MOST_GUESSED_ROWS; ++tries) {
        rows.Restart(next);
        while (rows.Step()) {
            TakeId(rows);
            next = rows.GetInteger(1);
        }
        if (rows.IsOk() || next >= last) {
            return true;
        }
        next = std::max(next + 1, first);
    }
    return false;
}

// True if all were read.
bool EventLogReader::ReadIdsFrom(const std::string& from)
{
    SqlCursor ids(mDb, "select event_id from " + from);
    while (ids.Step()) {
        TakeId(ids);
    }
    return ids.IsOk();
}

void EventLogReader::TakeId(const SqlCursor& row)
{
    const std::int64_t id = IdIn(row, row.GetType(0) == SqlCursor::ColumnType::INTEGER);
    if (Fits<std::int32_t>(id)) {
        mNeedsQuery[NumberOfId(static_cast<std::int32_t>(id))] = true;
    }
}

EventLogReader::Version& EventLogReader::VersionOf(std::int64_t rowNumber)
{
    if (rowNumber < 0 || rowNumber >= FLAT_VERSIONS) {
        return mOtherVersions[rowNumber];
    }
    const auto place = static_cast<std::size_t>(rowNumber);
    if (place >= mVersions.size()) {
        mVersions.resize(place + 1);
    }
    return mVersions[place];
}

void EventLogReader::TakeVersion(std::int64_t rowNumber, bool isNumber, const std::string& name)
{
    const bool isTooMany = !Fits<std::uint16_t>(static_cast<std::int64_t>(mVersionNumbers.size())) &&
        mVersionNumbers.count(name) == 0;
    const auto next = static_cast<std::uint16_t>(mVersionNumbers.size());
    const std::uint16_t number =
        isTooMany ? EventLogSnapshot::UNNAMED_VERSION : mVersionNumbers.emplace(name, next).first->second;
    if (!isNumber) {
        return; // the rows of this version have no number for it, either
    }
    Version& version = VersionOf(rowNumber);
    version.isAmbiguous = version.isAmbiguous || isTooMany || (version.isKnown && version.number != number);
    version.isKnown = true;
    version.number = number;
}

std::uint32_t EventLogReader::NumberOfId(std::int32_t id)
{
    const auto next = static_cast<std::uint32_t>(mIds.size());
    const auto [found, isNew] = mNumberOfId.try_emplace(id, next);
    if (isNew) {
        mIds.push_back(id);
        mNeedsQuery.push_back(false);
    }
    return found->second;
}

void EventLogReader::TakeRow(const Row& row)
{
    mIsInOrder = mIsInOrder && mLastRowId < row.rowId;
    mLastRowId = row.rowId;
    // No query finds a row without an id, a time or partners, and no rule can name an id beyond 32 bits.
    if (!row.isFound || !Fits<std::int32_t>(row.id)) {
        if (Fits<std::int32_t>(row.id)) {
            const std::int64_t time = row.hasTime ? row.time : std::numeric_limits<std::int64_t>::max();
            std::int64_t& latest = mDropped.try_emplace(static_cast<std::int32_t>(row.id), time).first->second;
            latest = std::max(latest, time);
        }
        return;
    }
    const std::uint32_t id = NumberOfId(static_cast<std::int32_t>(row.id));
    if (row.isWhole && row.time > mOrigin.lastMoment) {
        return;
    }
    const bool fits = Fits<std::uint32_t>(row.time) && Fits<std::uint32_t>(row.rowId) && mIdOfRow.size() != MOST_ROWS;
    const Version version = row.isWhole ? VersionOf(row.version) : Version();
    if (!row.isWhole || !fits || !version.isKnown || version.isAmbiguous) {
        mNeedsQuery[id] = true;
        return;
    }
    mColumns.times.push_back(static_cast<std::uint32_t>(row.time));
    mColumns.rowIds.push_back(static_cast<std::uint32_t>(row.rowId));
    mColumns.versions.push_back(version.number);
    mIdOfRow.push_back(id); // last, so that if memory runs out only complete rows count
}
