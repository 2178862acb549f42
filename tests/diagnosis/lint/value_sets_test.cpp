#include <algorithm>

#include <gtest/gtest.h>

#include "diagnosis/lint/reading/value_sets.h"
#include "tests/support/random_cases.h"

namespace {

using diagnosis::lint::ValueKind;
using diagnosis::lint::ValueSets;

struct NumberTest {
    std::string word;
    int value;
};

bool Passes(const NumberTest& test, double observed)
{
    const double value = test.value;
    return test.word == "eq" ? observed == value
        : test.word == "ne"  ? observed != value
        : test.word == "lt"  ? observed < value
        : test.word == "le"  ? observed <= value
        : test.word == "gt"  ? observed > value
                             : observed >= value;
}

/// Looks at every value that tests of 0 to 5 can tell apart, with the values between whole numbers or without them.
struct Tried {
    bool isNonePassingAll = true;
    bool isEveryOnePassingOne = true;

    Tried(const std::vector<NumberTest>& tests, double step)
    {
        for (double observed = -1; observed <= 6; observed += step) {
            const auto passes = [observed](const NumberTest& test) { return Passes(test, observed); };
            isNonePassingAll = isNonePassingAll && !std::all_of(tests.begin(), tests.end(), passes);
            isEveryOnePassingOne = isEveryOnePassingOne && std::any_of(tests.begin(), tests.end(), passes);
        }
    }
};

std::string TextOf(const std::vector<NumberTest>& tests)
{
    std::string text;
    for (const NumberTest& test : tests) {
        text += test.word + " " + std::to_string(test.value) + "; ";
    }
    return text;
}

std::vector<NumberTest> AnyTests(RandomCases& cases)
{
    std::vector<NumberTest> tests(1 + cases.Below(5));
    for (NumberTest& test : tests) {
        test = {cases.OneOf({"eq", "ne", "lt", "le", "gt", "ge"}), static_cast<int>(cases.Below(6))};
    }
    return tests;
}

TEST(ValueSets, AreWhatTryingEveryValueSays)
{
    static const std::vector<std::string> VALUES = {"0", "1", "2", "3", "4", "5"};
    RandomCases cases(5000);
    for (int number = 0; number < cases.GetCount(); ++number) {
        const std::vector<NumberTest> tests = AnyTests(cases);
        for (const auto& [kind, step] : {std::pair(ValueKind::WHOLE, 1.0), {ValueKind::DECIMAL, 0.5}}) {
            ValueSets sets(kind);
            for (const NumberTest& test : tests) {
                sets.Add(test.word, VALUES[static_cast<std::size_t>(test.value)]);
            }
            const Tried tried(tests, step);
            ASSERT_EQ(sets.IsNonePassingAll(), tried.isNonePassingAll) << TextOf(tests) << "seed " << cases.GetSeed();
            ASSERT_EQ(sets.IsEveryOnePassingOne(), tried.isEveryOnePassingOne)
                << TextOf(tests) << "seed " << cases.GetSeed();
        }
    }
}

ValueSets SetsOf(ValueKind kind, const std::vector<std::pair<const char*, const char*>>& tests)
{
    ValueSets sets(kind);
    for (const auto& [word, value] : tests) {
        sets.Add(word, value);
    }
    return sets;
}

TEST(ValueSets, OfTextsKnowEqualAndDifferent)
{
    EXPECT_TRUE(SetsOf(ValueKind::TEXT, {{"eq", "on"}, {"eq", "off"}}).IsNonePassingAll());
    EXPECT_TRUE(SetsOf(ValueKind::TEXT, {{"eq", "on"}, {"ne", "on"}}).IsNonePassingAll());
    EXPECT_FALSE(SetsOf(ValueKind::TEXT, {{"eq", "on"}, {"ne", "off"}}).IsNonePassingAll());
    EXPECT_TRUE(SetsOf(ValueKind::TEXT, {{"ne", "on"}, {"ne", "off"}}).IsEveryOnePassingOne());
    EXPECT_TRUE(SetsOf(ValueKind::TEXT, {{"eq", "on"}, {"ne", "on"}}).IsEveryOnePassingOne());
    EXPECT_FALSE(SetsOf(ValueKind::TEXT, {{"ne", "on"}}).IsEveryOnePassingOne());
}

TEST(ValueSets, OfWholeNumbersEndWhere32BitsDo)
{
    EXPECT_TRUE(SetsOf(ValueKind::WHOLE, {{"gt", "2147483647"}}).IsNonePassingAll());
    EXPECT_TRUE(SetsOf(ValueKind::WHOLE, {{"le", "2147483647"}}).IsEveryOnePassingOne());
    EXPECT_FALSE(SetsOf(ValueKind::DECIMAL, {{"gt", "2147483647"}}).IsNonePassingAll());
    EXPECT_FALSE(SetsOf(ValueKind::DECIMAL, {{"le", "2147483647"}}).IsEveryOnePassingOne());
}

TEST(ValueSets, LeaveOutWhatIsNoNumber)
{
    EXPECT_FALSE(SetsOf(ValueKind::WHOLE, {{"eq", "5"}, {"eq", "six"}}).IsNonePassingAll());
    EXPECT_FALSE(SetsOf(ValueKind::DECIMAL, {{"ge", "5"}, {"eq", "nan"}}).IsNonePassingAll());
    EXPECT_FALSE(SetsOf(ValueKind::DECIMAL, {{"eq", "5"}, {"in", "6"}}).IsNonePassingAll());
}

} // namespace
