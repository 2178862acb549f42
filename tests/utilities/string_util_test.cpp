#include "arborist/utilities/string_util.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/support/case_name.h"
#include "tests/support/decimal_comma.h"
#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char STOI_INVALID[] = "FUNc:StringUtil::StoiS: stoi exception: invalid stoi argument";
constexpr char STOI_RANGE[] = "FUNc:StringUtil::StoiS: stoi exception: stoi argument out of range";
constexpr char STOLL_INVALID[] = "FUNc:StringUtil::StollS: stoll exception: invalid stoll argument";
constexpr char STOLL_RANGE[] = "FUNc:StringUtil::StollS: stoll exception: stoll argument out of range";

// The result of a conversion with the default 7, and its log line; null if it logs nothing.
struct NumberCase { const char* name; const char* text; int base; std::int64_t expected; const char* line; };
void PrintTo(const NumberCase& numberCase, std::ostream* out) { *out << numberCase.name; }

class NumberTest : public testing::TestWithParam<NumberCase> {
protected:
    void ExpectLine() const
    {
        if (GetParam().line == nullptr) {
            EXPECT_THAT(mLog.Lines(), IsEmpty());
        } else {
            EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(GetParam().line));
        }
    }

    LogCapture mLog;
};

class Int32Conversion : public NumberTest {};

TEST_P(Int32Conversion, GivesTheNumberOrTheDefault)
{
    EXPECT_EQ(StringUtil::StringToInt32Def(GetParam().text, 7, GetParam().base), GetParam().expected);
    ExpectLine();
}

TEST_P(Int32Conversion, IsThatOfTheWideOne)
{
    EXPECT_EQ(StringUtil::StringToInt64Def(GetParam().text, 7, GetParam().base), GetParam().expected);
    ExpectLine();
}

INSTANTIATE_TEST_SUITE_P(Table, Int32Conversion, testing::Values(
    NumberCase{"Digits", "42", 10, 42, nullptr},
    NumberCase{"SignAndWhiteSpaceInFront", " \t\n-42", 10, -42, nullptr},
    NumberCase{"LettersBehindDoNotMatter", "42abc", 10, 42, nullptr},
    NumberCase{"FractionIsCutOff", "3.9", 10, 3, nullptr},
    NumberCase{"WithoutDigitsTheDefault", "abc", 10, 7, STOLL_INVALID},
    NumberCase{"EmptyTheDefault", "", 10, 7, STOLL_INVALID},
    NumberCase{"SignAloneTheDefault", "-", 10, 7, STOLL_INVALID},
    NumberCase{"HexadecimalPrefix", "0x1F", 16, 31, nullptr},
    NumberCase{"PrefixWithoutItsBaseIsZero", "0x1F", 10, 0, nullptr},
    NumberCase{"BaseByPrefix", "0x10", 0, 16, nullptr},
    NumberCase{"BaseThatDoesNotExist", "1", 1, 7, STOLL_INVALID},
    NumberCase{"GreatestBase", "z", 36, 35, nullptr},
    NumberCase{"BaseBeyondTheLetters", "1", 37, 7, STOLL_INVALID},
    NumberCase{"NegativeBase", "1", -2, 7, STOLL_INVALID},
    NumberCase{"TwoTo32Plus1KeepsItsLowBits", "4294967297", 10, 1, nullptr},
    NumberCase{"TwoTo31TurnsNegative", "2147483648", 10, -2147483648LL, nullptr},
    NumberCase{"Greatest64BitsAreMinusOne", "9223372036854775807", 10, -1, nullptr},
    NumberCase{"Beyond64BitsTheDefault", "9223372036854775808", 10, 7, STOLL_RANGE},
    NumberCase{"Below64BitsTheDefault", "-9223372036854775809", 10, 7, STOLL_RANGE}),
    CaseName());

class Int16Conversion : public NumberTest {};

TEST_P(Int16Conversion, GivesTheNumberOrTheDefault)
{
    EXPECT_EQ(StringUtil::StringToInt16Def(GetParam().text, 7, GetParam().base), GetParam().expected);
    ExpectLine();
}

INSTANTIATE_TEST_SUITE_P(Table, Int16Conversion, testing::Values(
    NumberCase{"Smallest", "-32768", 10, -32768, nullptr},
    NumberCase{"Greatest", "32767", 10, 32767, nullptr},
    NumberCase{"TooSmall", "-32769", 10, 7, nullptr},
    NumberCase{"TooGreatWithoutALine", "40000", 10, 7, nullptr},
    NumberCase{"Greatest32BitsWithoutALine", "2147483647", 10, 7, nullptr},
    NumberCase{"Beyond32BitsIsOutOfRange", "2147483648", 10, 7, STOI_RANGE},
    NumberCase{"Beyond64BitsIsOutOfRange", "9223372036854775808", 10, 7, STOI_RANGE},
    NumberCase{"LettersBehindDoNotMatter", "12 apples", 10, 12, nullptr},
    NumberCase{"WithoutDigits", "apples", 10, 7, STOI_INVALID},
    NumberCase{"Empty", "", 10, 7, STOI_INVALID},
    NumberCase{"Hexadecimal", "0x7f", 16, 127, nullptr}),
    CaseName());

