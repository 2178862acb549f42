#include "diagnosis/results_db/local_moment.h"

#include <charconv>
#include <chrono>

#include "diagnosis/bundle/moment.h"

namespace diagnosis::results_db {

namespace {

int NumberAt(const std::string& text, std::size_t start, std::size_t length)
{
    int number = 0;
    std::from_chars(text.data() + start, text.data() + start + length, number);
    return number;
}

} // namespace

std::optional<std::int64_t> LocalMoment(const std::string& text)
{
    namespace chrono = std::chrono;
    // Seconds since the epoch are a moment, too, of up to nineteen digits.
    static constexpr std::size_t DASH = 4;
    static constexpr std::size_t LENGTH = std::char_traits<char>::length("YYYY-MM-DD HH:MM:SS");
    if (text.size() != LENGTH || text[DASH] != '-' || !IsMomentText(text)) {
        return std::nullopt;
    }
    const chrono::year_month_day day(chrono::year(NumberAt(text, 0, 4)),
        chrono::month(static_cast<unsigned>(NumberAt(text, 5, 2))),
        chrono::day(static_cast<unsigned>(NumberAt(text, 8, 2))));
    const chrono::seconds midnight = chrono::sys_days(day).time_since_epoch();
    return midnight.count() + NumberAt(text, 11, 2) * 3600 + NumberAt(text, 14, 2) * 60 + NumberAt(text, 17, 2);
}

} // namespace diagnosis::results_db
