#include "arborist/stores/event_log/calendar.h"

#include <charconv>
#include <string>

#include "arborist/utilities/time_util.h"

namespace {

// Where the day stands in "YYYY-MM-DD HH:MM:SS"; a time of 32 bits has a year of four digits.
constexpr std::size_t DAY_IN_TIME = 8;

} // namespace

std::uint32_t Calendar::DayOf(std::int64_t time)
{
    const std::string text = TimeUtil::GetFormatTime(time);
    std::uint32_t day = 0;
    std::from_chars(text.data() + DAY_IN_TIME, text.data() + text.size(), day);
    return day;
}

std::uint32_t Calendar::DayOfHour(std::uint32_t hour)
{
    const std::int64_t start = std::int64_t{hour} * SECONDS_OF_HOUR;
    const std::uint32_t day = DayOf(start);
    return DayOf(start + SECONDS_OF_HOUR - 1) == day ? day : 0;
}