class StringUtilTest : public testing::Test {
protected:
    LogCapture mLog;
};

TEST_F(StringUtilTest, WideDefaultIsTakenFromItsLow32Bits)
{
    EXPECT_EQ(StringUtil::StringToInt64Def("", 4294967297LL), 1);
    EXPECT_EQ(StringUtil::StringToInt64Def("", 0xFFFFFFFFLL), -1);
    EXPECT_EQ(StringUtil::StringToInt64Def("", -5), -5);
}

TEST_F(StringUtilTest, EndPositionIsTheNumberOfCharactersUsed)
{
    std::size_t end = 99;
    std::int32_t value = 0;
    EXPECT_TRUE(StringUtil::StoiS(" 12,", value, 10, &end));
    EXPECT_EQ(end, 3U);
    EXPECT_TRUE(StringUtil::StollS("0x1fg", value, 16, &end));
    EXPECT_EQ(end, 4U);
    StringUtil::StringToInt16Def("5", 0, 10, &end);
    EXPECT_EQ(end, 1U);
    StringUtil::StringToInt32Def("-55", 0, 10, &end);
    EXPECT_EQ(end, 3U);
    StringUtil::StringToInt64Def("55", 0, 10, &end);
    EXPECT_EQ(end, 2U);
}

TEST_F(StringUtilTest, FailureLeavesValueAndEndPositionAlone)
{
    std::size_t end = 99;
    std::int32_t value = 5;
    EXPECT_FALSE(StringUtil::StoiS("x", value, 10, &end));
    EXPECT_FALSE(StringUtil::StoiS("99999999999", value, 10, &end));
    EXPECT_FALSE(StringUtil::StollS("x", value, 10, &end));
    EXPECT_FALSE(StringUtil::StollS("99999999999999999999", value, 10, &end));
    EXPECT_EQ(value, 5);
    EXPECT_EQ(end, 99U);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(STOI_INVALID, STOI_RANGE, STOLL_INVALID, STOLL_RANGE));
}

TEST_F(StringUtilTest, FloatsConvertFromTheirStart)
{
    EXPECT_EQ(StringUtil::StringToFloatDef("1.5kg", 0), 1.5F);
    EXPECT_EQ(StringUtil::StringToFloatDef(" -2e2", 0), -200.0F);
    EXPECT_EQ(StringUtil::StringToDoubleDef("1.5kg", 0), 1.5);
    EXPECT_EQ(StringUtil::StringToDoubleDef("0x10", 0), 16.0);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(StringUtilTest, BadFloatIsTheDefaultAndLogsOnce)
{
    constexpr char LINE[] = "FUNc:StringUtil::StringToFloatDef: The retVal is invalid.";
    EXPECT_EQ(StringUtil::StringToFloatDef("", 2.5F), 2.5F);
    EXPECT_EQ(StringUtil::StringToFloatDef("kg", 2.5F), 2.5F);
    EXPECT_EQ(StringUtil::StringToFloatDef("1e39", 2.5F), 2.5F);
    EXPECT_EQ(StringUtil::StringToFloatDef("1e-60", 2.5F), 2.5F);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(LINE, LINE, LINE, LINE));
}

TEST_F(StringUtilTest, BadDoubleIsTheDefaultAndLogsOnce)
{
    constexpr char LINE[] = "FUNc:StringUtil::StringToDoubleDef: stod error";
    EXPECT_EQ(StringUtil::StringToDoubleDef("", 2.5), 2.5);
    EXPECT_EQ(StringUtil::StringToDoubleDef("kg", 2.5), 2.5);
    EXPECT_EQ(StringUtil::StringToDoubleDef("1e309", 2.5), 2.5);
    EXPECT_EQ(StringUtil::StringToDoubleDef("1e-400", 2.5), 2.5);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(LINE, LINE, LINE, LINE));
}

TEST_F(StringUtilTest, HostWithADecimalCommaChangesNoNumber)
{
    const DecimalComma host;
    if (!host.IsSet()) {
        GTEST_SKIP() << "no program that makes a locale";
    }
    EXPECT_EQ(std::strtod("1.5", nullptr), 1.0) << "the locale is in force";
    EXPECT_EQ(StringUtil::StringToDoubleDef("1.5", 0), 1.5);
    EXPECT_EQ(StringUtil::StringToDoubleDef("-1.5e1", 0), -15.0);
    EXPECT_EQ(StringUtil::StringToFloatDef("1.5", 0), 1.5F);
    EXPECT_EQ(StringUtil::StringToDoubleDef("1,5", 0), 1.0);
    EXPECT_EQ(StringUtil::FixedText(1.5), "1.500000");
}

