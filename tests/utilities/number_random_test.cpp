// Compares the conversions of texts to numbers with those of the C library on random texts.

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "arborist/utilities/string_util.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_cases.h"

namespace {

std::string IntegerText(RandomCases& cases)
{
    return cases.Join({" ", "\t", "\n", "-", "+", "0x", "0X", "0", "00", "1", "7", "9", "a", "z", "Z", "f", ".", "e5",
        "2147483647", "2147483648", "4294967296", "9223372036854775807", "9223372036854775808", "\xA0"}, 5);
}

std::string FloatText(RandomCases& cases)
{
    return cases.Join({" ", "\t", "-", "+", "0x", "0", "0", "1", "9", "75", "123456789", "123456789012345", ".", ".",
        ".", "e", "E-", "e+", "p", "p-", "38", "308", "400", "45", "324", "inf", "inity", "nan", "nan(1)", "x", ","}, 7);
}

// The result of strtoll; nothing if it fails.
std::optional<long long> Whole(const std::string& text, int base, std::size_t& used)
{
    char* end = nullptr;
    errno = 0;
    const long long number = std::strtoll(text.c_str(), &end, base);
    used = static_cast<std::size_t>(end - text.c_str());
    return used == 0 || errno == ERANGE ? std::nullopt : std::optional(number);
}

template <typename Number>
Number Real(const std::string& text, Number otherwise, Number (*convert)(const char*, char**))
{
    char* end = nullptr;
    errno = 0;
    const Number number = convert(text.c_str(), &end);
    return end == text.c_str() || errno == ERANGE ? otherwise : number;
}

template <typename Number>
bool IsSame(Number one, Number other)
{
    return std::isnan(one) ? std::isnan(other) : one == other && std::signbit(one) == std::signbit(other);
}

TEST(NumberRandomTest, WholeNumbersAreThoseOfTheLibraryInTheirLow32Bits)
{
    const LogCapture log;
    RandomCases cases(5000);
    for (int index = 0; index < cases.GetCount(); ++index) {
        const std::string text = IntegerText(cases);
        const int base = std::vector<int>{10, 10, 0, 2, 8, 16, 36}[cases.Below(7)];
        std::size_t used = 0;
        const std::optional<long long> whole = Whole(text, base, used);
        const auto expected = static_cast<std::int32_t>(static_cast<std::uint32_t>(whole.value_or(-7)));
        std::size_t end = 0;
        EXPECT_EQ(StringUtil::StringToInt32Def(text, -7, base, &end), expected) << "'" << text << "' base " << base;
        EXPECT_EQ(end, whole ? used : 0) << "'" << text << "' base " << base;
        EXPECT_EQ(StringUtil::StringToInt64Def(text, -7, base), expected) << "'" << text << "' base " << base;
    }
}

TEST(NumberRandomTest, WholeNumbersOf16BitsAreNotCut)
{
    const LogCapture log;
    RandomCases cases(5000);
    for (int index = 0; index < cases.GetCount(); ++index) {
        const std::string text = cases.OnceIn(2) ? IntegerText(cases)
                                                 : std::to_string(static_cast<int>(cases.Below(100000)) - 50000);
        std::size_t used = 0;
        const long long whole = Whole(text, 10, used).value_or(-7);
        const bool fits = whole >= -32768 && whole <= 32767;
        EXPECT_EQ(StringUtil::StringToInt16Def(text, -7), fits ? whole : -7) << "'" << text << "'";
    }
}

TEST(NumberRandomTest, RealNumbersAreThoseOfTheLibrary)
{
    const LogCapture log;
    RandomCases cases(5000);
    for (int index = 0; index < cases.GetCount(); ++index) {
        const std::string text = FloatText(cases);
        EXPECT_TRUE(IsSame(StringUtil::StringToDoubleDef(text, -7), Real(text, -7.0, std::strtod))) << "'" << text << "'";
        EXPECT_TRUE(IsSame(StringUtil::StringToFloatDef(text, -7), Real(text, -7.0F, std::strtof))) << "'" << text << "'";
    }
}

TEST(NumberRandomTest, TextsOfNumbersAreThoseOfTheLibrary)
{
    RandomCases cases(5000);
    for (int index = 0; index < cases.GetCount(); ++index) {
        const double sign = cases.OnceIn(2) ? -1.0 : 1.0;
        const double number = sign * static_cast<double>(cases.Below(1000000000)) *
            std::pow(10.0, static_cast<double>(cases.Below(640)) - 330.0);
        char text[400];
        std::snprintf(text, sizeof(text), "%f", number);
        EXPECT_EQ(StringUtil::FixedText(number), text);
    }
}

} // namespace
