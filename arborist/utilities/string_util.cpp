#include "arborist/utilities/string_util.h"

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <system_error>

#include "arborist/frame/log.h"
#include "arborist/utilities/platform.h"

namespace {

enum class Conversion { DONE, NOTHING_CONVERTED, OUT_OF_RANGE };

// Calls one of the strto... functions.
template <typename Number, typename Function>
Conversion Convert(const std::string& text, Number& number, std::size_t& used, Function function)
{
    const char* const begin = text.c_str();
    char* end = nullptr;
    errno = 0;
    const Number converted = function(begin, &end);
    if (end == begin) {
        return Conversion::NOTHING_CONVERTED;
    }
    if (errno == ERANGE) {
        return Conversion::OUT_OF_RANGE;
    }
    number = converted;
    used = static_cast<std::size_t>(end - begin);
    return Conversion::DONE;
}

Conversion ConvertWhole(const std::string& text, long long& number, int base, std::size_t& used)
{
    if (base < 0 || base == 1 || base > 36) {
        return Conversion::NOTHING_CONVERTED; // where strtoll need not set the end
    }
    const auto inBase = [base](const char* begin, char** end) { return std::strtoll(begin, end, base); };
    return Convert(text, number, used, inBase);
}

std::int32_t Low32(std::int64_t number)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

template <typename Number>
bool Holds(long long number)
{
    return number >= std::numeric_limits<Number>::min() && number <= std::numeric_limits<Number>::max();
}

bool IsDigit(char sign)
{
    return sign >= '0' && sign <= '9';
}

// Fast path for the usual number: few digits, with or without a point. Equals the standard conversion, as the digits
// and the power of ten are both exact doubles, so that one division rounds correctly. False if there is more to read.
bool ReadPlainNumber(const char* text, double& value)
{
    static constexpr double POWERS[] = {
        1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    constexpr std::ptrdiff_t MOST_DIGITS = std::size(POWERS) - 1; // a double represents all of these numbers
    std::int64_t digits = 0;
    std::ptrdiff_t decimals = 0;
    const char* end = text;
    for (; IsDigit(*end) && end - text < MOST_DIGITS; ++end) {
        digits = digits * 10 + (*end - '0');
    }
    if (end == text) {
        return false;
    }
    if (*end == '.') {
        for (++end; IsDigit(*end) && end - text <= MOST_DIGITS; ++end, ++decimals) {
            digits = digits * 10 + (*end - '0');
        }
    }
    // Only these characters would change the number that was read: another digit, an exponent, a hexadecimal prefix.
    if (IsDigit(*end) || *end == 'e' || *end == 'E' || *end == 'x' || *end == 'X') {
        return false;
    }
    value = static_cast<double>(digits) / POWERS[decimals];
    return true;
}

void SetEnd(std::size_t* endPosition, std::size_t used)
{
    if (endPosition != nullptr) {
        *endPosition = used;
    }
}

} // namespace

bool StringUtil::StoiS(const std::string& text, std::int32_t& value, int base, std::size_t* endPosition)
{
    long long number = 0;
    std::size_t used = 0;
    Conversion conversion = ConvertWhole(text, number, base, used);
    // The range is 32 bits on every machine, whatever the width of the compiler's long.
    if (conversion == Conversion::DONE && !Holds<std::int32_t>(number)) {
        conversion = Conversion::OUT_OF_RANGE;
    }
    if (conversion != Conversion::DONE) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: stoi exception: %s", "StringUtil::StoiS",
            conversion == Conversion::NOTHING_CONVERTED ? "invalid stoi argument" : "stoi argument out of range");
        return false;
    }
    SetEnd(endPosition, used);
    value = static_cast<std::int32_t>(number);
    return true;
}

bool StringUtil::StollS(const std::string& text, std::int32_t& value, int base, std::size_t* endPosition)
{
    long long number = 0;
    std::size_t used = 0;
    const Conversion conversion = ConvertWhole(text, number, base, used);
    if (conversion != Conversion::DONE) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: stoll exception: %s", "StringUtil::StollS",
            conversion == Conversion::NOTHING_CONVERTED ? "invalid stoll argument" : "stoll argument out of range");
        return false;
    }
    SetEnd(endPosition, used);
    // A number of more than 32 bits keeps its low 32 bits without a log line: rule files rely on that.
    value = Low32(number);
    return true;
}

std::int32_t StringUtil::StringToInt16Def(
    const std::string& text, std::int32_t defaultValue, int base, std::size_t* endPosition)
{
    std::int32_t value = 0;
    return StoiS(text, value, base, endPosition) && Holds<std::int16_t>(value) ? value : defaultValue;
}

std::int32_t StringUtil::StringToInt32Def(
    const std::string& text, std::int32_t defaultValue, int base, std::size_t* endPosition)
{
    std::int32_t value = 0;
    return StollS(text, value, base, endPosition) ? value : defaultValue;
}

std::int64_t StringUtil::StringToInt64Def(
    const std::string& text, std::int64_t defaultValue, int base, std::size_t* endPosition)
{
    // The name promises 64 bits, but ids and counts of rule files rely on the result of 32 bits.
    return StringToInt32Def(text, Low32(defaultValue), base, endPosition);
}

std::optional<std::int32_t> StringUtil::Int32Of(std::string_view text)
{
    std::int64_t plain = 0;
    // Where from_chars finds a number, strtoll finds the same; it also accepts white space and a plus sign before it.
    if (std::from_chars(text.data(), text.data() + text.size(), plain).ec == std::errc()) {
        return Low32(plain);
    }
    long long number = 0;
    std::size_t used = 0;
    return ConvertWhole(std::string(text), number, 10, used) == Conversion::DONE ? std::optional(Low32(number))
                                                                                  : std::nullopt;
}

std::optional<float> StringUtil::FloatOf(const std::string& text)
{
    float number = 0;
    std::size_t used = 0;
    return Convert(text, number, used, Platform::StrToFloat) == Conversion::DONE ? std::optional(number) : std::nullopt;
}

std::optional<double> StringUtil::DoubleOf(const std::string& text)
{
    double number = 0;
    std::size_t used = 0;
    const bool isNumber = ReadPlainNumber(text.c_str(), number)
        || Convert(text, number, used, Platform::StrToDouble) == Conversion::DONE;
    return isNumber ? std::optional(number) : std::nullopt;
}

std::string StringUtil::FixedText(double number)
{
    // Room for the sign, every digit that a double can have before the point, the point and six digits.
    char text[std::numeric_limits<double>::max_exponent10 + 16];
    return {text, std::to_chars(text, std::end(text), number, std::chars_format::fixed, 6).ptr};
}

float StringUtil::StringToFloatDef(const std::string& text, float defaultValue)
{
    const std::optional<float> number = FloatOf(text);
    if (!number) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: The retVal is invalid.", "StringUtil::StringToFloatDef");
    }
    return number.value_or(defaultValue);
}

double StringUtil::StringToDoubleDef(const std::string& text, double defaultValue)
{
    const std::optional<double> number = DoubleOf(text);
    if (!number) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: stod error", "StringUtil::StringToDoubleDef");
    }
    return number.value_or(defaultValue);
}

std::vector<std::string> StringUtil::Split(const std::string& text, const std::string& delimiters)
{
    std::vector<std::string> tokens;
    std::size_t begin = text.find_first_not_of(delimiters);
    while (begin != std::string::npos) {
        const std::size_t end = text.find_first_of(delimiters, begin);
        tokens.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(delimiters, end);
    }
    return tokens;
}

std::string StringUtil::TrimSP(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of(' ');
    if (begin == std::string::npos) {
        return "";
    }
    return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}
