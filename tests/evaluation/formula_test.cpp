#include "arborist/evaluation/formula.h"

#include <chrono>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;

using Values = std::map<std::string, std::string, std::less<>>;

Formula::Outcome Outcome(const std::string& expression, const Values& values = {})
{
    const auto valueOf = [&values](std::string_view name) {
        const auto value = values.find(name);
        return value != values.end() ? &value->second : nullptr;
    };
    return Formula(expression).Calculate(valueOf, true);
}

struct FormulaCase {
    const char* name;
    const char* expression;
    const char* result;
    const char* grouping;
};
void PrintTo(const FormulaCase& formula, std::ostream* out) { *out << formula.name; }
class FormulaTable : public testing::TestWithParam<FormulaCase> {
protected:
    LogCapture mLog;
};

TEST_P(FormulaTable, GivesResultAndGrouping)
{
    const auto outcome = Outcome(GetParam().expression);
    EXPECT_EQ(outcome.result, GetParam().result);
    EXPECT_EQ(outcome.grouping, GetParam().grouping);
}

INSTANTIATE_TEST_SUITE_P(WellFormed, FormulaTable, testing::Values(
    FormulaCase{"TimesBeforePlus", "2 + 3 * 4", "14.000000", "2 + (3 * 4)"},
    FormulaCase{"PlusAfterTimes", "2 * 3 + 4", "10.000000", "(2 * 3) + 4"},
    FormulaCase{"Parentheses", "(2 + 3) * 4", "20.000000", "(2 + 3) * 4"},
    FormulaCase{"MinusChainGoesFromTheRight", "10 - 3 - 2", "9.000000", "10 - (3 - 2)"},
    FormulaCase{"MinusPlusChainGoesFromTheRight", "10 - 3 + 2", "5.000000", "10 - (3 + 2)"},
    FormulaCase{"DivisionChainGoesFromTheRight", "8 / 4 / 2", "4.000000", "8 / (4 / 2)"},
    FormulaCase{"DivisionThenTimesGoesFromTheRight", "8 / 2 * 2", "2.000000", "8 / (2 * 2)"},
    FormulaCase{"TimesThenDivisionGoesFromTheRight", "2 * 6 / 3", "4.000000", "2 * (6 / 3)"},
    FormulaCase{"ProductsAreDoneBeforeTheNextSum", "1 - 2 * 3 - 4", "-1.000000", "1 - ((2 * 3) - 4)"},
    FormulaCase{"DividedByZeroIsZero", "5 / 0", "0.000000", "5 / 0"},
    FormulaCase{"DividedByZeroGoesOn", "5 / 0 + 1", "1.000000", "(5 / 0) + 1"},
    FormulaCase{"OneNumber", "7", "7.000000", "7"},
    FormulaCase{"OneNumberInParentheses", "((7))", "7.000000", "7"},
    FormulaCase{"SixDecimals", "1 / 3", "0.333333", "1 / 3"},
    FormulaCase{"BlankJoinsTwoWords", "1 2 + 1", "13.000000", "12 + 1"},
    FormulaCase{"NegativeResult", "2 - 5", "-3.000000", "2 - 5"}),
    CaseName());

// Calculating an ill-formed formula ends, too, with the empty text as soon as a step is impossible.
INSTANTIATE_TEST_SUITE_P(IllFormed, FormulaTable, testing::Values(
    FormulaCase{"OperatorAlone", "+", "", ""},
    FormulaCase{"SignInFront", "-5", "", ""},
    FormulaCase{"OperatorAtTheEnd", "5 *", "", ""},
    FormulaCase{"TwoOperators", "5 * - 3", "", ""},
    FormulaCase{"TwoOperatorsThenSum", "5 * * 3 + 1", "", ""},
    FormulaCase{"OpeningAlone", "(", "", ""},
    FormulaCase{"OpeningTooMuch", "(5 + 3", "", ""},
    FormulaCase{"OpeningTooMuchTakesTwoValues", "1 (2", "", ""},
    FormulaCase{"OpeningTooMuchLeavesTheFirst", "1 (2) 3 (4", "2.000000", "2"},
    FormulaCase{"ClosingAlone", ")", "", ""},
    FormulaCase{"ClosingTooMuch", "5 + 3)", "", ""},
    FormulaCase{"ClosingFirst", ")5 + 3(", "", ""},
    FormulaCase{"EmptyParentheses", "()", "", ""},
    FormulaCase{"NothingInParentheses", "5 + ()", "", ""},
    FormulaCase{"TwoValuesWithoutOperatorGiveTheLast", "(1)(2)", "2.000000", "2"}),
    CaseName());

class FormulaTest : public testing::Test {
protected:
    LogCapture mLog;
};

TEST_F(FormulaTest, NamesStandForTheirValues)
{
    const auto outcome = Outcome("full / design", {{"full", "30\n"}, {"design", "40\n"}});
    EXPECT_EQ(outcome.result, "0.750000");
    EXPECT_EQ(outcome.grouping, "full / design");
}

TEST_F(FormulaTest, OneNameGivesItsValueWithSixDecimals)
{
    EXPECT_EQ(Outcome("full", {{"full", "42"}}).result, "42.000000");
}

TEST_F(FormulaTest, NameWithoutValueCountsAsZeroAndLogs)
{
    EXPECT_EQ(Outcome("5 + missing").result, "5.000000");
    EXPECT_THAT(mLog.Lines(), ElementsAre("FUNc:StringUtil::StringToDoubleDef: stod error"));
}

