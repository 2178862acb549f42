#include "arborist/stores/sql/sql_value_number.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/support/random_cases.h"

namespace FT::sql {
namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();

struct NumberCase { const char* name; std::string text; double expected; };
void PrintTo(const NumberCase& numberCase, std::ostream* out) { *out << numberCase.name; }
class ReadDoubleOf : public testing::TestWithParam<NumberCase> {};

TEST_P(ReadDoubleOf, GivesTheNumberAtTheFront)
{
    const double number = ReadDouble(GetParam().text);
    EXPECT_EQ(number, GetParam().expected);
    EXPECT_EQ(std::signbit(number), std::signbit(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Table, ReadDoubleOf, testing::Values(
    NumberCase{"Nothing", "", 0.0}, NumberCase{"BlanksAlone", " \t\n\v\f\r", 0.0},
    NumberCase{"EveryBlank", " \t\n\v\f\r7", 7.0}, NumberCase{"BlankBehindASign", "- 7", -0.0},
    NumberCase{"PointInFront", ".5", 0.5}, NumberCase{"PointAlone", ".", 0.0}, NumberCase{"PointBehind", "5.", 5.0},
    NumberCase{"SecondPoint", "1.5.5", 1.5}, NumberCase{"CommaEndsIt", "1,5", 1.0},
    NumberCase{"ExponentWithoutDigits", "1e+", 1.0}, NumberCase{"ZeroByteEndsIt", std::string("1\0" "5", 3), 1.0},
    NumberCase{"HexFraction", "0x.8", 0.5}, NumberCase{"HexPointWithoutDigits", "0x.g", 0.0},
    NumberCase{"HexFractionInCapitals", "-0X1.8P1", -3.0}, NumberCase{"HexExponent", "0x.8p3", 4.0},
    NumberCase{"HexExponentWithTwoSigns", "0x8p+-3", 8.0}, NumberCase{"HexSecondSign", "0x-8", 0.0}, NumberCase{"HexNoInfinity", "0xinf", 0.0},
    NumberCase{"TwoZerosAreNoHex", "00x8", 0.0},
    NumberCase{"Infinity", "-Infinity", -INFINITE}, NumberCase{"ShortInfinity", "infx", INFINITE},
    NumberCase{"HalfOfInfinity", "infini", 0.0}, NumberCase{"HalfOfAnotherInfinity", "INFIx", 0.0},
    NumberCase{"TextBehindInfinity", "infinityi", INFINITE},
    NumberCase{"TooLarge", "1.5e999", INFINITE}, NumberCase{"TooLargeWithoutExponent", std::string(400, '9'), INFINITE},
    NumberCase{"TooLargeBehindZeros", "0.001e999", INFINITE},
    NumberCase{"TooLargeForAnExponent", "-1e99999999999999999999", -INFINITE},
    NumberCase{"TooSmall", "123.5e-999", 0.0}, NumberCase{"TooSmallWithoutExponent", "0." + std::string(400, '0') + "1", 0.0},
    NumberCase{"TooSmallForAnExponent", "-1e-99999999999999999999", -0.0},
    NumberCase{"LongButInRange", std::string(400, '9') + "e-400", 1.0},
    NumberCase{"HexTooLarge", "0x1.8p1024", INFINITE}, NumberCase{"HexTooSmall", "0x1p-1076", 0.0},
    NumberCase{"Smallest", "4.9e-324", std::numeric_limits<double>::denorm_min()}),
    CaseName());

TEST(ReadDoubleTest, WhatIsNoNumberByItsWordIsNone)
{
    for (const char* const text : {"nan", "-NaN", "nan(1)", "nan(abc)x", "nanx"}) {
        EXPECT_TRUE(std::isnan(ReadDouble(text))) << text;
    }
}

// The result of the C library in its default locale, in which the tests run.
double Scan(const std::string& text)
{
    double number = 0.0;
    return std::sscanf(text.c_str(), "%lf", &number) == 1 ? number : 0.0;
}

bool IsSame(double one, double other)
{
    return std::isnan(one) ? std::isnan(other) : one == other;
}

TEST(ReadDoubleRandomTest, AgreesWithTheLibraryOnAnyText)
{
    RandomCases cases(5000);
    for (int index = 0; index < cases.GetCount(); ++index) {
        const std::string text = cases.Join({" ", "\t", "-", "+", "0x", "0X", "0", "0", "1", "9", "7f", ".", ".", "e",
            "E", "p", "P", "e-", "p+", "308", "324", "1023", "1074", "00000000000000000", "123456789012345678901",
            "inf", "init", "Infinity", "y", "nan", "nan(", ")", "a", "x", ",", "\xA0"}, 8);
        EXPECT_TRUE(IsSame(ReadDouble(text), Scan(text))) << "'" << text << "' seed " << cases.GetSeed();
    }
}

TEST(ReadDoubleRandomTest, AgreesWithTheLibraryOnNumbers)
{
    RandomCases cases(5000);
    for (int index = 0; index < cases.GetCount(); ++index) {
        const bool isHex = cases.OnceIn(3);
        const char* const digits = isHex ? "0123456789abcdef" : "0123456789";
        const std::string text = std::string(cases.OnceIn(2) ? "-" : "") + (isHex ? "0x" : "") +
            cases.Text(digits, 25) + "." + cases.Text(digits, 25) + (isHex ? "p" : "e") +
            (cases.OnceIn(2) ? "-" : "") + std::to_string(cases.Below(cases.OnceIn(4) ? 1200 : 340));
        EXPECT_TRUE(IsSame(ReadDouble(text), Scan(text))) << "'" << text << "' seed " << cases.GetSeed();
    }
}

} // namespace
} // namespace FT::sql
