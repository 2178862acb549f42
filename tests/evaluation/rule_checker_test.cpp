#include "arborist/evaluation/rule_checker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/model/condition.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/evidence_lines.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PlainChecker : public RuleChecker {
public:
    bool IsFaultHappened(const std::shared_ptr<Rule>&, const std::string&) override
    {
        return Decide(Evidence::Reason::NO_NODES, false);
    }
    using RuleChecker::CompareParam;
    using RuleChecker::WriteComparisonsInto;
};

struct ComparisonCase {
    const char* name;
    const char* logic;
    const char* type;
    const char* configured;
    const char* observed;
    bool expected;
};
void PrintTo(const ComparisonCase& comparison, std::ostream* out) { *out << comparison.name; }
class Comparison : public testing::TestWithParam<ComparisonCase> {
protected:
    LogCapture mLog;
};

TEST_P(Comparison, HoldsTheObservedValueAgainstTheConfiguredOne)
{
    const auto& given = GetParam();
    EXPECT_EQ(PlainChecker().IsFaultForParam(given.logic, given.type, given.configured, given.observed),
              given.expected);
}

INSTANTIATE_TEST_SUITE_P(Table, Comparison, testing::Values(
    ComparisonCase{"IntGreater", "gt", "int", "10", "11", true},
    ComparisonCase{"IntGreaterNeedsMore", "gt", "int", "10", "10", false},
    ComparisonCase{"TextThatIsNoNumberReadsAsZero", "gt", "int", "ten", "1", true},
    ComparisonCase{"ObservedTextThatIsNoNumberReadsAsZero", "eq", "int", "0", "ten", true},
    ComparisonCase{"FloatThatIsNoNumberReadsAsZero", "eq", "float", "ten", "0", true},
    ComparisonCase{"ObservedFloatThatIsNoNumberReadsAsZero", "eq", "float", "0", "ten", true},
    ComparisonCase{"DoubleThatIsNoNumberReadsAsZero", "eq", "double", "ten", "0", true},
    ComparisonCase{"ObservedDoubleThatIsNoNumberReadsAsZero", "eq", "double", "0", "ten", true},
    ComparisonCase{"IntLess", "lt", "int", "10", "9", true},
    ComparisonCase{"IntLessNeedsLess", "lt", "int", "10", "10", false},
    ComparisonCase{"IntAtMost", "le", "int", "10", "10", true},
    ComparisonCase{"IntAtMostFails", "le", "int", "10", "11", false},
    ComparisonCase{"IntAtLeast", "ge", "int", "10", "10", true},
    ComparisonCase{"IntAtLeastFails", "ge", "int", "10", "9", false},
    ComparisonCase{"IntEqualIgnoresWhatFollows", "eq", "int", "10", "10\n", true},
    ComparisonCase{"IntDifferent", "ne", "int", "10", "11", true},
    ComparisonCase{"IntDifferentFails", "ne", "int", "10", "10", false},
    ComparisonCase{"IntCutsFractions", "eq", "int", "10", "10.9", true},
    ComparisonCase{"LongIsThirtyTwoBitsWide", "eq", "long", "1", "4294967297", true},
    ComparisonCase{"LongGreater", "gt", "long", "10", "11", true},
    ComparisonCase{"FloatIsSinglePrecision", "eq", "float", "0.1", "0.10000000001", true},
    ComparisonCase{"FloatLess", "lt", "float", "0.5", "0.25", true},
    ComparisonCase{"DoubleHasNoTolerance", "eq", "double", "0.1", "0.10000000001", false},
    ComparisonCase{"DoubleComparesNumbersNotTexts", "gt", "double", "9", "10.5", true},
    ComparisonCase{"DoubleDifferent", "ne", "double", "0.1", "0.2", true},
    ComparisonCase{"NotANumberIsOnlyDifferent", "ne", "double", "nan", "nan", true},
    ComparisonCase{"StringEqual", "eq", "string", "on", "on", true},
    ComparisonCase{"StringEqualNeedsEveryByte", "eq", "string", "on", "on\n", false},
    ComparisonCase{"StringDifferent", "ne", "string", "on", "off", true},
    ComparisonCase{"StringDifferentFails", "ne", "string", "on", "on", false},
    ComparisonCase{"StringKnowsNoOrder", "lt", "string", "b", "a", false},
    ComparisonCase{"WordInIsNotKnown", "in", "int", "1", "1", false},
    ComparisonCase{"TypeIsNotKnown", "eq", "bool", "1", "1", false},
    ComparisonCase{"LogicEmpty", "", "int", "1", "1", false},
    ComparisonCase{"TypeEmpty", "eq", "", "1", "1", false},
    ComparisonCase{"ConfiguredEmpty", "ne", "string", "", "1", false},
    ComparisonCase{"ObservedEmpty", "ne", "string", "1", "", false}),
    CaseName());

