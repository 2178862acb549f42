#include "diagnosis/cases/case_time.h"

#include <charconv>

namespace diagnosis::cases {

namespace {

// A hundred years; what is further away is a mistake, and could overflow.
constexpr std::int64_t LONGEST = std::int64_t{36525} * 86400;

std::int64_t SecondsOf(char unit)
{
    return unit == 'd' ? 86400 : unit == 'h' ? 3600 : unit == 'm' ? 60 : unit == 's' ? 1 : 0;
}

} // namespace

std::optional<std::int64_t> ParseDistance(const std::string& text)
{
    if (text.size() < 3 || (text.front() != '-' && text.front() != '+')) {
        return std::nullopt;
    }
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size() - 1;
    const auto [rest, error] = std::from_chars(text.data() + 1, end, number);
    const std::int64_t seconds = number * SecondsOf(text.back());
    if (error != std::errc() || rest != end || SecondsOf(text.back()) == 0 || seconds > LONGEST) {
        return std::nullopt;
    }
    return text.front() == '-' ? -seconds : seconds;
}

} // namespace diagnosis::cases
