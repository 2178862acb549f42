#include "arborist/evaluation/silent_number.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace {

// So few digits that no number is out of range for a float.
constexpr std::size_t MOST_LETTERS = 16;

bool IsDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

} // namespace

std::optional<std::int32_t> SilentNumber::Int32Of(std::string_view text)
{
    std::int64_t number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    // Ignores the text behind the digits, and keeps the low 32 bits of a longer number.
    return error == std::errc() ? std::optional(static_cast<std::int32_t>(static_cast<std::uint32_t>(number)))
                                : std::nullopt;
}

bool SilentNumber::IsReal(std::string_view text)
{
    if (text.empty() || text.size() > MOST_LETTERS) {
        return false;
    }
    text.remove_prefix(text.front() == '-' ? 1 : 0);
    const auto point = std::find_if_not(text.begin(), text.end(), IsDigit);
    const bool hasDigits = point != text.begin();
    return hasDigits && (point == text.end() || (*point == '.' && std::all_of(point + 1, text.end(), IsDigit)));
}
