#include "arborist/stores/sql/sql_value.h"

#include <cctype>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <system_error>
#include <utility>

#include "arborist/stores/sql/sql_text.h"

namespace FT::sql {
namespace {

constexpr std::size_t LONGEST_NUMBER = 127;
// Sign, every digit that a double can have before the point, the point and eight digits.
constexpr std::size_t LONGEST_DOUBLE = std::numeric_limits<double>::max_exponent10 + 16;

// strtod without the host's locale: a program that sets a decimal comma must not change what the tables hold.
double ReadDouble(const std::string& text)
{
    const char* begin = text.c_str();
    const char* const end = begin + text.size();
    while (begin != end && std::isspace(static_cast<unsigned char>(*begin)) != 0) {
        ++begin;
    }
    const char* digits = begin;
    const bool isNegative = digits != end && *digits == '-';
    if (digits != end && (*digits == '-' || *digits == '+')) {
        ++digits;
    }
    const bool isHex = end - digits > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X') &&
        std::isxdigit(static_cast<unsigned char>(digits[2])) != 0;
    if (isHex) {
        digits += 2;
    }
    if (digits != end && *digits == '-') {
        return 0.0; // a second sign
    }
    double number = 0.0;
    const auto format = isHex ? std::chars_format::hex : std::chars_format::general;
    const auto [rest, error] = std::from_chars(digits, end, number, format);
    if (error == std::errc::result_out_of_range) {
        return std::strtod(begin, nullptr);
    }
    return isNegative ? -number : number;
}

} // namespace

void SqlValue::SetValue(std::string text, FieldType valueType)
{
    isNull = text.empty();
    value = std::move(text);
    type = valueType;
}

void SqlValue::SetNull()
{
    isNull = true;
    value.clear();
}

void SqlValue::SetString(std::string text)
{
    isNull = false;
    value = std::move(text);
}

void SqlValue::SetInteger(long long number)
{
    SetString(IntegerToStr(number));
}

void SqlValue::SetDouble(double number)
{
    char text[LONGEST_DOUBLE];
    const auto [end, error] = std::to_chars(text, text + sizeof(text), number, std::chars_format::fixed, 8);
    std::string written(text, end);
    if (written.size() > LONGEST_NUMBER) {
        written.resize(LONGEST_NUMBER);
    }
    SetString(std::move(written));
}

long long SqlValue::AsInteger() const
{
    return std::strtoll(value.c_str(), nullptr, 10);
}

double SqlValue::AsDouble() const
{
    return ReadDouble(value);
}

std::string SqlValue::ToSql(FieldType fieldType) const
{
    if (isNull) {
        return "null";
    }
    return fieldType == TypeText ? "'" + QuoteStr(value) + "'" : value;
}

} // namespace FT::sql
