#ifndef ARBORIST_DIAGNOSIS_BUNDLE_MOMENT_H
#define ARBORIST_DIAGNOSIS_BUNDLE_MOMENT_H

#include <cstdint>
#include <optional>
#include <string>

namespace diagnosis {

/// True if `zone` is valid for TZ: a name of the system's zone database ("Europe/Berlin"), or a rule that needs no
/// database ("CET-1CEST,M3.5.0,M10.5.0/3"). The C library silently treats any other text as UTC.
bool IsTimeZone(const std::string& zone);

/// The current zone, as a text that IsTimeZone accepts: its name if the machine has one, otherwise its rule from now
/// on; "UTC0" if there is neither.
std::string ZoneOfThisMachine();

/// Converts "YYYY-MM-DD HH:MM:SS" in local time, or a number of seconds, to seconds since the epoch. Nothing for any
/// other text, for a date that doesn't exist, and for a time in an hour that the clocks skip. In an hour that comes
/// twice, as clocks are turned back, a time stands for the first of both.
std::optional<std::int64_t> ParseMoment(const std::string& text);

/// True for a date of the calendar, "YYYY-MM-DD".
bool IsDay(const std::string& text);
/// The first and the last second of a local day "YYYY-MM-DD", also where clocks are changed at midnight. Nothing for any
/// other text, and for a day that the zone leaves out.
std::optional<std::int64_t> FirstSecondOf(const std::string& day);
std::optional<std::int64_t> LastSecondOf(const std::string& day);

/// True if ParseMoment accepts the text in some zone: its form and its date are valid.
bool IsMomentText(const std::string& text);

/// Local time as "YYYY-MM-DD HH:MM:SS"; nothing outside the years 0 to 9999.
std::optional<std::string> FormatMoment(std::int64_t seconds);

/// A text that ParseMoment converts back to the same second: local time, for people, or else the number.
std::string MomentText(std::int64_t seconds);

} // namespace diagnosis

#endif
