#ifndef ARBORIST_STORES_COMMON_PART_EVENT_TIMES_H
#define ARBORIST_STORES_COMMON_PART_EVENT_TIMES_H

#include <cstdint>
#include <string>
#include <vector>

#include "arborist/stores/common_part/event_id_list.h"

/// The history of the events that a derived table selects.
namespace EventTimes {

/// The times of the events that EventSelection selects as of the moment in force, each once, in any order; a time that
/// is no whole number counts as the two whole seconds around it. Empty if the log can't be read. Logs nothing.
std::vector<std::int64_t> Read(const EventIdList& ids, const std::string& eventDbPath);

} // namespace EventTimes

#endif
