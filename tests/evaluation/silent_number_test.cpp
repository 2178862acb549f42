#include "arborist/evaluation/silent_number.h"

#include <string>

#include <gmock/gmock.h>

#include "arborist/utilities/string_util.h"
#include "tests/support/log_capture.h"

namespace {

TEST(SilentNumberTest, WholeNumbersAreThoseOfTheConversionAndSilent)
{
    LogCapture log;
    for (const std::string text : {"0", "5", "-5", "007", "5x", "2.5", "4294967301", "-2147483649", "0x10",
             "9223372036854775807"}) {
        EXPECT_EQ(SilentNumber::Int32Of(text), StringUtil::StringToInt32Def(text, 77, 10)) << text;
    }
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
}

TEST(SilentNumberTest, TextsThatMayLeaveALineAreNone)
{
    for (const char* const text : {"", "x", "-", "+5", " 5", "9223372036854775808"}) {
        EXPECT_EQ(SilentNumber::Int32Of(text), std::nullopt) << text;
    }
    for (const char* const text : {"", "x", "-", ".5", "+5", " 5", "5x", "1e1", "0x1p3", "nan", "12345678901234567"}) {
        EXPECT_FALSE(SilentNumber::IsReal(text)) << text;
    }
}

TEST(SilentNumberTest, RealNumbersAreReadInSilence)
{
    LogCapture log;
    for (const std::string text : {"0", "5", "-5", "2.5", "5.", "-0.0", "0.00000000000001", "9999999999999999"}) {
        EXPECT_TRUE(SilentNumber::IsReal(text)) << text;
        StringUtil::StringToFloatDef(text, 0);
        StringUtil::StringToDoubleDef(text, 0);
    }
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
}

} // namespace
