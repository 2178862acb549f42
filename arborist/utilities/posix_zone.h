#ifndef ARBORIST_UTILITIES_POSIX_ZONE_H
#define ARBORIST_UTILITIES_POSIX_ZONE_H

#include <cstdint>
#include <ctime>
#include <optional>
#include <string_view>

/// A time zone as POSIX writes it in TZ: "CET-1CEST,M3.5.0,M10.5.0/3". Used where the C library of the system doesn't
/// read all of it, as that of Windows, which knows the rules of one country alone.
class PosixZone {
public:
    /// Nothing for any other text: a name of the zone database, a text with a mistake.
    static std::optional<PosixZone> Of(std::string_view text);

    /// Seconds to add to UTC at a moment, in seconds since the epoch.
    std::int64_t OffsetAt(std::int64_t moment) const;
    /// The same while it is not summer.
    std::int64_t StandardOffset() const { return mStandard; }

    /// The day of a year on which clocks change, and the time of the clock that is valid until then.
    struct Change {
        enum class Kind { DAY_OF_YEAR, DAY_WITHOUT_LEAP_DAY, WEEKDAY_OF_MONTH };

        Kind kind = Kind::WEEKDAY_OF_MONTH;
        int day = 0; // from 0, or from 1 without leap days, or 0 for a Sunday
        int month = 0; // from 1
        int week = 0; // 5 is the last one
        std::int64_t time = 2 * 60 * 60;

        /// Seconds since the epoch, as if the clock showed UTC.
        std::int64_t InYear(std::int64_t year) const;
    };

private:
    struct Summer {
        std::int64_t offset = 0;
        Change begin;
        Change end;
    };

    std::int64_t mStandard = 0;
    std::optional<Summer> mSummer;
};

/// The calendar of the Gregorian rules without any zone.
namespace Calendar {

/// Seconds since the epoch of what `fields` show, as if they were UTC. Fields may be out of their range.
std::int64_t SecondsOf(const std::tm& fields);
/// The fields of a moment, as UTC; false for a year outside of 0 to 9999.
bool FieldsOf(std::int64_t seconds, std::tm& fields);

} // namespace Calendar

#endif
