#ifndef ARBORIST_STORES_EVENT_LOG_LOCAL_DAYS_H
#define ARBORIST_STORES_EVENT_LOG_LOCAL_DAYS_H

#include <array>
#include <cstdint>

/// Converts a time of the log to the day of the month, 1 to 31, that TimeUtil::GetFormatTime writes for it in local
/// time.
///
/// Uses the time zone once for each day, but for each time of a day on which clocks are changed. Caches results: create
/// one object for each use, as a host may change the zone in between.
class LocalDays {
public:
    std::int32_t DayOfMonth(std::uint32_t time)
    {
        const std::uint32_t number = time / SECONDS_OF_DAY;
        Day& known = mDays[number % mDays.size()];
        if (known.number != number + 1) {
            known = Ask(number);
        }
        if (time >= known.end) {
            return AskFor(time);
        }
        return time < known.midnight ? known.before : known.after;
    }

private:
    static constexpr std::uint32_t SECONDS_OF_DAY = 86400;

    // A day of UTC, the local midnight in it, and the days of the month before and after that.
    struct Day {
        std::uint32_t number; // from 1; 0 for none
        std::uint32_t midnight;
        std::uint32_t end; // 0 if clocks are changed
        std::uint8_t before;
        std::uint8_t after;
    };

    static Day Ask(std::uint32_t day);
    static std::int32_t AskFor(std::int64_t time);

    std::array<Day, 64> mDays{};
};

#endif
