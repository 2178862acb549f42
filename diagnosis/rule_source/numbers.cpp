#include "diagnosis/rule_source/numbers.h"

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <string>

namespace diagnosis::rule_source {

WholeNumber ReadWholeNumber(std::string_view text)
{
    const std::string digits(text);
    char* end = nullptr;
    errno = 0;
    const long long number = std::strtoll(digits.c_str(), &end, 10);
    WholeNumber read;
    read.isNumber = end != digits.c_str() && errno != ERANGE;
    if (!read.isNumber) {
        return read;
    }
    read.value = static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
    read.isWhole = *end == '\0';
    read.isCut = number < std::numeric_limits<std::int32_t>::min() || number > std::numeric_limits<std::int32_t>::max();
    return read;
}

bool ReadDecimalNumber(std::string_view text, double& number)
{
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    double read = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read);
    const bool isRead = error == std::errc() && end == text.data() + text.size();
    number = isRead ? read : number;
    return isRead;
}

bool IsDecimalNumber(std::string_view text)
{
    double number = 0;
    return ReadDecimalNumber(text, number);
}

} // namespace diagnosis::rule_source
