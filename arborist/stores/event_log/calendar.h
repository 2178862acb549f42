#ifndef ARBORIST_STORES_EVENT_LOG_CALENDAR_H
#define ARBORIST_STORES_EVENT_LOG_CALENDAR_H

#include <array>
#include <cstdint>

/// Tells the days of the month that the times of a log lie in, 1 to 31, in local time.
///
/// The events of a log lie close together: the time zone is asked for whole hours, most of which lie in one day.
class Calendar {
public:
    int DayOfMonth(std::uint32_t time)
    {
        const std::uint32_t hour = time / SECONDS_OF_HOUR;
        std::uint32_t& known = mDays[hour % mDays.size()];
        if (known >> DAY_BITS != hour || known == 0) {
            known = hour << DAY_BITS | DayOfHour(hour);
        }
        const std::uint32_t day = known & ((1U << DAY_BITS) - 1);
        return static_cast<int>(day != 0 ? day : DayOf(time));
    }

private:
    static constexpr std::uint32_t SECONDS_OF_HOUR = 3600;
    static constexpr unsigned int DAY_BITS = 5;

    static std::uint32_t DayOf(std::int64_t time);
    static std::uint32_t DayOfHour(std::uint32_t hour);

    std::array<std::uint32_t, 1024> mDays{}; // the number of an hour and its day, 0 where it lies in two
};

#endif
