#include "arborist/stores/event_log/local_days.h"

#include <charconv>
#include <chrono>
#include <limits>
#include <string>

#include "arborist/utilities/time_util.h"

namespace {

// Local time as text, "YYYY-MM-DD HH:MM:SS": the years of 32-bit times have four digits.
class Clock {
public:
    explicit Clock(std::int64_t time) : mText(TimeUtil::GetFormatTime(time)) {}

    int GetDay() const { return NumberAt(8, 2); }
    std::int64_t GetSecondOfDay() const { return (NumberAt(11, 2) * 60 + NumberAt(14, 2)) * 60 + NumberAt(17, 2); }
    /// Local time in seconds, counted as if clocks were never changed. Only differences have a meaning.
    std::int64_t GetSeconds() const
    {
        const std::chrono::year_month_day date{std::chrono::year(NumberAt(0, 4)),
            std::chrono::month(static_cast<unsigned int>(NumberAt(5, 2))),
            std::chrono::day(static_cast<unsigned int>(GetDay()))};
        return std::chrono::seconds(std::chrono::sys_days(date).time_since_epoch()).count() + GetSecondOfDay();
    }

private:
    int NumberAt(std::size_t place, std::size_t length) const
    {
        int number = 0;
        std::from_chars(mText.data() + place, mText.data() + place + length, number);
        return number;
    }

    std::string mText;
};

} // namespace

LocalDays::Day LocalDays::Ask(std::uint32_t day)
{
    const std::int64_t begin = std::int64_t{day} * SECONDS_OF_DAY;
    const std::int64_t end = begin + SECONDS_OF_DAY;
    const bool isLastDay = end > std::numeric_limits<std::uint32_t>::max();
    const Clock first(begin);
    const Clock last(end - 1);
    // If local time advanced by exactly one day, clocks were not changed in it.
    if (isLastDay || last.GetSeconds() - first.GetSeconds() != SECONDS_OF_DAY - 1) {
        return {day + 1, 0, 0, 0, 0};
    }
    return {day + 1, static_cast<std::uint32_t>(end - first.GetSecondOfDay()), static_cast<std::uint32_t>(end),
        static_cast<std::uint8_t>(first.GetDay()), static_cast<std::uint8_t>(last.GetDay())};
}

std::int32_t LocalDays::AskFor(std::int64_t time)
{
    return Clock(time).GetDay();
}
