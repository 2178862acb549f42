#include "arborist/utilities/posix_zone.h"

#include <cctype>
#include <charconv>

namespace {

constexpr std::int64_t MINUTE = 60;
constexpr std::int64_t HOUR = 60 * MINUTE;
constexpr std::int64_t DAY = 24 * HOUR;
constexpr int LEAST_NAME = 3;
constexpr int MONTHS = 12;
constexpr int LAST_WEEK = 5;

std::int64_t FloorOf(std::int64_t number, std::int64_t divisor)
{
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

bool IsLeap(std::int64_t year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// Days from 1970-01-01 to the first day of a year.
std::int64_t DaysToYear(std::int64_t year)
{
    const std::int64_t before = year - 1;
    return 365 * (year - 1970) + FloorOf(before, 4) - FloorOf(before, 100) + FloorOf(before, 400) - 477;
}

// Days of a year before a month, from 0.
int DaysToMonth(std::int64_t year, int month)
{
    constexpr int DAYS[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
    return DAYS[month] + (month > 1 && IsLeap(year) ? 1 : 0);
}

std::int64_t YearOf(std::int64_t day)
{
    constexpr std::int64_t CYCLE_YEARS = 400; // after which the calendar begins anew
    constexpr std::int64_t CYCLE_DAYS = 146097;
    std::int64_t year = 1970 + FloorOf(day * CYCLE_YEARS, CYCLE_DAYS); // off by one at most
    while (DaysToYear(year + 1) <= day) {
        ++year;
    }
    while (DaysToYear(year) > day) {
        --year;
    }
    return year;
}

/// Takes one part after the other from the front of a text.
class Reader {
public:
    explicit Reader(std::string_view text) : mRest(text) {}

    bool IsAtEnd() const { return mRest.empty(); }

    bool Take(char letter)
    {
        const bool isThere = !mRest.empty() && mRest.front() == letter;
        mRest.remove_prefix(isThere ? 1 : 0);
        return isThere;
    }

    // Three letters at least, or anything within "<" and ">".
    bool TakeName()
    {
        if (Take('<')) {
            const std::size_t end = mRest.find('>');
            mRest.remove_prefix(end == std::string_view::npos ? mRest.size() : end + 1);
            return end != std::string_view::npos && end >= LEAST_NAME;
        }
        std::size_t length = 0;
        while (length < mRest.size() && std::isalpha(static_cast<unsigned char>(mRest[length])) != 0) {
            ++length;
        }
        mRest.remove_prefix(length);
        return length >= LEAST_NAME;
    }

    std::optional<int> TakeNumber(int least, int most)
    {
        int number = 0;
        const auto [end, error] = std::from_chars(mRest.data(), mRest.data() + mRest.size(), number);
        if (error != std::errc() || mRest.front() == '-' || number < least || number > most) {
            return std::nullopt;
        }
        mRest.remove_prefix(static_cast<std::size_t>(end - mRest.data()));
        return number;
    }

    // "[+-]hh[:mm[:ss]]", in seconds.
    std::optional<std::int64_t> TakeTime(int mostHours)
    {
        const bool isNegative = Take('-');
        if (!isNegative) {
            Take('+');
        }
        std::int64_t seconds = 0;
        int most = mostHours;
        for (std::int64_t unit = HOUR; unit != 0; unit = unit == HOUR ? MINUTE : unit == MINUTE ? 1 : 0) {
            if (unit != HOUR && !Take(':')) {
                break;
            }
            const std::optional<int> number = TakeNumber(0, most);
            if (!number) {
                return std::nullopt;
            }
            seconds += *number * unit;
            most = 59;
        }
        return isNegative ? -seconds : seconds;
    }

    std::optional<PosixZone::Change> TakeChange()
    {
        std::optional<PosixZone::Change> change = TakeDay();
        if (change && Take('/')) {
            constexpr int A_WEEK = 167;
            const std::optional<std::int64_t> time = TakeTime(A_WEEK);
            change->time = time.value_or(0);
            return time ? change : std::nullopt;
        }
        return change;
    }

private:
    std::optional<PosixZone::Change> TakeDay()
    {
        using Kind = PosixZone::Change::Kind;
        PosixZone::Change change;
        if (!Take('M')) {
            const bool isWithoutLeapDay = Take('J');
            const std::optional<int> day = TakeNumber(isWithoutLeapDay ? 1 : 0, 365);
            change.kind = isWithoutLeapDay ? Kind::DAY_WITHOUT_LEAP_DAY : Kind::DAY_OF_YEAR;
            change.day = day.value_or(0);
            return day ? std::optional(change) : std::nullopt;
        }
        const std::optional<int> month = TakeNumber(1, MONTHS);
        const std::optional<int> week = month && Take('.') ? TakeNumber(1, LAST_WEEK) : std::nullopt;
        const std::optional<int> day = week && Take('.') ? TakeNumber(0, 6) : std::nullopt;
        if (!day) {
            return std::nullopt;
        }
        change.month = *month;
        change.week = *week;
        change.day = *day;
        return change;
    }

    std::string_view mRest;
};

} // namespace

std::int64_t PosixZone::Change::InYear(std::int64_t year) const
{
    const std::int64_t first = DaysToYear(year);
    if (kind == Kind::DAY_OF_YEAR) {
        return (first + day) * DAY + time;
    }
    if (kind == Kind::DAY_WITHOUT_LEAP_DAY) {
        constexpr int END_OF_FEBRUARY = 59;
        return (first + day - 1 + (IsLeap(year) && day > END_OF_FEBRUARY ? 1 : 0)) * DAY + time;
    }
    constexpr int A_THURSDAY = 4; // 1970-01-01
    const std::int64_t ofMonth = first + DaysToMonth(year, month - 1);
    const std::int64_t weekday = (ofMonth + A_THURSDAY) - 7 * FloorOf(ofMonth + A_THURSDAY, 7);
    std::int64_t found = (day - weekday + 7) % 7 + 7 * (week - 1);
    while (found >= DaysToMonth(year, month) - DaysToMonth(year, month - 1)) {
        found -= 7; // the last week may be the fourth
    }
    return (ofMonth + found) * DAY + time;
}

std::optional<PosixZone> PosixZone::Of(std::string_view text)
{
    constexpr int MOST_HOURS = 24;
    Reader reader(text);
    PosixZone zone;
    std::optional<std::int64_t> west = reader.TakeName() ? reader.TakeTime(MOST_HOURS) : std::nullopt;
    if (!west) {
        return std::nullopt;
    }
    zone.mStandard = -*west;
    if (reader.IsAtEnd()) {
        return zone;
    }
    if (!reader.TakeName()) {
        return std::nullopt;
    }
    Summer summer{zone.mStandard + HOUR, {}, {}};
    if (!reader.IsAtEnd() && !reader.Take(',')) {
        west = reader.TakeTime(MOST_HOURS);
        if (!west || !reader.Take(',')) {
            return std::nullopt;
        }
        summer.offset = -*west;
    }
    const std::optional<Change> begin = reader.TakeChange();
    const std::optional<Change> end = begin && reader.Take(',') ? reader.TakeChange() : std::nullopt;
    if (!end || !reader.IsAtEnd()) {
        return std::nullopt;
    }
    summer.begin = *begin;
    summer.end = *end;
    zone.mSummer = summer;
    return zone;
}

std::int64_t PosixZone::OffsetAt(std::int64_t moment) const
{
    if (!mSummer) {
        return mStandard;
    }
    const std::int64_t year = YearOf(FloorOf(moment, DAY));
    const std::int64_t begin = mSummer->begin.InYear(year) - mStandard;
    const std::int64_t end = mSummer->end.InYear(year) - mSummer->offset;
    // South of the equator summer ends before it begins.
    const bool isSummer = begin <= end ? begin <= moment && moment < end : moment < end || begin <= moment;
    return isSummer ? mSummer->offset : mStandard;
}

std::int64_t Calendar::SecondsOf(const std::tm& fields)
{
    const std::int64_t years = FloorOf(fields.tm_mon, MONTHS);
    const std::int64_t year = 1900 + fields.tm_year + years;
    const int month = fields.tm_mon - static_cast<int>(years) * MONTHS;
    const std::int64_t day = DaysToYear(year) + DaysToMonth(year, month) + fields.tm_mday - 1;
    return day * DAY + fields.tm_hour * HOUR + fields.tm_min * MINUTE + fields.tm_sec;
}

bool Calendar::FieldsOf(std::int64_t seconds, std::tm& fields)
{
    const std::int64_t day = FloorOf(seconds, DAY);
    if (day < DaysToYear(0) || day >= DaysToYear(10000)) {
        return false;
    }
    const std::int64_t year = YearOf(day);
    const int ofYear = static_cast<int>(day - DaysToYear(year));
    int month = 0;
    while (DaysToMonth(year, month + 1) <= ofYear) {
        ++month;
    }
    const int ofDay = static_cast<int>(seconds - day * DAY);
    constexpr int A_THURSDAY = 4;
    fields = {};
    fields.tm_year = static_cast<int>(year - 1900);
    fields.tm_mon = month;
    fields.tm_mday = ofYear - DaysToMonth(year, month) + 1;
    fields.tm_hour = ofDay / static_cast<int>(HOUR);
    fields.tm_min = ofDay / static_cast<int>(MINUTE) % 60;
    fields.tm_sec = ofDay % 60;
    fields.tm_yday = ofYear;
    fields.tm_wday = static_cast<int>(day + A_THURSDAY - 7 * FloorOf(day + A_THURSDAY, 7));
    return true;
}
