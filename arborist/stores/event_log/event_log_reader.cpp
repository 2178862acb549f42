#include "arborist/stores/event_log/event_log_reader.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include "arborist/stores/event_log/event_query.h"
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

// The whole number that `sql` returns; 0 if it returns none.
std::int64_t NumberOf(const FT::sql::Sqlite3Db& database, const std::string& sql)
{
    SqlCursor cursor(database, sql);
    return cursor.Step() && cursor.GetType(0) == SqlCursor::ColumnType::INTEGER ? cursor.GetInteger(0) : 0;
}

// Guesses the number of rows: as many as there are row numbers from the first to the last, or as fit into the file.
// Reserving memory for them avoids growing, which would need the memory twice.
std::size_t GuessRowCount(const FT::sql::Sqlite3Db& database, const std::string& rowName)
{
    const std::string numbers = "(" + rowName + ") from event_info)";
    const std::int64_t span =
        NumberOf(database, "select (select max" + numbers + " - (select min" + numbers + " + 1");
    const std::int64_t fitting =
        NumberOf(database, "PRAGMA page_count") * NumberOf(database, "PRAGMA page_size") / SHORTEST_ROW;
    return static_cast<std::size_t>(
        std::clamp<std::int64_t>(span, 0, std::clamp<std::int64_t>(fitting, 0, MOST_GUESSED_ROWS)));
}

} // namespace

struct EventLogReader::Row {
    bool isFound; // a query finds the row, as it has an id and a time
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
    const bool isRead = (mOrigin.isInTableOrder || IsFileSound()) && ReadInOnePass();
    if (!isRead) {
        Clear();
        mOrigin.isInTableOrder ? ReadRowByRow() : ReadIds();
    }
    if (!isRead || (HasDoubts() && !IsFileSound())) {
        DoubtRows();
    }
    mNumberOfId = IdDictionary();
    mOrigin.dataVersion = ReadDataVersion(mDb);
    return std::make_shared<EventLogSnapshot>(std::move(mIds), std::move(mNeedsQuery), std::move(mIdOfRow),
        std::move(mColumns), std::move(mVersionNumbers), std::move(mOrigin));
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
    mIsInOrder = true;
    mLastRowId = std::numeric_limits<std::int64_t>::min();
}

// Also false for damage that no query would meet, as only running the queries could show that.
bool EventLogReader::IsFileSound() const
{
    SqlCursor cursor(mDb, "PRAGMA integrity_check");
    return cursor.Step() && cursor.GetText(0) == "ok";
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
        TakeRow({isFound, isWhole, row.GetInteger(0), row.GetInteger(1), row.GetInteger(2), row.GetInteger(3)});
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
        const std::int64_t id = events.GetInteger(0);
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
            TakeRow({isFound, isWhole, id, partners.GetInteger(1), partners.GetInteger(2), rowId});
        }
        if (!isThere || !partners.IsOk()) {
            mNeedsQuery[NumberOfId(static_cast<std::int32_t>(id))] = true;
        }
    }
    mOrigin.breakError = events.GetError();
}

// Whether the pass met something that an undamaged log as the service leaves it doesn't have.
bool EventLogReader::HasDoubts() const
{
    return !mDropped.empty() || !mIsInOrder;
}

// In a damaged page SQLite may miss a row without an error, and find it when it reaches the page another way.
void EventLogReader::DoubtRows()
{
    if (!mIsInOrder) {
        Clear();
        ReadIds();
    }
    for (const std::int32_t id : mDropped) {
        mNeedsQuery[NumberOfId(id)] = true;
    }
}

// Reads from both ends of the index, if there is one, and of the table, so that one unreadable page hides no id from
// all four passes.
void EventLogReader::ReadIds()
{
    mOrigin.isEachIdAsked = true;
    for (const std::string order : {" order by event_id", " order by event_id desc", " not indexed order by rowid",
             " not indexed order by rowid desc"}) {
        SqlCursor ids(mDb, "select event_id from event_info" + order);
        while (ids.Step()) {
            const std::int64_t id = ids.GetInteger(0);
            if (Fits<std::int32_t>(id)) {
                mNeedsQuery[NumberOfId(static_cast<std::int32_t>(id))] = true;
            }
        }
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
            mDropped.insert(static_cast<std::int32_t>(row.id));
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
