#ifndef ARBORIST_DIAGNOSIS_BUNDLE_MOMENT_H
#define ARBORIST_DIAGNOSIS_BUNDLE_MOMENT_H

#include <cstdint>
#include <optional>
#include <string>

namespace diagnosis {

/// Whether `zone` is one that TZ can take: a name of the system's zone database ("Europe/Berlin"), or a rule that
/// needs no database ("CET-1CEST,M3.5.0,M10.5.0/3"). The C library takes any other text for UTC without a word.
bool IsTimeZone(const std::string& zone);

/// The zone in force, as a text that IsTimeZone takes: its name where the machine tells one, else the rule that holds
/// from now on; "UTC0" where there is neither.
std::string ZoneOfThisMachine();

/// Seconds since the epoch of "YYYY-MM-DD HH:MM:SS", local time of the zone in force, or of a number, which is
/// seconds already. Nothing for any other text, for a date that the calendar lacks, and for an hour that the clocks
/// skipped.
std::optional<std::int64_t> ParseMoment(const std::string& text);

/// Whether ParseMoment could take the text in some zone: its form and its calendar date are right.
bool IsMomentText(const std::string& text);

/// Local time as "YYYY-MM-DD HH:MM:SS"; nothing outside the years 0 to 9999.
std::optional<std::string> FormatMoment(std::int64_t seconds);

} // namespace diagnosis

#endif
