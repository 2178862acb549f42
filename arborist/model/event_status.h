#ifndef ARBORIST_MODEL_EVENT_STATUS_H
#define ARBORIST_MODEL_EVENT_STATUS_H

/// The status of an event. TRUE means that the fault is present. The values are fixed: rule code stores them.
enum class EventStatus : unsigned char {
    TRUE = 0,
    FALSE = 1,
    /// Counts as true wherever a status is tested; the library never sets it.
    INTERMEDIATE_TRUE = 2,
    UNKNOWN = 3,
};

/// True for the two statuses that mean a present fault: TRUE and INTERMEDIATE_TRUE.
constexpr bool IsError(EventStatus status)
{
    return status == EventStatus::TRUE || status == EventStatus::INTERMEDIATE_TRUE;
}

/// The status's name as text; empty for any value outside the enumeration.
constexpr const char* GetElemTypeName(EventStatus status)
{
    switch (status) {
    case EventStatus::TRUE:
        return "TRUE";
    case EventStatus::FALSE:
        return "FALSE";
    case EventStatus::INTERMEDIATE_TRUE:
        return "INTERMEDIATE_TRUE";
    case EventStatus::UNKNOWN:
        return "UNKNOWN";
    }
    return "";
}

#endif
