#include "diagnosis/bundle/moment.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <ctime>
#include <string_view>
#include <utility>
#include <vector>

#include "diagnosis/process/local_time.h"

namespace diagnosis {

namespace {

constexpr int MINUTES_OF_A_DAY = 1440;

// Parses a POSIX rule: names and offsets, and for a zone with summer time the two days on which clocks change. Written
// by hand, as compiling a regular expression for it takes longer than a whole detection.
class ZoneRuleReader {
public:
    explicit ZoneRuleReader(std::string_view rule) : mRest(rule) {}

    bool IsRule()
    {
        if (!TakeName() || !TakeOffset()) {
            return false;
        }
        if (mRest.empty()) {
            return true;
        }
        if (!TakeName() || (StartsOffset() && !TakeOffset())) {
            return false;
        }
        return mRest.empty() || (TakeChange() && TakeChange() && mRest.empty());
    }

private:
    bool Take(char letter)
    {
        const bool isNext = !mRest.empty() && mRest.front() == letter;
        mRest.remove_prefix(isNext ? 1 : 0);
        return isNext;
    }

    bool TakeOneOf(std::string_view letters)
    {
        const bool isNext = !mRest.empty() && letters.find(mRest.front()) != std::string_view::npos;
        mRest.remove_prefix(isNext ? 1 : 0);
        return isNext;
    }

    std::size_t TakeAll(std::string_view letters)
    {
        const std::size_t count = std::min(mRest.find_first_not_of(letters), mRest.size());
        mRest.remove_prefix(count);
        return count;
    }

    bool TakeDigits(std::size_t least, std::size_t most)
    {
        const std::size_t count = TakeAll(DIGITS);
        return count >= least && count <= most;
    }

    bool TakeName()
    {
        static const std::string quoted = std::string(LETTERS) + std::string(DIGITS) + "+-";
        return Take('<') ? TakeAll(quoted) >= 3 && Take('>') : TakeAll(LETTERS) >= 3;
    }

    bool StartsOffset() const
    {
        return !mRest.empty() && (mRest.front() == '+' || mRest.front() == '-' ||
                                     DIGITS.find(mRest.front()) != std::string_view::npos);
    }

    bool TakeOffset()
    {
        TakeOneOf("+-");
        return TakeDigits(1, 3) && (!Take(':') || (TakeDigits(2, 2) && (!Take(':') || TakeDigits(2, 2))));
    }

    bool TakeDay()
    {
        if (Take('M')) {
            return TakeDigits(1, 2) && Take('.') && TakeOneOf("12345") && Take('.') && TakeOneOf("0123456");
        }
        Take('J');
        return TakeDigits(1, 3);
    }

    bool TakeChange() { return Take(',') && TakeDay() && (!Take('/') || TakeOffset()); }

    static constexpr std::string_view LETTERS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    static constexpr std::string_view DIGITS = "0123456789";

    std::string_view mRest;
};

bool IsZoneRule(const std::string& zone)
{
    return zone.size() < 128 && ZoneRuleReader(zone).IsRule();
}

std::optional<std::int64_t> ParseSeconds(const std::string& text)
{
    std::int64_t seconds = 0;
    const char* end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, seconds);
    return error == std::errc() && last == end ? std::optional(seconds) : std::nullopt;
}

bool IsInCalendar(const std::tm& date)
{
    static constexpr int DAYS[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (date.tm_mon < 0 || date.tm_mon > 11) {
        return false;
    }
    const int year = date.tm_year + 1900;
    const bool isLeapYear = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    const int days = DAYS[date.tm_mon] + (date.tm_mon == 1 && isLeapYear ? 1 : 0);
    return date.tm_mday >= 1 && date.tm_mday <= days && date.tm_hour < 24 && date.tm_min < 60 && date.tm_sec < 60;
}

int NumberAt(const std::string& text, std::size_t position, std::size_t length)
{
    int number = 0;
    std::from_chars(text.data() + position, text.data() + position + length, number);
    return number;
}

std::optional<std::tm> ParseDate(const std::string& text)
{
    static const std::string form = "dddd-dd-dd dd:dd:dd";
    if (text.size() != form.size()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] == 'd' ? text[i] < '0' || text[i] > '9' : text[i] != form[i]) {
            return std::nullopt;
        }
    }
    std::tm date = {};
    date.tm_year = NumberAt(text, 0, 4) - 1900;
    date.tm_mon = NumberAt(text, 5, 2) - 1;
    date.tm_mday = NumberAt(text, 8, 2);
    date.tm_hour = NumberAt(text, 11, 2);
    date.tm_min = NumberAt(text, 14, 2);
    date.tm_sec = NumberAt(text, 17, 2);
    return IsInCalendar(date) ? std::optional(date) : std::nullopt;
}

