#include "diagnosis/results_db/local_moment.h"

#include <chrono>
#include <string_view>

namespace diagnosis::results_db {

namespace {

// The number of the digits at a place; nothing if there is something else.
std::optional<int> NumberAt(const std::string& text, std::size_t start, std::size_t length)
{
    int number = 0;
    for (std::size_t at = start; at < start + length; ++at) {
        if (text[at] < '0' || text[at] > '9') {
            return std::nullopt;
        }
        number = number * 10 + (text[at] - '0');
    }
    return number;
}

bool HasSeparators(const std::string& text)
{
    static constexpr std::string_view FORM = "YYYY-MM-DD HH:MM:SS";
    return text.size() == FORM.size() && text[4] == FORM[4] && text[7] == FORM[7] && text[10] == FORM[10]
        && text[13] == FORM[13] && text[16] == FORM[16];
}

} // namespace

std::optional<std::int64_t> LocalMoment(const std::string& text)
{
    namespace chrono = std::chrono;
    if (!HasSeparators(text)) {
        return std::nullopt;
    }
    const auto year = NumberAt(text, 0, 4);
    const auto month = NumberAt(text, 5, 2);
    const auto day = NumberAt(text, 8, 2);
    const auto hour = NumberAt(text, 11, 2);
    const auto minute = NumberAt(text, 14, 2);
    const auto second = NumberAt(text, 17, 2);
    if (!year || !month || !day || !hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 59) {
        return std::nullopt;
    }
    const chrono::year_month_day date(chrono::year(*year), chrono::month(static_cast<unsigned>(*month)),
        chrono::day(static_cast<unsigned>(*day)));
    if (!date.ok()) {
        return std::nullopt;
    }
    const chrono::seconds midnight = chrono::sys_days(date).time_since_epoch();
    return midnight.count() + *hour * 3600 + *minute * 60 + *second;
}

} // namespace diagnosis::results_db