TEST_F(FormulaTest, EmptyValueLeavesTheNameToStandForItself)
{
    EXPECT_EQ(Outcome("5 + 3", {{"3", ""}}).result, "8.000000");
    EXPECT_EQ(Outcome("5 + a", {{"a", ""}}).result, "5.000000");
}

TEST_F(FormulaTest, NegativeValueCountsAsAnOperatorAndIsLost)
{
    EXPECT_EQ(Outcome("5 + a", {{"a", "-3"}}).result, "");
    EXPECT_EQ(Outcome("5 a 3", {{"5a3", "7"}}).result, "7.000000");
    EXPECT_EQ(Outcome("(5) a (3)", {{"a", "-1"}}).result, "2.000000");
}

// The whole value is searched for the operator of the lowest priority, not only its first character.
TEST_F(FormulaTest, ValueThatIsTakenForAnOperatorHasTheLeastPriorityOfItsCharacters)
{
    EXPECT_EQ(Outcome("(6) * (3) a (2)", {{"a", "*2"}}).result, "36.000000");
    EXPECT_EQ(Outcome("6 * (3) a (2)", {{"a", "/"}}).result, "9.000000");
    EXPECT_EQ(Outcome("6 * (3) a (2)", {{"a", "/+"}}).result, "9.000000");
    EXPECT_EQ(Outcome("6 / (3) a (2)", {{"a", "/"}}).result, "4.000000");
    EXPECT_EQ(Outcome("6 / (3) a (2)", {{"a", "/+"}}).result, "1.000000");
}

TEST_F(FormulaTest, GreatestNumbersArePrintedWhole)
{
    const std::string result = Outcome("1e308").result;
    EXPECT_EQ(result.size(), 316U);
    EXPECT_EQ(result.substr(0, 4), "1000");
    EXPECT_EQ(Outcome("1e308 * 10").result, "inf");
    EXPECT_EQ(Outcome("0 - 1.7e308").result.size(), 317U);
}

TEST_F(FormulaTest, WithoutWordsOrSignsItIsEmpty)
{
    EXPECT_TRUE(Formula("").IsEmpty());
    EXPECT_TRUE(Formula("   ").IsEmpty());
    EXPECT_FALSE(Formula("x").IsEmpty());
    EXPECT_EQ(Outcome("").result, "");
}

TEST_F(FormulaTest, GroupingIsWrittenOnlyWhenAskedFor)
{
    const auto noValue = [](std::string_view) -> const std::string* { return nullptr; };
    const auto outcome = Formula("10-3-2").Calculate(noValue, false);
    EXPECT_EQ(outcome.result, "9.000000");
    EXPECT_EQ(outcome.grouping, "");
}

TEST_F(FormulaTest, LongChainsAndDeepParenthesesEnd)
{
    std::string chain = "1";
    for (int i = 0; i < 200000; ++i) {
        chain += "-1";
    }
    EXPECT_EQ(Outcome(chain).result, "1.000000");
    const std::string deep = std::string(200000, '(') + "7" + std::string(200000, ')');
    EXPECT_EQ(Outcome(deep).grouping, "7");
    EXPECT_EQ(Outcome(std::string(200000, '(') + "7").result, "");
    EXPECT_EQ(Outcome(std::string(200000, '-')).result, "");
}

// A recursive descent parser: a sum is a product, optionally followed by a sign and another sum; a product likewise
// consists of factors.
class PlainReader {
public:
    explicit PlainReader(const std::string& text) : mText(text) {}

    double Sum()
    {
        const double left = Product();
        if (!Next('+', '-')) {
            return left;
        }
        const char sign = mText[mPlace++];
        const double right = Sum();
        return sign == '+' ? left + right : left - right;
    }

private:
    double Product()
    {
        const double left = Factor();
        if (!Next('*', '/')) {
            return left;
        }
        const char sign = mText[mPlace++];
        const double right = Product();
        if (sign == '*') {
            return left * right;
        }
        return right == 0 ? 0 : left / right;
    }

    double Factor()
    {
        if (mText[mPlace] != '(') {
            return mText[mPlace++] - '0';
        }
        ++mPlace;
        const double inside = Sum();
        ++mPlace;
        return inside;
    }

    bool Next(char one, char other) const
    {
        return mPlace < mText.size() && (mText[mPlace] == one || mText[mPlace] == other);
    }

    const std::string& mText;
    std::size_t mPlace = 0;
};

std::string RandomFormula(std::mt19937& random, int depth)
{
    const auto below = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    std::string text;
    const unsigned length = 1 + below(5);
    for (unsigned i = 0; i < length; ++i) {
        text += i == 0 ? "" : std::string(1, "+-*/"[below(4)]);
        text += depth > 0 && below(3) == 0 ? "(" + RandomFormula(random, depth - 1) + ")"
                                           : std::string(1, static_cast<char>('0' + below(10)));
    }
    return text;
}

TEST_F(FormulaTest, AgreesWithAPlainReadingOfRandomFormulas)
{
    const auto seed = static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count());
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 3000; ++i) {
        const std::string text = RandomFormula(random, 4);
        char expected[512];
        std::snprintf(expected, sizeof(expected), "%f", PlainReader(text).Sum());
        const auto outcome = Outcome(text);
        ASSERT_EQ(outcome.result, expected) << text;
        // With explicit grouping there is only one way to read the formula.
        ASSERT_EQ(Outcome(outcome.grouping).result, expected) << outcome.grouping;
    }
}

} // namespace
