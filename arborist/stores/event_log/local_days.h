#ifndef ARBORIST_STORES_EVENT_LOG_LOCAL_DAYS_H
#define ARBORIST_STORES_EVENT_LOG_LOCAL_DAYS_H

#include <array>
#include <cstdint>

/// Tells the day of the month of a time of a log, 1 to 31, as TimeUtil::GetFormatTime writes it in local time.
///
/// Asks the time zone once for a day whose clocks run on, and for each time of a day on which they are changed. Holds
/// the zone that was in force then: make one for each use, as a host may change the zone between two.
class LocalDays {
public:
    /// Times from `begin` to before `end` that have one day of the month.
    struct Stretch {
        std::uint32_t begin;
        std::uint32_t end;
        std::int32_t day;
    };

    std::int32_t DayOfMonth(std::uint32_t time) { return StretchWith(time).day; }

    /// A stretch that has `time`.
    Stretch StretchWith(std::uint32_t time)
    {
        const std::uint32_t number = time / SECONDS_OF_DAY;
        Day& known = mDays[number % mDays.size()];
        if (known.number != number + 1) {
            known = Ask(number);
        }
        return time < known.midnight ? Stretch{number * SECONDS_OF_DAY, known.midnight, known.before}
            : time < known.end       ? Stretch{known.midnight, known.end, known.after}
                                     : Stretch{time, time + 1, AskFor(time)};
    }

private:
    static constexpr std::uint32_t SECONDS_OF_DAY = 86400;

    // A day of universal time, and the days of the month before and after the midnight in it.
    struct Day {
        std::uint32_t number; // from 1; 0 for none
        std::uint32_t midnight;
        std::uint32_t end; // 0 where clocks are changed
        std::int32_t before;
        std::int32_t after;
    };

    static Day Ask(std::uint32_t day);
    static std::int32_t AskFor(std::int64_t time);

    std::array<Day, 64> mDays{};
};

#endif