class RuleCheckerTest : public testing::Test {
protected:
    LogCapture mLog;
    PlainChecker mChecker;
};

TEST_F(RuleCheckerTest, UnknownLogicStillConvertsBothTextsTheConfiguredOneFirst)
{
    EXPECT_FALSE(mChecker.IsFaultForParam("in", "int", "x", "99999999999999999999"));
    EXPECT_THAT(mLog.Lines(), ElementsAre("FUNc:StringUtil::StollS: stoll exception: invalid stoll argument",
                                          "FUNc:StringUtil::StollS: stoll exception: stoll argument out of range"));
}

TEST_F(RuleCheckerTest, UnknownTypeConvertsNothing)
{
    EXPECT_FALSE(mChecker.IsFaultForParam("eq", "bool", "x", "y"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleCheckerTest, AComparisonIsWrittenDown)
{
    std::vector<Evidence::Comparison> comparisons;
    mChecker.WriteComparisonsInto(&comparisons);
    const Param param{"temperature", "int", "p1", ""};
    EXPECT_TRUE(mChecker.CompareParam(param, "gt", "40", "41", "static"));
    EXPECT_FALSE(mChecker.CompareParam(param, "lt", "40", ""));
    ASSERT_EQ(comparisons.size(), 2U);
    EXPECT_EQ(EvidenceLine(comparisons[0]), "compare p1 temperature int '41' gt '40' from static holds");
    EXPECT_EQ(EvidenceLine(comparisons[1]), "compare p1 temperature int '' lt '40' fails");
    mChecker.SetRecord(nullptr);
    EXPECT_TRUE(mChecker.CompareParam(param, "gt", "40", "41"));
    EXPECT_EQ(comparisons.size(), 2U) << "what belongs to an earlier rule is left alone";
}

TEST_F(RuleCheckerTest, AComparisonNeedsNoPlaceToBeWrittenDown)
{
    EXPECT_TRUE(mChecker.CompareParam({"k", "string", "p1", ""}, "eq", "on", "on"));
}

TEST_F(RuleCheckerTest, RemembersWhatDecidedTheLastAnswer)
{
    EXPECT_EQ(mChecker.GetReason(), Evidence::Reason::NONE);
    EXPECT_FALSE(mChecker.IsFaultHappened(nullptr, "A"));
    EXPECT_EQ(mChecker.GetReason(), Evidence::Reason::NO_NODES);
}

TEST_F(RuleCheckerTest, AWordThatTheRuleSetDoesNotKnowIsNoted)
{
    struct Case { const char* logic; const char* type; std::vector<Evidence::Reason> notes; };
    const Case cases[] = {{"eq", "int", {}}, {"eq", "", {}}, {"is", "int", {Evidence::Reason::UNKNOWN_NAME}},
        {"eq", "number", {Evidence::Reason::UNKNOWN_NAME}}};
    for (const auto& [logic, type, notes] : cases) {
        Evidence::Rule record;
        mChecker.SetRecord(&record);
        mChecker.CompareParam({"k", type, "p", ""}, logic, "1", "1");
        EXPECT_EQ(record.notes, notes) << logic << " of " << type;
    }
    mChecker.SetRecord(nullptr);
}

} // namespace
