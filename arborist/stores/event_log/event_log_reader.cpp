#include "arborist/stores/event_log/event_log_reader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "arborist/stores/event_log/event_id.h"
#include "arborist/stores/event_log/event_query.h"
#include "arborist/stores/event_log/file_check.h"
#include "arborist/stores/event_log/log_state.h"
#include "arborist/stores/event_log/query_plan.h"
#include "arborist/stores/event_log/snapshot_builder.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/stores/sql/sql_scan.h"
#include "arborist/utilities/time_util.h"

namespace {

using FT::sql::ScannedRow;
using FT::sql::SqlCursor;
using FT::sql::Sqlite3Db;
using Origin = EventLogSnapshot::Origin;

// The join of EventQuery, forced to visit the tables in the order in which that query does. Keeps the rows that the query
// drops because they have no partners.
constexpr char FROM_EVENTS[] = " from event_info left join event_info_flow on event_info._ID=event_info_flow._ID";
constexpr char JOIN_VERSION[] = " left join event_version on event_info.version_id=event_version._ID";
// Least number of bytes of an event in the file.
constexpr std::int64_t SHORTEST_ROW = 16;
// Limit on the guess, as a file with holes may claim any size.
constexpr std::int64_t MOST_GUESSED_ROWS = 1 << 24;
// How many reads more than rows fit into the file may go into finding the readable rows of a damaged table.
constexpr std::int64_t SPARE_READS = 1 << 16;

// The whole number that `sql` returns; 0 if it returns none.
std::int64_t NumberOf(const Sqlite3Db& database, const std::string& sql)
{
    SqlCursor cursor(database, sql);
    return cursor.Step() && cursor.GetType(0) == SqlCursor::ColumnType::INTEGER ? cursor.GetInteger(0) : 0;
}

std::int64_t RowsThatFit(const Sqlite3Db& database)
{
    return NumberOf(database, "PRAGMA page_count") * NumberOf(database, "PRAGMA page_size") / SHORTEST_ROW;
}

// Guesses the number of rows: as many as there are row numbers from the first to the last, or as fit into the file.
std::size_t GuessRowCount(const Sqlite3Db& database, const std::string& rowName)
{
    const std::string numbers = "(" + rowName + ") from event_info)";
    const std::int64_t span =
        NumberOf(database, "select (select max" + numbers + " - (select min" + numbers + " + 1");
    return static_cast<std::size_t>(
        std::clamp<std::int64_t>(span, 0, std::clamp<std::int64_t>(RowsThatFit(database), 0, MOST_GUESSED_ROWS)));
}

bool ReadVersions(const Sqlite3Db& database, SnapshotBuilder& builder)
{
    std::string error;
    return FT::sql::ScanRows(database, "_ID, VERSION_NAME", "from event_version", [&builder](const ScannedRow& row) {
        const bool isNumber = row.IsInteger(0);
        builder.AddVersion(row.GetInteger(0), isNumber, std::string(row.GetText(1)));
    }, error);
}

// How the pass finds the version of a row.
enum class VersionSearch {
    BY_NUMBER, // among the row numbers that were read: as a search in a table in order, in less time
    BY_JOIN,
};

// The pass. Reads the text only to meet its damage here, as a query would. Nothing if the log can't be read in this way;
// nothing, too, if a version would have to be searched by what is no whole number.
std::optional<SnapshotBuilder> ReadInOnePass(const Sqlite3Db& database, const Origin& origin, VersionSearch search)
{
    SnapshotBuilder builder(origin.lastMoment);
    const bool hasRowIds = !origin.rowName.empty();
    if (!ReadVersions(database, builder)) {
        return std::nullopt;
    }
    builder.Reserve(hasRowIds ? GuessRowCount(database, origin.rowName) : 0);
    const bool isByNumber = search == VersionSearch::BY_NUMBER;
    const std::string columns = std::string("event_info.event_id, event_info_flow.occurrence_time, ") +
        (isByNumber ? "event_info.version_id, " : "event_version._ID, ") +
        (hasRowIds ? "event_info." + origin.rowName : "null") + ", event_info.extra";
    bool hasOddVersions = false;
    std::string error;
    const bool isRead = FT::sql::ScanRows(database, columns,
        std::string(FROM_EVENTS) + (isByNumber ? "" : JOIN_VERSION), [&](const ScannedRow& row) {
            // Get types first: reading a text as a number may change its type.
            const bool isIdWhole = row.IsInteger(0);
            const bool isVersionWhole = row.IsInteger(2);
            const bool isWhole = isIdWhole && row.IsInteger(1) && isVersionWhole && row.IsInteger(3);
            const bool isThere = isWhole || !(row.IsNull(0) || row.IsNull(1) || row.IsNull(2));
            const bool hasTime = isWhole || !row.IsNull(1);
            hasOddVersions = hasOddVersions || (!isVersionWhole && !row.IsNull(2));
            const std::int64_t version = row.GetInteger(2);
            builder.AddRow({isThere && (!isByNumber || builder.HasVersion(version)), hasTime, isWhole,
                EventIdIn(row, isIdWhole), row.GetInteger(1), version, row.GetInteger(3)});
        }, error);
    return isRead && !(isByNumber && hasOddVersions) ? std::optional(std::move(builder)) : std::nullopt;
}

// Visits event_info like the query for an id without rows, so that an error that ends this ends every query. If the
// partners or the text of a row can't be read, its id is left to its own query.
SnapshotBuilder ReadRowByRow(const Sqlite3Db& database, Origin& origin)
{
    using Type = SqlCursor::ColumnType;
    SnapshotBuilder builder(origin.lastMoment);
    SqlCursor events(database, "select event_id, " + origin.rowName + " from event_info not indexed");
    SqlCursor partners(database, std::string("select event_info.event_id, event_info_flow.occurrence_time, "
        "event_version._ID, event_version.VERSION_NAME, event_info.extra") + FROM_EVENTS + JOIN_VERSION +
        " where event_info." + origin.rowName + " = ?1");
    while (events.Step()) {
        const Type type = events.GetType(0);
        const std::optional<std::int32_t> id = EventIdOf(events);
        const std::int64_t rowId = events.GetInteger(1);
        if (type == Type::NONE || !id) {
            continue;
        }
        partners.Restart(rowId);
        bool isThere = false;
        while (partners.Step()) {
            isThere = true;
            const bool hasTime = partners.GetType(1) != Type::NONE;
            const bool isWhole = type == Type::INTEGER && partners.GetType(1) == Type::INTEGER &&
                partners.GetType(2) == Type::INTEGER;
            builder.AddVersion(partners.GetInteger(2), isWhole, std::string(partners.GetText(3)));
            builder.AddRow({hasTime && partners.GetType(2) != Type::NONE, hasTime, isWhole, *id,
                partners.GetInteger(1), partners.GetInteger(2), rowId});
        }
        if (!isThere || !partners.IsOk()) {
            builder.LeaveToQuery(*id);
        }
    }
    origin.breakError = events.GetError();
    return builder;
}

// Each query scans event_info as the pass does, so that only the look-ups of partners may depend on where they start.
SnapshotBuilder ReadInTableOrder(const Sqlite3Db& database, Origin& origin)
{
    using State = FileCheck::Result::State;
    FileCheck::Result partners = FileCheck::WorseOf(
        FileCheck::OfTable(database, "event_info_flow"), FileCheck::OfTable(database, "event_version"));
    auto rows = ReadInOnePass(database, origin, VersionSearch::BY_NUMBER);
    rows = rows ? std::move(rows) : ReadInOnePass(database, origin, VersionSearch::BY_JOIN);
    const bool hasPassed = rows.has_value();
    SnapshotBuilder builder = hasPassed ? std::move(*rows) : ReadRowByRow(database, origin);
    origin.canSearchEvents = builder.IsInOrder();
    origin.damage = partners.state == State::DISORDER ? std::move(partners.message)
        : builder.IsInOrder() ? "" : "rows of event_info are out of order";
    if (partners.state == State::DISORDER || (!hasPassed && !builder.IsInOrder())) {
        builder.LeaveAllToQueries();
    } else if (!builder.IsInOrder()) {
        builder.LeaveUnorderedToQueries();
    } else if (partners.state != State::SOUND) {
        // A search that starts nearby may meet an unreadable page behind the place where the row should be.
        builder.LeaveDroppedToQueries();
    }
    return builder;
}

// True if all rows were read.
bool ReadIds(const Sqlite3Db& database, const std::string& from, SnapshotBuilder& builder)
{
    SqlCursor ids(database, "select event_id from " + from);
    while (ids.Step()) {
        if (const auto id = EventIdOf(ids)) {
            builder.LeaveToQuery(*id);
        }
    }
    return ids.IsOk();
}

// Reads the id of each row that a search for its row number finds, as the query for an id does in the end, whatever leads
// it there. Behind an unreadable page it tries row numbers until a row can be read. False if that takes too long: where
// pages are out of order, each try may read the same rows again.
bool ReadIdsByRowNumber(const Sqlite3Db& database, SnapshotBuilder& builder)
{
    const std::string flow = "select rowid from event_info_flow order by rowid";
    const std::int64_t first = std::min<std::int64_t>(NumberOf(database, flow + " limit 1"), 1);
    const std::int64_t lastOfFlow = NumberOf(database, flow + " desc limit 1");
    const std::int64_t fitting = RowsThatFit(database);
    // No query finds a row without a flow.
    const std::int64_t last = lastOfFlow == 0 ? fitting : lastOfFlow;
    SqlCursor rows(database, "select event_id, rowid from event_info not indexed where rowid >= ?1 order by rowid");
    std::int64_t next = std::numeric_limits<std::int64_t>::min();
    for (std::int64_t readsLeft = fitting + SPARE_READS; rows.IsReady();) {
        const std::int64_t start = next;
        rows.Restart(start);
        while (readsLeft-- > 0 && rows.Step()) {
            if (const auto id = EventIdOf(rows)) {
                builder.LeaveToQuery(*id);
            }
            next = rows.GetInteger(1);
        }
        if (readsLeft < 0) {
            return false;
        }
        if (rows.IsOk() || next >= last) {
            return true;
        }
        next = std::max({start + 1, next + 1, first});
    }
    return false;
}

// Indexes are read from both ends, as one of their rows may tell another id than the table's.
SnapshotBuilder ReadIdsAlone(const Sqlite3Db& database, Origin& origin)
{
    SnapshotBuilder builder(origin.lastMoment);
    origin.isEachIdAsked = true;
    origin.areAllIdsKnown = ReadIdsByRowNumber(database, builder) || ReadIds(database, "event_info", builder);
    SqlCursor indexes(database, "select printf('%w', name) from sqlite_master"
        " where type = 'index' and tbl_name = 'event_info' collate nocase");
    while (indexes.Step()) {
        const std::string from = "event_info indexed by \"" + std::string(indexes.GetText(0)) + "\" order by event_id";
        if (!ReadIds(database, from, builder)) {
            ReadIds(database, from + " desc", builder);
        }
    }
    return builder;
}

// Rows are found by an index, say, whose damage the pass would not meet.
SnapshotBuilder ReadInAnyOrder(const Sqlite3Db& database, Origin& origin)
{
    FileCheck::Result file = FileCheck::OfFile(database);
    if (file.state == FileCheck::Result::State::SOUND) {
        if (auto rows = ReadInOnePass(database, origin, VersionSearch::BY_JOIN)) {
            return std::move(*rows);
        }
    }
    origin.damage = std::move(file.message);
    return ReadIdsAlone(database, origin);
}

} // namespace

std::shared_ptr<const EventLogSnapshot> ReadEventLog(const Sqlite3Db& database)
{
    const ReadTransaction transaction(database);
    const std::string query = EventQuery::TextFor(0, 0);
    if (!SqlCursor(database, query).IsReady()) {
        return nullptr;
    }
    Origin origin;
    origin.rowName = QueryPlan::RowNameOfEvents(database);
    origin.isInTableOrder = QueryPlan::IsScanOfEvents(database, query) && !origin.rowName.empty();
    origin.lastMoment = TimeUtil::GetLastMoment();
    SnapshotBuilder builder =
        origin.isInTableOrder ? ReadInTableOrder(database, origin) : ReadInAnyOrder(database, origin);
    origin.dataVersion = ReadDataVersion(database);
    return std::move(builder).Build(std::move(origin));
}