TEST_F(StringUtilTest, NumbersWithoutADefaultAreThoseOfTheConversions)
{
    for (const std::string text : {"0", "5", "-5", "007", "5x", "2.5", "4294967301", "-2147483649", "0x10", "+5", " 5",
             "9223372036854775807", "-0.0", ".5", "1e1", "12345678901234567", "0.00000000000001"}) {
        mLog.Clear();
        EXPECT_EQ(StringUtil::FloatOf(text), StringUtil::StringToFloatDef(text, 77)) << text;
        EXPECT_EQ(StringUtil::DoubleOf(text), StringUtil::StringToDoubleDef(text, 77)) << text;
        EXPECT_THAT(mLog.Lines(), IsEmpty());
        const std::int32_t number = StringUtil::StringToInt32Def(text, 77);
        EXPECT_EQ(StringUtil::Int32Of(text), mLog.Lines().empty() ? std::optional(number) : std::nullopt) << text;
    }
}

TEST_F(StringUtilTest, TextsWithoutANumberAreNothingAndLogNothing)
{
    for (const char* const text : {"", "x", "-", "+-5", "9223372036854775808"}) {
        EXPECT_EQ(StringUtil::Int32Of(text), std::nullopt) << text;
    }
    for (const char* const text : {"", "x", "-", ".", "1e999", "1e-999"}) {
        EXPECT_EQ(StringUtil::FloatOf(text), std::nullopt) << text;
        EXPECT_EQ(StringUtil::DoubleOf(text), std::nullopt) << text;
    }
    EXPECT_EQ(StringUtil::FloatOf("1e39"), std::nullopt);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST(FixedTextTest, WritesSixDigitsBehindThePoint)
{
    for (const double number : {0.0, -0.0, 1.5, -2.0 / 3.0, 1e-7, 123456789.0, 1e22, 1.7976931348623157e308}) {
        char text[400];
        std::snprintf(text, sizeof(text), "%f", number);
        EXPECT_EQ(StringUtil::FixedText(number), text);
    }
    EXPECT_EQ(StringUtil::FixedText(std::numeric_limits<double>::infinity()), "inf");
}

TEST(SplitTest, GivesNoEmptyTokens)
{
    EXPECT_THAT(StringUtil::Split(",one,,two,", ","), ElementsAre("one", "two"));
    EXPECT_THAT(StringUtil::Split("one", ","), ElementsAre("one"));
    EXPECT_THAT(StringUtil::Split(",,,", ","), IsEmpty());
    EXPECT_THAT(StringUtil::Split("", ","), IsEmpty());
}

TEST(SplitTest, DelimitersAreASet)
{
    EXPECT_THAT(StringUtil::Split("a b,c, d", " ,"), ElementsAre("a", "b", "c", "d"));
}

TEST(SplitTest, WithoutDelimitersTheTextIsOneToken)
{
    EXPECT_THAT(StringUtil::Split("a b,c", ""), ElementsAre("a b,c"));
    EXPECT_THAT(StringUtil::Split("", ""), IsEmpty());
}

TEST(TrimSPTest, RemovesSpacesAtBothEndsOnly)
{
    EXPECT_EQ(StringUtil::TrimSP("  a b "), "a b");
    EXPECT_EQ(StringUtil::TrimSP(" \ta\t "), "\ta\t");
    EXPECT_EQ(StringUtil::TrimSP("a"), "a");
    EXPECT_EQ(StringUtil::TrimSP("   "), "");
    EXPECT_EQ(StringUtil::TrimSP(""), "");
}

TEST_F(StringUtilTest, PlainNumbersReadAsTheStandardConversionReadsThem)
{
    for (const char* text : {"0", "7", "007", "5.", "5.e1", "75.000000", "0.1", "999999999999999", "9999999999999999",
             "0.123456789012345", "123456.7890123456", "12.5x", "12.5e1", "1e", "0x", "0X", "0X1F", "0x1p3", "1.2.3", "30000\n"}) {
        EXPECT_EQ(StringUtil::StringToDoubleDef(text, -1), std::strtod(text, nullptr)) << text;
    }
    std::mt19937_64 random(20);
    for (int round = 0; round < 20000; ++round) {
        std::string text = std::to_string(random() >> (random() % 64));
        text.insert(random() % (text.size() + 1), 1, "0123456789.,x "[random() % 14]);
        text.insert(0, 1, '1'); // so that something converts
        ASSERT_EQ(StringUtil::StringToDoubleDef(text, 0), std::strtod(text.c_str(), nullptr)) << text;
    }
}

} // namespace
