#include "diagnosis/log_db/event_log_look.h"

#include <optional>
#include <utility>

#include "diagnosis/sqlite/connection.h"

namespace diagnosis {

namespace {

// In each query ?1 is now, and ?2 the moment after which rows are hidden; null for none.
constexpr char COUNT_ROWS[] =
    "SELECT count(*), total(flow._ID IS NULL), total(version._ID IS NULL), total(version.VERSION_NAME <> ''),"
    " total(info.extra <> '' AND (substr(info.extra, 1, 1) <> '{' OR substr(info.extra, -1) <> '}'))"
    ", total(flow.occurrence_time > ?1)"
    " FROM event_info AS info LEFT JOIN event_info_flow AS flow ON flow._ID = info._ID"
    " LEFT JOIN event_version AS version ON version._ID = info.version_id"
    " WHERE ?2 IS NULL OR flow._ID IS NULL OR flow.occurrence_time <= ?2";
constexpr char COUNT_BAD_EXTRA[] =
    "SELECT total(CASE WHEN json_valid(extra) THEN json_type(extra) <> 'object' ELSE 1 END) FROM event_info"
    " WHERE extra <> '' AND (?2 IS NULL OR _ID NOT IN (SELECT _ID FROM event_info_flow"
    " WHERE _ID IS NOT NULL AND occurrence_time > ?2))";
// Usually a row of times has the key of its parent; only then the expensive join can be left out.
constexpr char COUNT_ADOPTED[] = "SELECT count(*) FROM event_info_flow WHERE event_pid IS NOT _ID"
    " AND (?2 IS NULL OR occurrence_time <= ?2)";
constexpr char COUNT_CHILDLESS[] =
    "SELECT count(*) FROM event_info AS info LEFT JOIN event_info_flow AS flow ON flow.event_pid = info._ID"
    " WHERE flow.event_pid IS NULL AND (?2 IS NULL OR info._ID NOT IN (SELECT _ID FROM event_info_flow"
    " WHERE _ID IS NOT NULL AND occurrence_time > ?2))";

// The first row that a query returns; nothing if it fails.
std::optional<Statement> FirstRow(Connection& database, const char* query, const EventLogQuestion& question)
{
    auto rows = database.Prepare(query);
    if (!rows) {
        return std::nullopt;
    }
    rows->Bind(1, question.now);
    if (question.asOf) {
        rows->Bind(2, *question.asOf);
    }
    return rows->Step() ? std::move(rows) : std::nullopt;
}

// The single number that a query returns; nothing if it fails.
std::optional<std::int64_t> Number(Connection& database, const char* query, const EventLogQuestion& question)
{
    const auto row = FirstRow(database, query, question);
    return row ? std::optional(row->Integer(0)) : std::nullopt;
}

std::int64_t WithoutParent(Connection& database, std::int64_t withoutTime, const EventLogQuestion& question)
{
    return Number(database, COUNT_ADOPTED, question) == 0
        ? withoutTime : Number(database, COUNT_CHILDLESS, question).value_or(0);
}

bool IsVersionKnown(Connection& database, const std::string& version)
{
    auto rows = database.Prepare("SELECT count(*) FROM event_version WHERE VERSION_NAME = ?1");
    if (!rows) {
        return true;
    }
    rows->Bind(1, version);
    return !rows->Step() || rows->Integer(0) != 0;
}

} // namespace

EventLogLook LookAtEventLog(const std::string& path, const EventLogQuestion& question)
{
    EventLogLook look;
    Connection database;
    if (!database.Open(path, Connection::Mode::READ_ONLY)) {
        look.problem = database.GetError();
        return look;
    }
    database.LimitToFile();
    const auto rows = FirstRow(database, COUNT_ROWS, question);
    if (!rows) {
        look.problem = database.IsInterrupted() ? "" : database.GetError();
        return look;
    }
    look.rows = rows->Integer(0);
    look.withoutTime = rows->Integer(1);
    look.withoutVersion = rows->Integer(2);
    look.ofAVersion = rows->Integer(3);
    look.afterNow = rows->Integer(5);
    look.withoutParent = WithoutParent(database, look.withoutTime, question);
    look.isVersionKnown = question.version.empty() || IsVersionKnown(database, question.version);
    if (question.readsExtra || rows->Integer(4) > 0) {
        look.badExtra = Number(database, COUNT_BAD_EXTRA, question).value_or(rows->Integer(4));
    }
    return look;
}

} // namespace diagnosis
