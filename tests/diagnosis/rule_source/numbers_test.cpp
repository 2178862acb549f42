#include "diagnosis/rule_source/numbers.h"

#include <gtest/gtest.h>

#include "tests/support/case_name.h"

namespace diagnosis::rule_source {
namespace {

struct NumberCase { const char* name; const char* text; const char* read; };
void PrintTo(const NumberCase& number, std::ostream* out) { *out << number.name; }
class WholeNumberText : public testing::TestWithParam<NumberCase> {};

// "5 whole", "5" for one with more behind it, "-1 whole cut"; empty for none.
TEST_P(WholeNumberText, IsReadAsTheEngineReadsIt)
{
    const WholeNumber number = ReadWholeNumber(GetParam().text);
    const std::string text =
        std::to_string(number.value) + (number.isWhole ? " whole" : "") + (number.isCut ? " cut" : "");
    EXPECT_EQ(number.isNumber ? text : "", GetParam().read);
}

INSTANTIATE_TEST_SUITE_P(Table, WholeNumberText, testing::Values(NumberCase{"Number", "5", "5 whole"},
    NumberCase{"BlanksAndSign", " -5", "-5 whole"}, NumberCase{"MoreBehindIt", "5 days", "5"}, NumberCase{"Nothing", "", ""},
    NumberCase{"Words", "days", ""}, NumberCase{"Largest", "2147483647", "2147483647 whole"},
    NumberCase{"TooLarge", "2147483648", "-2147483648 whole cut"}, NumberCase{"TooSmall", "-2147483649", "2147483647 whole cut"},
    NumberCase{"BeyondSixtyFourBits", "9223372036854775808", ""}), CaseName());

TEST(DecimalNumberText, IsReadWholeOrNotAtAll)
{
    double number = 7;
    EXPECT_TRUE(ReadDecimalNumber("+1.5e2", number));
    EXPECT_EQ(number, 150);
    for (const char* text : {"", "+", "+-1", "1.5x", " 1", "1e999"}) {
        EXPECT_FALSE(ReadDecimalNumber(text, number)) << text;
        EXPECT_EQ(number, 150);
    }
    EXPECT_TRUE(IsDecimalNumber("-0.5"));
    EXPECT_FALSE(IsDecimalNumber("0,5"));
}

} // namespace
} // namespace diagnosis::rule_source
