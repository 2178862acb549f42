#include "diagnosis/log_db/event_line.h"

#include <json/value.h>

#include "diagnosis/bundle/moment.h"
#include "diagnosis/text/json_text.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis {

namespace {

bool ReadTime(const Json::Value& value, std::int64_t& time, std::string& problem)
{
    if (value.isInt64()) {
        time = value.asInt64();
        return true;
    }
    const auto seconds = value.isString() ? ParseMoment(value.asString()) : std::nullopt;
    if (!seconds) {
        problem = "\"time\" must be a local time \"YYYY-MM-DD HH:MM:SS\" that exists, or seconds since the epoch";
        return false;
    }
    time = *seconds;
    return true;
}

bool ReadVersion(const Json::Value& value, std::optional<std::string>& version, std::string& problem)
{
    if (value.isString()) {
        version = value.asString();
    } else if (value.isNull()) {
        version.reset();
    } else {
        problem = std::string("\"version\" must be a text, not ") + JsonKind(value);
    }
    return problem.empty();
}

bool ReadExtra(std::string_view line, const Json::Value& value, std::optional<std::string>& extra,
    std::string& problem)
{
    if (value.isObject()) {
        // Takes the text from the line itself, which keeps the order of members, spaces and the spelling of numbers.
        const auto start = static_cast<std::size_t>(value.getOffsetStart());
        extra = line.substr(start, static_cast<std::size_t>(value.getOffsetLimit()) - start);
    } else if (value.isString()) {
        extra = value.asString();
    } else if (value.isNull()) {
        extra.reset();
    } else {
        problem = std::string("\"extra\" must be an object or a text, not ") + JsonKind(value);
    }
    return problem.empty();
}

bool ReadMember(std::string_view line, const std::string& key, const Json::Value& value, LoggedEvent& event,
    std::string& problem)
{
    if (key == "time") {
        return ReadTime(value, event.time, problem);
    }
    if (key == "event") {
        if (!value.isInt()) {
            problem = "\"event\" must be a whole number of 32 bits";
            return false;
        }
        event.event = value.asInt();
        return true;
    }
    if (key == "version") {
        return ReadVersion(value, event.version, problem);
    }
    if (key == "extra") {
        return ReadExtra(line, value, event.extra, problem);
    }
    problem = "unknown key \"" + key + "\"" + DidYouMean(key, {"time", "event", "version", "extra"});
    return false;
}

} // namespace

std::optional<LoggedEvent> ReadEvent(std::string_view text, const Json::Value& object, std::string& problem)
{
    if (!object.isObject()) {
        problem = std::string("must be an object, not ") + JsonKind(object);
        return std::nullopt;
    }
    LoggedEvent event;
    for (const std::string& key : object.getMemberNames()) {
        if (!ReadMember(text, key, object[key], event, problem)) {
            return std::nullopt;
        }
    }
    for (const char* key : {"time", "event"}) {
        if (!object.isMember(key)) {
            problem = std::string("\"") + key + "\" is missing";
            return std::nullopt;
        }
    }
    return event;
}

std::optional<LoggedEvent> ParseEventLine(std::string_view line, std::string& problem)
{
    const auto value = ParseEngineJson(line, problem);
    return value ? ReadEvent(line, *value, problem) : std::nullopt;
}

} // namespace diagnosis
