#ifndef ARBORIST_UTILITIES_TIME_UTIL_H
#define ARBORIST_UTILITIES_TIME_UTIL_H

#include <cstdint>
#include <string>

/// Reads the clock and converts timestamps to text and back. Stateless; no function throws. Local time is that of the
/// process; call tzset after changing TZ while it runs.
///
/// Nothing in the library calls GenerateTimestamp, GetMillSecOfSec, GetNanoTime or Sleep: they complete the set, and
/// only their tests call them.
namespace TimeUtil {

/// Whole seconds since the epoch; Settings::CURRENT_TIME instead if that is a decimal number.
std::uint64_t GenerateTimestamp();
/// As GenerateTimestamp, signed; 0 if the clock can't be read.
std::int64_t GetTimeOfDay();
/// The last second that counts: Settings::AS_OF if that is a decimal number, otherwise the greatest number.
std::int64_t GetLastMoment();
/// The milliseconds within the current second, 0 to 999.
std::int32_t GetMillSecOfSec();
/// A monotonic counter in nanoseconds, for measuring intervals.
std::uint64_t GetNanoTime();
/// Suspends the calling thread for `seconds`.
void Sleep(std::uint32_t seconds);

/// Local time as "%Y-%m-%d %H:%M:%S"; the text "YYYY-MM-DD HH:MM:SS" if there is no such local time.
std::string GetFormatTime(std::int64_t seconds);

/// Converts 14 digits of local time (year, month, day, hour, minute, second) to seconds since the epoch; 0 for any
/// other text, -1 if the conversion fails. A month 13 rolls over into the next year. In a zone with daylight saving the
/// digits mean standard time, even in summer.
std::int64_t StrToTimeStamp(const std::string& text);

/// The same for a text that std::get_time reads with `format`; 0 if it can't.
std::int64_t StrToTimeStamp(const std::string& text, const std::string& format);

} // namespace TimeUtil

#endif
