#include "diagnosis/log_db/inspect_log.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>

#include <json/reader.h>
#include <json/value.h>

#include "diagnosis/log_db/hidden_rows.h"
#include "diagnosis/sqlite/database_files.h"

namespace diagnosis {

namespace {

constexpr std::size_t MOST_KEYS = 5;

// Alarm rules join events and times by their keys, derived tables by event_pid: this checks both.
std::string SelectRows()
{
    return "SELECT info._ID, info.event_id, typeof(info.event_id), info.extra, version._ID IS NULL,"
        " version.VERSION_NAME, flow._ID IS NULL, flow.occurrence_time, typeof(flow.occurrence_time), named.pid IS NULL,"
        " named.first, named.last, named.texts FROM event_info AS info"
        " LEFT JOIN event_info_flow AS flow ON flow._ID = info._ID AND NOT " + hidden_rows::IsLater("flow")
        + " LEFT JOIN event_version AS version ON version._ID = info.version_id"
        " LEFT JOIN (SELECT event_pid AS pid, min(occurrence_time) AS first, max(occurrence_time) AS last,"
        " sum(typeof(occurrence_time) <> 'integer') AS texts FROM event_info_flow AS parent WHERE NOT "
        + hidden_rows::IsLater("parent") + " GROUP BY event_pid) AS named ON named.pid = info._ID WHERE NOT "
        + hidden_rows::IsHidden("info");
}

enum Column {
    KEY, EVENT, EVENT_TYPE, EXTRA, NO_VERSION, VERSION, NO_FLOW, TIME, TIME_TYPE, NOT_NAMED, FIRST, LAST, TEXT_TIMES
};

enum Reason { NO_FLOW_ROW, NO_FLOW_EVENT, NO_VERSION_ROW, EVENT_NO_NUMBER, TIME_NO_NUMBER, EXTRA_NO_OBJECT, REASONS };

const UnseenRows KINDS[REASONS] = {
    {"no_flow_row", "no row of event_info_flow has the same _ID", "alarm rules", 0, {}},
    {"no_flow_event", "no row of event_info_flow names it in event_pid", "derived tables", 0, {}},
    {"no_version_row", "its version_id has no row in event_version", "alarm rules", 0, {}},
    {"event_no_number", "event_id is no whole number", "all rules", 0, {}},
    {"time_no_number", "occurrence_time is no whole number", "all rules, or with a wrong time", 0, {}},
    {"extra_no_object", "extra is no JSON object", "tests of parameters", 0, {}},
};

// Reads "extra" like the library, which accepts more than strict JSON.
class ExtraReader {
public:
    bool IsObject(const std::string& text)
    {
        Json::Value value;
        std::string errors;
        try {
            return mReader->parse(text.data(), text.data() + text.size(), &value, &errors) && errors.empty()
                && value.isObject();
        } catch (const Json::Exception&) { // nested too deep
            return false;
        }
    }

private:
    std::unique_ptr<Json::CharReader> mReader{Json::CharReaderBuilder().newCharReader()};
};

void Widen(LoggedSpan& span, const Statement& row, int column)
{
    if (row.IsInteger(column)) {
        const std::int64_t time = row.Integer(column);
        span.first = std::min(span.first.value_or(time), time);
        span.last = std::max(span.last.value_or(time), time);
    }
}

class Inspection {
public:
    void Add(const Statement& row)
    {
        ++mRows;
        LoggedSpan span;
        for (const int column : {TIME, FIRST, LAST}) {
            Widen(span, row, column);
            Widen(mSpan, row, column);
        }
        if (row.IsInteger(EVENT)) {
            LoggedId& id = mIds[row.Integer(EVENT)];
            ++id.rows;
            id.span.first = Earlier(id.span.first, span.first);
            id.span.last = std::max(id.span.last, span.last);
        }
        if (row.Integer(NO_VERSION) == 0) {
            ++mVersions[row.Text(VERSION)];
        }
        FindReasons(row);
    }

    LogInspection Result()
    {
        LogInspection result{mRows, mSpan, {}, {}, {}};
        for (auto& [number, id] : mIds) {
            id.id = number;
            result.ids.push_back(id);
        }
        for (const auto& [name, rows] : mVersions) {
            result.versions.push_back({name, rows});
        }
        std::copy_if(std::begin(mUnseen), std::end(mUnseen), std::back_inserter(result.unseen),
            [](const UnseenRows& unseen) { return unseen.rows > 0; });
        return result;
    }

private:
    using Moment = std::optional<std::int64_t>;

    static Moment Earlier(Moment one, Moment other) { return one && other ? std::min(one, other) : one ? one : other; }

    void FindReasons(const Statement& row)
    {
        const bool hasFlow = row.Integer(NO_FLOW) == 0;
        Note(NO_FLOW_ROW, !hasFlow, row);
        Note(NO_FLOW_EVENT, row.Integer(NOT_NAMED) != 0, row);
        Note(NO_VERSION_ROW, row.Integer(NO_VERSION) != 0, row);
        Note(EVENT_NO_NUMBER, !row.IsInteger(EVENT), row);
        Note(TIME_NO_NUMBER, (hasFlow && !row.IsInteger(TIME)) || row.Integer(TEXT_TIMES) > 0, row);
        const std::string extra = row.Text(EXTRA);
        Note(EXTRA_NO_OBJECT, !extra.empty() && !mReader.IsObject(extra), row);
    }

    void Note(Reason reason, bool holds, const Statement& row)
    {
        if (holds) {
            UnseenRows& unseen = mUnseen[reason];
            if (++unseen.rows <= MOST_KEYS) {
                unseen.keys.push_back(row.Text(KEY));
            }
        }
    }

    std::uint64_t mRows = 0;
    LoggedSpan mSpan;
    std::map<std::int64_t, LoggedId> mIds;
    std::map<std::string, std::uint64_t> mVersions;
    std::vector<UnseenRows> mUnseen{std::begin(KINDS), std::end(KINDS)};
    ExtraReader mReader;
};

} // namespace

std::optional<Failure> InspectEventLog(
    const std::string& path, LogInspection& inspection, std::optional<std::int64_t> asOf)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        return Failure{FailureCode::NO_LOG, path + ": no such file"};
    }
    ReadOnlyDatabase file;
    if (auto failure = file.Open(path, FailureCode::BAD_LOG)) {
        return failure;
    }
    auto rows = file.Get().Prepare(SelectRows());
    if (rows && asOf) {
        rows->Bind(1, *asOf);
    }
    Inspection reading;
    while (rows && rows->Step()) {
        reading.Add(*rows);
    }
    if (!rows || file.Get().HasError()) {
        return Failure{FailureCode::BAD_LOG, path + ": " + file.Get().GetError()};
    }
    inspection = reading.Result();
    return std::nullopt;
}

} // namespace diagnosis
