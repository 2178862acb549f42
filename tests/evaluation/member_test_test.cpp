#include "arborist/evaluation/member_test.h"

#include <random>

#include <gmock/gmock.h>

#include "arborist/evaluation/rule_checker.h"
#include "arborist/frame/log.h"
#include "arborist/stores/event_log/event_member_cache.h"
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
    bool Passes(const std::string& logic, const std::string& type, const std::string& value, const EventMember& member)
    {
        return MemberTest(mComparer, {"k", value, type, logic}).Passes(member);
    }

    bool RawPasses(const std::string& extra)
    {
        return Passes("ge", "int", "5", {EventMember::Kind::RAW, 0, extra});
    }

    Comparer mComparer;
    LogCapture mLog;
};

TEST_F(MemberTestTest, ExtrasAreReadAndTheMemberCompared)
{
    EXPECT_TRUE(RawPasses("{\"k\":5}"));
    EXPECT_TRUE(RawPasses("{\"k\":\"5\"}"));
    EXPECT_FALSE(RawPasses("{\"k\":4}"));
    EXPECT_FALSE(RawPasses("{\"other\":5}"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(MemberTestTest, ShapesThatAreNoObjectFail)
{
    for (const char* const extra : {"[5]", "5", "\"5\"", "null", "{\"k\":[5]}", "{\"k\":{\"k\":5}}", "{\"k\":null}"}) {
        EXPECT_FALSE(RawPasses(extra)) << extra;
    }
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(MemberTestTest, EmptyExtraFailsInSilence)
{
    EXPECT_FALSE(Passes("ne", "int", "5", {EventMember::Kind::NO_EXTRA, 0, {}}));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(MemberTestTest, BrokenJsonLogsAndFails)
{
    EXPECT_FALSE(RawPasses("no json"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre(StartsWith("FUNc:AlarmRuleEngine::IsErrorForEventWithParam: parse eventParamJson err. * Line 1")));
}

TEST_F(MemberTestTest, UnknownTypesAndLogicsFailInSilence)
{
    const EventMember five{EventMember::Kind::INTEGER, 5, {}};
    EXPECT_TRUE(Passes("eq", "int", "5", five));
    EXPECT_FALSE(Passes("in", "int", "5", five));
    EXPECT_FALSE(Passes("", "int", "5", five));
    EXPECT_FALSE(Passes("eq", "number", "5", five));
    EXPECT_FALSE(Passes("eq", "", "5", five));
    EXPECT_FALSE(Passes("eq", "int", "", five));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(MemberTestTest, AgreesWithTheComparisonOfTexts)
{
    const unsigned int seed = 4711;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::vector<std::string> logics{"gt", "lt", "le", "ge", "eq", "ne", "in", ""};
    const std::vector<std::string> types{"int", "long", "float", "double", "string", "odd", ""};
    const std::vector<std::string> values{"0", "5", "-5", "007", "+5", " 5", "5x", "x", "", "2147483647", "2147483648",
        "-2147483648", "16777217", "5.0", "1e1", "-0"};
    const std::vector<std::int64_t> numbers{0, 5, -5, 7, 10, 2147483647, 2147483648, -2147483648, -2147483649,
        4294967301, 16777216, 16777217, 99999999999};
    for (int round = 0; round < 20000; ++round) {
        const TestPara para{"k", values[random() % values.size()], types[random() % types.size()],
            logics[random() % logics.size()]};
        const std::int64_t number = numbers[random() % numbers.size()];
        const bool isNumber = random() % 2 == 0;
        const std::string text = isNumber ? std::to_string(number) : values[random() % values.size()];
        mLog.Clear();
        const bool passes = MemberTest(mComparer, para).Passes(isNumber
            ? EventMember{EventMember::Kind::INTEGER, number, {}} : EventMember{EventMember::Kind::TEXT, 0, text});
        const std::vector<std::string> lines = mLog.Lines();
        mLog.Clear();
        ASSERT_EQ(passes, mComparer.IsFaultForParam(para.logic, para.type, para.value, text))
            << para.logic << ' ' << para.type << ' ' << para.value << ' ' << text;
        ASSERT_EQ(lines, mLog.Lines());
    }
}

} // namespace
