#ifndef ARBORIST_STORES_COMMON_PART_EVENT_TIMES_H
#define ARBORIST_STORES_COMMON_PART_EVENT_TIMES_H

#include <cstdint>
#include <string>
#include <vector>

#include "arborist/stores/common_part/event_id_list.h"

/// The history of the events that a derived table selects.
namespace EventTimes {

/// The moments up to the one in force at which what EventSelection finds may change, but for events that leave, in any
/// order: the times of the events that it selects, and the first time of an event that it can't see, as of which the
/// selection isn't whole. A time that is no whole number counts as the two whole seconds around it. Empty if the log
/// can't be read. Logs no more than opening the log does.
std::vector<std::int64_t> Read(const EventIdList& ids, const std::string& eventDbPath);

} // namespace EventTimes

#endif
