#include "diagnosis/log_db/slice_log.h"

#include <charconv>
#include <filesystem>
#include <limits>

#include "diagnosis/log_db/event_log.h"
#include "diagnosis/scratch/new_file.h"
#include "diagnosis/sqlite/database_files.h"

namespace diagnosis {

namespace {

constexpr std::int64_t SECONDS_OF_A_DAY = 86400;

// Events and times are joined in two ways, by their keys and by event_pid; either one keeps an event.
constexpr char DELETE_EVENTS_WITHOUT_MOMENT[] =
    "DELETE FROM event_info WHERE _ID NOT IN (SELECT _ID FROM event_info_flow WHERE _ID IS NOT NULL)"
    " AND _ID NOT IN (SELECT event_pid FROM event_info_flow WHERE event_pid IS NOT NULL)";
constexpr char DELETE_MOMENTS_WITHOUT_EVENT[] =
    "DELETE FROM event_info_flow WHERE ifnull(_ID NOT IN (SELECT _ID FROM event_info), 1)"
    " AND ifnull(event_pid NOT IN (SELECT _ID FROM event_info), 1)";

bool ReadNumber(const char*& at, const char* end, std::int64_t& number)
{
    const auto [next, error] = std::from_chars(at, end, number);
    at = next;
    return error == std::errc();
}

std::optional<std::int64_t> LatestTime(Connection& database, std::optional<std::int64_t> asOf)
{
    auto row = database.Prepare(
        "SELECT max(occurrence_time) FROM event_info_flow WHERE typeof(occurrence_time) = 'integer'"
        + (asOf ? " AND occurrence_time <= " + std::to_string(*asOf) : ""));
    return row && row->Step() && row->IsInteger(0) ? std::optional(row->Integer(0)) : std::nullopt;
}

// Compares numbers only: a foreign log may have a text as its time, and texts sort above all numbers.
std::string TimeIs(const char* relation, std::int64_t time)
{
    return "(typeof(occurrence_time) IN ('integer', 'real') AND occurrence_time " + std::string(relation) + " "
        + std::to_string(time) + ")";
}

// Of the events that queries of the log find; others don't show when it begins.
std::string IsNotLastBefore(std::int64_t time)
{
    return " AND occurrence_time <> ifnull((SELECT max(occurrence_time) FROM event_info_flow"
        " JOIN event_info ON event_info._ID = event_info_flow._ID"
        " JOIN event_version ON event_info.version_id = event_version._ID WHERE " + TimeIs("<", time) + "), -1)";
}

std::string DeleteOutside(const LogSlice& slice, std::optional<std::int64_t> latest)
{
    std::string sql;
    const auto add = [&sql](const std::string& condition) {
        sql += "DELETE FROM event_info_flow WHERE " + condition + ";";
    };
    if (slice.from) {
        add(TimeIs("<", *slice.from) + (slice.keepsLastBefore ? IsNotLastBefore(*slice.from) : ""));
    }
    if (slice.asOf) {
        add(TimeIs(">", *slice.asOf));
    }
    if (slice.until) {
        add(TimeIs(">", *slice.until));
    }
    // A foreign log can have any time, so that the subtraction could overflow.
    const std::int64_t reach = slice.lastDays.value_or(0) * SECONDS_OF_A_DAY;
    if (latest && *latest >= std::numeric_limits<std::int64_t>::min() + reach) {
        add(TimeIs("<", *latest - reach));
    }
    if (!sql.empty()) {
        sql += std::string(DELETE_EVENTS_WITHOUT_MOMENT) + ";";
    }
    if (!slice.ids.empty()) {
        std::string ranges;
        for (const auto& [first, last] : slice.ids) {
            ranges += (ranges.empty() ? "" : " OR ") + ("event_id BETWEEN " + std::to_string(first)) + " AND "
                + std::to_string(last);
        }
        sql += "DELETE FROM event_info WHERE NOT ifnull(" + ranges + ", 0);";
    }
    return sql.empty() ? sql : sql + DELETE_MOMENTS_WITHOUT_EVENT + ";VACUUM;";
}

struct Paths {
    const std::string& source;
    const std::string& target;
};

// What can't be written is the target's; whatever else fails lies in the log that is read, or copied from it.
Failure FailureOf(const Connection& database, const Paths& paths)
{
    return database.CannotWrite() ? Failure{FailureCode::LOG_NOT_WRITTEN, paths.target + ": " + database.GetError()}
                                  : Failure{FailureCode::BAD_LOG, paths.source + ": " + database.GetError()};
}

std::optional<Failure> CopyInto(const std::string& temporary, const Paths& paths)
{
    ReadOnlyDatabase file;
    if (auto failure = file.Open(paths.source, FailureCode::BAD_LOG)) {
        return failure;
    }
    return file.Get().WriteCopy(temporary) ? std::nullopt : std::optional(FailureOf(file.Get(), paths));
}

std::optional<Failure> Cut(const std::string& file, const Paths& paths, const LogSlice& slice)
{
    Connection database;
    if (!database.Open(file, Connection::Mode::CREATE)) {
        return FailureOf(database, paths);
    }
    database.LimitToFile();
    const auto latest = slice.lastDays ? LatestTime(database, slice.asOf) : std::nullopt;
    if (database.HasError()) { // without a latest time the last days would be all
        return FailureOf(database, paths);
    }
    const std::string cut = DeleteOutside(slice, latest);
    if (!database.Execute("PRAGMA journal_mode = OFF") || !database.Execute(cut)) {
        return FailureOf(database, paths);
    }
    return database.Close() ? std::nullopt
                            : std::optional(Failure{FailureCode::LOG_NOT_WRITTEN, paths.target + ": can't be closed"});
}

} // namespace

std::optional<std::vector<std::pair<std::int64_t, std::int64_t>>> ParseIdRanges(const std::string& text)
{
    std::vector<std::pair<std::int64_t, std::int64_t>> ranges;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (;;) {
        std::int64_t first = 0;
        if (!ReadNumber(at, end, first)) {
            return std::nullopt;
        }
        std::int64_t last = first;
        if (at != end && *at == '-' && !ReadNumber(++at, end, last)) {
            return std::nullopt;
        }
        if (last < first) {
            return std::nullopt;
        }
        ranges.emplace_back(first, last);
        if (at == end) {
            return ranges;
        }
        if (*at++ != ',') {
            return std::nullopt;
        }
    }
}

std::optional<Failure> SliceEventLog(const std::string& source, const std::string& target, const LogSlice& slice)
{
    std::error_code error;
    if (!std::filesystem::exists(source, error)) {
        return Failure{FailureCode::NO_LOG, source + ": no such file"};
    }
    if (IsOneFile(source, target)) {
        return Failure{FailureCode::LOG_NOT_WRITTEN, target + ": is the log that is read"};
    }
    if (const auto companion = CompanionOf(target)) {
        return Failure{FailureCode::LOG_NOT_WRITTEN, target + ": is in use: there is " + *companion};
    }
    NewFile file;
    if (const auto problem = file.MakeWithFolders(target)) {
        return Failure{FailureCode::LOG_NOT_WRITTEN, target + ": " + *problem};
    }
    const Paths paths{source, target};
    if (auto failure = CopyInto(file.TemporaryPath(), paths)) {
        return failure;
    }
    if (auto failure = Cut(file.TemporaryPath(), paths, slice)) {
        return failure;
    }
    const auto problem = file.PutInPlace();
    return problem ? std::optional(Failure{FailureCode::LOG_NOT_WRITTEN, target + ": " + *problem}) : std::nullopt;
}

} // namespace diagnosis
