#include "arborist/stores/sql/sql_value.h"

#include <climits>
#include <cmath>

#include <gtest/gtest.h>

#include "tests/support/case_name.h"

namespace FT::sql {
namespace {

SqlValue ValueOf(const std::string& text)
{
    SqlValue value;
    value.SetValue(text, TypeText);
    return value;
}

TEST(SqlValueTest, DefaultValueIsNull)
{
    const SqlValue value;
    EXPECT_TRUE(value.IsNull());
    EXPECT_EQ(value.AsString(), "");
    EXPECT_EQ(value.ToSql(TypeNone), "null");
}

TEST(SqlValueTest, EmptyTextOfARowIsNull)
{
    SqlValue value = ValueOf("x");
    value.SetValue("", TypeText);
    EXPECT_TRUE(value.IsNull());
    EXPECT_EQ(value.ToSql(TypeText), "null");
    EXPECT_EQ(value.AsInteger(), 0);
    EXPECT_EQ(value.AsDouble(), 0.0);
    EXPECT_EQ(value.AsString(), "");
}

TEST(SqlValueTest, EmptyTextOfASetterIsNotNull)
{
    SqlValue value;
    value.SetString("");
    EXPECT_FALSE(value.IsNull());
    EXPECT_EQ(value.ToSql(TypeText), "''");
    EXPECT_EQ(value.AsInteger(), 0);
}

TEST(SqlValueTest, SettingNullDropsTheText)
{
    SqlValue value = ValueOf("x");
    value.SetNull();
    EXPECT_TRUE(value.IsNull());
    EXPECT_EQ(value.AsString(), "");
}

TEST(SqlValueTest, TypeOfTheFieldDecidesTheQuotes)
{
    const SqlValue value = ValueOf("it's");
    EXPECT_EQ(value.ToSql(TypeText), "'it''s'");
    EXPECT_EQ(value.ToSql(TypeInteger), "it's");
    EXPECT_EQ(value.ToSql(TypeReal), "it's");
    EXPECT_EQ(value.ToSql(TypeNone), "it's");
}

struct IntegerCase { const char* name; const char* text; long long expected; };
void PrintTo(const IntegerCase& integerCase, std::ostream* out) { *out << integerCase.name; }
class SqlValueInteger : public testing::TestWithParam<IntegerCase> {};

TEST_P(SqlValueInteger, ReadsTheNumberAtTheFront)
{
    EXPECT_EQ(ValueOf(GetParam().text).AsInteger(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, SqlValueInteger, testing::Values(
    IntegerCase{"PrefixIsEnough", "12abc", 12}, IntegerCase{"NoNumber", "abc", 0},
    IntegerCase{"BlanksAndSign", "  -7", -7}, IntegerCase{"Fraction", "1.9", 1}, IntegerCase{"HexIsZero", "0x10", 0},
    IntegerCase{"TooLarge", "99999999999999999999", LLONG_MAX},
    IntegerCase{"Largest", "9223372036854775807", LLONG_MAX}),
    CaseName());

struct DoubleCase { const char* name; const char* text; double expected; };
void PrintTo(const DoubleCase& doubleCase, std::ostream* out) { *out << doubleCase.name; }
class SqlValueDouble : public testing::TestWithParam<DoubleCase> {};

TEST_P(SqlValueDouble, ReadsTheNumberAtTheFront)
{
    EXPECT_EQ(ValueOf(GetParam().text).AsDouble(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, SqlValueDouble, testing::Values(
    DoubleCase{"Plain", "1.5", 1.5}, DoubleCase{"PrefixIsEnough", "2.25km", 2.25}, DoubleCase{"NoNumber", "km", 0.0},
    DoubleCase{"BlanksAndSign", " \t-0.5", -0.5}, DoubleCase{"Plus", "+3", 3.0}, DoubleCase{"TwoSigns", "--3", 0.0},
    DoubleCase{"PlusMinus", "+-3", 0.0}, DoubleCase{"Exponent", "1e3", 1000.0}, DoubleCase{"Hex", "0x10", 16.0},
    DoubleCase{"HexWithoutDigits", "0xg", 0.0}, DoubleCase{"TooSmall", "-1e-999", -0.0},
    DoubleCase{"TooLarge", "1e999", HUGE_VAL}),
    CaseName());

TEST(SqlValueTest, DoublesHaveEightDigitsBehindThePoint)
{
    SqlValue value;
    value.SetDouble(1.5);
    EXPECT_EQ(value.AsString(), "1.50000000");
    EXPECT_FALSE(value.IsNull());
    value.SetDouble(-0.000000005);
    EXPECT_EQ(value.AsString(), "-0.00000001");
}

TEST(SqlValueTest, DoubleOfTooManyCharactersLosesItsTail)
{
    SqlValue value;
    value.SetDouble(1e300);
    EXPECT_EQ(value.AsString().size(), 127U);
    EXPECT_EQ(value.AsString().substr(0, 5), "10000");
    value.SetDouble(-1.7976931348623157e308);
    EXPECT_EQ(value.AsString().substr(0, 5), "-1797");
}

TEST(SqlValueTest, IntegersAreDecimal)
{
    SqlValue value;
    value.SetInteger(LLONG_MIN);
    EXPECT_EQ(value.AsString(), "-9223372036854775808");
    EXPECT_EQ(value.AsInteger(), LLONG_MIN);
}

} // namespace
} // namespace FT::sql
