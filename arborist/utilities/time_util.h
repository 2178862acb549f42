#ifndef ARBORIST_UTILITIES_TIME_UTIL_H
#define ARBORIST_UTILITIES_TIME_UTIL_H

#include <cstdint>
#include <string>

/// The clock, and timestamps to text and back. Free of state; nothing raises. Local time is that of the process; who
/// changes TZ while it runs calls tzset.
namespace TimeUtil {

/// Whole seconds since the epoch; Settings::CURRENT_TIME instead when it holds a decimal number.
std::uint64_t GenerateTimestamp();
/// As GenerateTimestamp, signed; 0 when the clock can't be read.
std::int64_t GetTimeOfDay();
/// The milliseconds within the current second, 0 to 999.
std::int32_t GetMillSecOfSec();
/// A counter in nanoseconds that only grows, for intervals.
std::uint64_t GetNanoTime();
/// Suspends the calling thread for `seconds`.
void Sleep(std::uint32_t seconds);

/// Local time as "%Y-%m-%d %H:%M:%S"; the text "YYYY-MM-DD HH:MM:SS" when there is no such local time.
std::string GetFormatTime(std::int64_t seconds);

/// Local time of 14 digits (year, month, day, hour, minute, second) in seconds since the epoch; 0 for any other text,
/// -1 when the conversion fails. A month 13 rolls over into the next year. In a zone with daylight saving the digits
/// are standard time, also in summer.
std::int64_t StrToTimeStamp(const std::string& text);

/// The same for a text that `format` of std::get_time reads from its start; 0 when it doesn't.
std::int64_t StrToTimeStamp(const std::string& text, const std::string& format);

} // namespace TimeUtil

#endif
