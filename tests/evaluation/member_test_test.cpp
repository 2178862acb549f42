#include "arborist/evaluation/member_test.h"

#include <random>

#include <gmock/gmock.h>

#include "arborist/evaluation/rule_checker.h"
#include "arborist/frame/log.h"
#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class Comparer : public RuleChecker {
public:
    bool IsFaultHappened(const std::shared_ptr<Rule>&, const std::string&) override { return false; }
};

class MemberTestTest : public testing::Test {
protected:
    std::optional<std::int32_t> InSilence(
        const std::string& logic, const std::string& type, const std::string& value, const std::string& member)
    {
        return MemberTest(mComparer, {"k", value, type, logic}).AnswerInSilence(member);
    }

    bool Passes(const std::string& extra) { return MemberTest(mComparer, {"k", "5", "int", "ge"}).Answer(extra) != 0; }

    Comparer mComparer;
    LogCapture mLog;
};

TEST_F(MemberTestTest, ExtrasAreReadAndTheMemberCompared)
{
    EXPECT_TRUE(Passes("{\"k\":5}"));
    EXPECT_TRUE(Passes("{\"k\":\"5\"}"));
    EXPECT_FALSE(Passes("{\"k\":4}"));
    EXPECT_FALSE(Passes("{\"other\":5}"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(MemberTestTest, ShapesThatAreNoObjectFail)
{
    for (const char* const extra : {"[5]", "5", "\"5\"", "null", "{\"k\":[5]}", "{\"k\":{\"k\":5}}", "{\"k\":null}"}) {
        EXPECT_FALSE(Passes(extra)) << extra;
    }
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(MemberTestTest, BrokenJsonLogsAndFails)
{
    EXPECT_FALSE(Passes("no json"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre(StartsWith("FUNc:AlarmRuleEngine::IsErrorForEventWithParam: parse eventParamJson err. * Line 1")));
}

TEST_F(MemberTestTest, UnknownTypesAndLogicsFailInSilence)
{
    EXPECT_EQ(InSilence("eq", "int", "5", "5"), 1);
    EXPECT_EQ(InSilence("in", "int", "5", "5"), 0);
    EXPECT_EQ(InSilence("", "int", "5", "5"), 0);
    EXPECT_EQ(InSilence("eq", "number", "5", "5"), 0);
    EXPECT_EQ(InSilence("eq", "", "5", "5"), 0);
    EXPECT_EQ(InSilence("eq", "int", "", "5"), 0);
    EXPECT_EQ(InSilence("ne", "int", "5", ""), 0);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(MemberTestTest, TestsThatDifferHaveDifferentNames)
{
    const auto name = [this](const TestPara& para) { return MemberTest(mComparer, para).GetName(); };
    EXPECT_EQ(name({"k", "5", "int", "ge"}), name({"k", "5", "int", "ge"}));
    for (const TestPara& other : {TestPara{"kk", "5", "int", "ge"}, TestPara{"k", "55", "int", "ge"},
             TestPara{"k", "5", "long", "ge"}, TestPara{"k", "5", "int", "gt"}, TestPara{"", "k5", "int", "ge"}}) {
        EXPECT_NE(name(other), name({"k", "5", "int", "ge"}));
    }
}

TEST_F(MemberTestTest, AgreesWithTheComparisonOfTexts)
{
    const unsigned int seed = 4711;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::vector<std::string> logics{"gt", "lt", "le", "ge", "eq", "ne", "in", ""};
    const std::vector<std::string> types{"int", "long", "float", "double", "string", "odd", ""};
    const std::vector<std::string> values{"0", "5", "-5", "007", "+5", " 5", "5x", "x", "", "2147483647", "2147483648",
        "-2147483648", "16777217", "5.0", "1e1", "-0", "2.5", "-2.5", ".5", "5.", "-", "0x1p3", "12345678901234567",
        "99999999999999999999", "0.0000000000000001", "nan", "-inf", "1e39", "1e-50", "\t5", "+-5"};
    const std::vector<std::int64_t> numbers{0, 5, -5, 7, 10, 2147483647, 2147483648, -2147483648, -2147483649,
        4294967301, 16777216, 16777217, 99999999999};
    int answered = 0;
    for (int round = 0; round < 20000; ++round) {
        const TestPara para{"k", values[random() % values.size()], types[random() % types.size()],
            logics[random() % logics.size()]};
        const std::string text = random() % 2 == 0 ? std::to_string(numbers[random() % numbers.size()])
                                                   : values[random() % values.size()];
        mLog.Clear();
        const std::optional<std::int32_t> answer = MemberTest(mComparer, para).AnswerInSilence(text);
        ASSERT_THAT(mLog.Lines(), IsEmpty());
        const bool passes = mComparer.IsFaultForParam(para.logic, para.type, para.value, text);
        const std::string told = para.logic + ' ' + para.type + ' ' + para.value + ' ' + text;
        if (answer) {
            ASSERT_EQ(*answer != 0, passes) << told;
            ASSERT_THAT(mLog.Lines(), IsEmpty()) << told;
            ++answered;
        }
    }
    EXPECT_GT(answered, 15000) << "most are told in silence";
}

} // namespace
