#ifndef ARBORIST_DIAGNOSIS_PROCESS_LOCAL_TIME_H
#define ARBORIST_DIAGNOSIS_PROCESS_LOCAL_TIME_H

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace diagnosis {

/// What the clocks show at a moment, in seconds since the epoch; nothing if the system can't say.
std::optional<std::tm> LocalTime(std::int64_t seconds);
/// The seconds to add to UTC at a moment; 0 if the system can't say.
std::int64_t OffsetAt(std::int64_t seconds);
/// A moment at which the clocks show `local`: any of two, and another one if they never show it.
std::int64_t MomentOf(std::tm local);

/// True if the system has a zone of this name, such as "Europe/Berlin".
bool HasZone(const std::string& name);
/// True if local times follow this rule when TZ has it; it has the form of a rule.
bool FollowsRule(const std::string& rule);
/// What may name the zone in force, the best first: names and rules, not all of which need be any.
std::vector<std::string> ZonesInForce();

} // namespace diagnosis

#endif
