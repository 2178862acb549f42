#include "arborist/stores/sql/sql_value_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <system_error>

namespace FT::sql {
namespace {

constexpr std::string_view BLANKS = " \t\n\v\f\r";
constexpr std::string_view HEX_DIGITS = "0123456789abcdefABCDEF";

bool TakeFront(std::string_view& text, std::string_view oneOf)
{
    if (text.empty() || oneOf.find(text.front()) == std::string_view::npos) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

// Removes a leading "0x" if a digit follows, directly or behind a point; otherwise the number is the 0 alone.
bool TakeHexPrefix(std::string_view& text)
{
    std::string_view digits = text;
    if (!TakeFront(digits, "0") || !TakeFront(digits, "xX")) {
        return false;
    }
    std::string_view fraction = digits;
    TakeFront(fraction, ".");
    if (!TakeFront(fraction, HEX_DIGITS)) {
        return false;
    }
    text = digits;
    return true;
}

std::int64_t ReadExponent(std::string_view text)
{
    constexpr std::int64_t BEYOND_ALL = std::numeric_limits<std::int64_t>::max() / 2;
    TakeFront(text, "+");
    std::int64_t exponent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (error == std::errc::result_out_of_range) {
        return text.front() == '-' ? -BEYOND_ALL : BEYOND_ALL;
    }
    return exponent;
}

// For a number that is out of range for a double: true if it is too large, false if it is too small.
bool IsTooLarge(std::string_view number, bool isHex)
{
    const std::size_t mantissaEnd = std::min(number.find_first_of(isHex ? "pP" : "eE"), number.size());
    const std::string_view mantissa = number.substr(0, mantissaEnd);
    const auto firstDigit = static_cast<std::int64_t>(mantissa.find_first_not_of("0."));
    const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
    const std::int64_t places = (point - firstDigit) * (isHex ? 4 : 1);
    return places + ReadExponent(number.substr(std::min(mantissaEnd + 1, number.size()))) > 0;
}

double ReadUnsigned(std::string_view text)
{
    const bool isHex = TakeHexPrefix(text);
    if (isHex) {
        text = text.substr(0, std::min(text.find("p+-"), text.find("P+-"))); // for from_chars this is an exponent
    }
    if (!text.empty() && text.front() == '-') {
        return 0.0; // a second sign
    }
    double number = 0.0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number,
        isHex ? std::chars_format::hex : std::chars_format::general);
    const std::string_view read = text.substr(0, static_cast<std::size_t>(rest - text.data()));
    if (error == std::errc::result_out_of_range) {
        return IsTooLarge(read, isHex) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    // A text that continues "inf" towards "infinity" must be the whole word.
    constexpr std::size_t SHORT_INFINITY = 3;
    text.remove_prefix(read.size());
    return std::isinf(number) && read.size() == SHORT_INFINITY && TakeFront(text, "iI") ? 0.0 : number;
}

} // namespace

double ReadDouble(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
    if (TakeFront(text, "-")) {
        return -ReadUnsigned(text);
    }
    TakeFront(text, "+");
    return ReadUnsigned(text);
}

} // namespace FT::sql
