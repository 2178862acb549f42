#ifndef ARBORIST_DIAGNOSIS_LOG_DB_EVENT_LINE_H
#define ARBORIST_DIAGNOSIS_LOG_DB_EVENT_LINE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <json/value.h>

namespace diagnosis {

/// One logged event, read from a line of JSON or a row of the event log. An absent text is NULL in the log.
struct LoggedEvent {
    /// Seconds since the epoch.
    std::int64_t time = 0;
    std::int32_t event = 0;
    std::optional<std::string> version = "";
    /// Usually JSON, but any text is possible.
    std::optional<std::string> extra = "";
};

/// Reads {"time": ..., "event": ..., "version": ..., "extra": ...}: "time" is local time "YYYY-MM-DD HH:MM:SS" or
/// seconds, "extra" an object, which is kept as it is written, or any text. "version" and "extra" may be missing
/// (empty) or null. On failure returns nothing and sets `problem`.
std::optional<LoggedEvent> ParseEventLine(std::string_view line, std::string& problem);

/// The same for an object that was parsed from `text`.
std::optional<LoggedEvent> ReadEvent(std::string_view text, const Json::Value& object, std::string& problem);

} // namespace diagnosis

#endif
