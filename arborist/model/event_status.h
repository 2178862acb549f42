#ifndef ARBORIST_MODEL_EVENT_STATUS_H
#define ARBORIST_MODEL_EVENT_STATUS_H

/// What is known of an event. TRUE means that the fault is present; its value 0 is what rule code stores.
enum class EventStatus : unsigned char {
    TRUE = 0,
    FALSE = 1,
    /// Counts as true wherever a status is tested; nothing sets it today.
    INTERMEDIATE_TRUE = 2,
    UNKNOWN = 3,
};

/// Whether a status counts as a present fault: TRUE and INTERMEDIATE_TRUE.
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
