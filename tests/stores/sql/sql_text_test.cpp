#include "arborist/stores/sql/sql_text.h"

#include <climits>

#include <gtest/gtest.h>

namespace FT::sql {
namespace {

TEST(SqlTextTest, NumbersBecomeDecimalText)
{
    EXPECT_EQ(IntToStr(-12), "-12");
    EXPECT_EQ(IntegerToStr(LLONG_MIN), "-9223372036854775808");
}

TEST(SqlTextTest, QuotingDoublesSingleQuotesAndNothingElse)
{
    EXPECT_EQ(QuoteStr("it's 'so' \"\\"), "it''s ''so'' \"\\");
    EXPECT_EQ(QuoteStr(""), "");
}

TEST(SqlTextTest, TrimmingTakesWhiteSpaceOfEveryKind)
{
    std::string text = " \t\n a b \r\v\f";
    EXPECT_EQ(Trim(static_cast<const std::string&>(text)), "a b");
    std::string left = text;
    TrimLeft(left);
    EXPECT_EQ(left, "a b \r\v\f");
    TrimRight(text);
    EXPECT_EQ(text, " \t\n a b");
    Trim(text);
    EXPECT_EQ(text, "a b");
}

TEST(SqlTextTest, TrimmingBlanksAloneLeavesNothing)
{
    std::string text = "  ";
    Trim(text);
    EXPECT_EQ(text, "");
    std::string umlaut = "\xC4";
    Trim(umlaut);
    EXPECT_EQ(umlaut, "\xC4");
}

TEST(SqlTextTest, FormatsIntoTheBufferAndCutsAtItsSize)
{
    char buffer[8];
    EXPECT_STREQ(Sqlite3Snprintf(sizeof(buffer), buffer, "%d %lld %s", 1, 23LL, "456789"), "1 23 45");
}

} // namespace
} // namespace FT::sql
