#ifndef ARBORIST_STORES_EVENT_LOG_LOG_EVENT_H
#define ARBORIST_STORES_EVENT_LOG_LOG_EVENT_H

#include <cstdint>
#include <string>
#include <utility>

/// One row of the event log. Immutable.
class LogEvent {
public:
    LogEvent(std::int32_t id, std::string time, std::string json)
        : eventId(id), occurrenceTime(std::move(time)), extra(std::move(json))
    {
    }

    /// 0 if the row has none.
    const std::int32_t eventId;
    /// Local time as TimeUtil::GetFormatTime writes it; empty if the row has none.
    const std::string occurrenceTime;
    /// The event's parameters, usually a JSON object; empty if the row has none.
    const std::string extra;
};

#endif