// The first and the last moment at which clocks show `text`: two where they are turned back. Which of the two the
// system finds may depend on what it was asked before.
std::optional<std::pair<std::int64_t, std::int64_t>> MomentsOf(const std::string& text)
{
    constexpr std::int64_t A_DAY = 86400;
    const auto date = ParseDate(text);
    const std::int64_t found = date ? MomentOf(*date) : 0;
    // A time in an hour that the clocks skip is formatted as another one.
    if (!date || FormatMoment(found) != text) {
        return std::nullopt;
    }
    const std::int64_t first = found + OffsetAt(found) - OffsetAt(found - A_DAY);
    const std::int64_t last = found + OffsetAt(found) - OffsetAt(found + A_DAY);
    return std::pair(FormatMoment(first) == text ? std::min(first, found) : found,
        FormatMoment(last) == text ? std::max(last, found) : found);
}

std::string MinuteText(const std::string& day, int minute, const char* seconds)
{
    char text[16];
    std::snprintf(text, sizeof text, " %02d:%02d:%s", minute / 60, minute % 60, seconds);
    return day + text;
}

} // namespace

bool IsTimeZone(const std::string& zone)
{
    return zone == "UTC" || zone == "GMT" || HasZone(zone) || (IsZoneRule(zone) && FollowsRule(zone));
}

bool IsMomentText(const std::string& text)
{
    return ParseSeconds(text).has_value() || ParseDate(text).has_value();
}

std::string ZoneOfThisMachine()
{
    const std::vector<std::string> zones = ZonesInForce();
    const auto found = std::find_if(zones.begin(), zones.end(), IsTimeZone);
    return found == zones.end() ? "UTC0" : *found;
}

std::optional<std::int64_t> ParseMoment(const std::string& text)
{
    if (const auto seconds = ParseSeconds(text)) {
        return seconds;
    }
    const auto moments = MomentsOf(text);
    return moments ? std::optional(moments->first) : std::nullopt;
}

bool IsDay(const std::string& text)
{
    return text.size() == std::string_view("2024-05-19").size() && ParseDate(text + " 00:00:00");
}

std::optional<std::int64_t> FirstSecondOf(const std::string& day)
{
    for (int minute = 0; IsDay(day) && minute < MINUTES_OF_A_DAY; ++minute) {
        if (const auto moments = MomentsOf(MinuteText(day, minute, "00"))) {
            return moments->first;
        }
    }
    return std::nullopt;
}

std::optional<std::int64_t> LastSecondOf(const std::string& day)
{
    for (int minute = MINUTES_OF_A_DAY; IsDay(day) && minute-- > 0;) {
        if (const auto moments = MomentsOf(MinuteText(day, minute, "59"))) {
            return moments->second;
        }
    }
    return std::nullopt;
}

std::optional<std::string> FormatMoment(std::int64_t seconds)
{
    const auto date = LocalTime(seconds);
    if (!date || date->tm_year < -1900 || date->tm_year > 9999 - 1900) {
        return std::nullopt;
    }
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", date->tm_year + 1900, date->tm_mon + 1,
        date->tm_mday, date->tm_hour, date->tm_min, date->tm_sec);
    return text;
}

std::string MomentText(std::int64_t seconds)
{
    const auto text = FormatMoment(seconds);
    return text && ParseMoment(*text) == seconds ? *text : std::to_string(seconds);
}

} // namespace diagnosis
