#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/evaluation/alarm_rule_fixture.h"
#include "tests/support/evidence_lines.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Evidence::Reason;

using AlarmConditionsTest = AlarmRuleFixture;

TEST_F(AlarmConditionsTest, SingleTestCountsTheRowsThatPass)
{
    Log({{NOW, 7, "1", "{\"a\":5}"}, {NOW, 7, "1", "{\"a\":\"6\"}"}, {NOW, 7, "1", "{\"a\":4}"},
        {NOW - DAY, 7, "1", "{\"a\":7}"}, {NOW, 7, "1", "{\"b\":7}"}, {NOW, 7, "1", ""}, {NOW, 7, "1", "[5]"}});
    const auto item = [] { return Ids("7", "7").WithParam("p", "a", "int").Single("p", "ge", "5"); };
    EXPECT_TRUE(Fires(item().Duration(2, 3)));
    EXPECT_FALSE(Fires(item().Duration(2, 4)));
    EXPECT_TRUE(Fires(item().Latest(2, 3)));
    EXPECT_TRUE(Fires(item().DailyPeak(2, 2)));
    EXPECT_FALSE(Fires(item().DailyPeak(2, 3)));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(AlarmConditionsTest, BrokenJsonIsLoggedForEachRowAndTest)
{
    Log({{NOW, 7, "1", "{\"a\":"}, {NOW, 7, "1", "{\"a\":5}"}, {NOW, 7, "1", "x"}});
    EXPECT_FALSE(Fires(Ids("7", "7").WithParam("p", "a", "int").Single("p", "ge", "5").Duration(2, 3).Latest(2, 3)));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), SizeIs(4));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        Each(HasSubstr("AlarmRuleEngine::IsErrorForEventWithParam: parse eventParamJson err. ")));
}

TEST_F(AlarmConditionsTest, ParamThatIsNotThereMatchesNoRow)
{
    Log(Days(3, 7, "{\"a\":5,\"\":5}"));
    EXPECT_FALSE(Fires(Ids("7", "7").WithParam("p", "a", "int").Single("q", "ge", "5").Duration(30, 1)));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(AlarmConditionsTest, TestsWithoutConditionsOrParamsAreFalse)
{
    Log(Days(3, 7, "{\"a\":5}"));
    EXPECT_FALSE(Fires(Ids("7", "7").WithParam("p", "a", "int").Duration(30, 1)));
    EXPECT_FALSE(Fires(Ids("7", "7").Single("p", "eq", "5").Duration(30, 1)));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(AlarmConditionsTest, ConditionsAreAlternatives)
{
    Log(Days(1, 7, "{\"a\":5}"));
    EXPECT_TRUE(Fires(Ids("7", "7").WithParam("p", "a", "int").Single("p", "eq", "4").Single("p", "eq", "5")
        .Duration(30, 1)));
}

TEST_F(AlarmConditionsTest, UnknownConditionIsLoggedAndPassedOver)
{
    Log(Days(1, 7, "{\"a\":5}"));
    auto odd = std::make_shared<OrLogic>();
    odd->SetType("odd_logic");
    EXPECT_TRUE(Fires(Ids("7", "7").WithParam("p", "a", "int").Condition(odd).Single("p", "eq", "5").Duration(30, 1)));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:AlarmRuleEngine::IsWithParamTestChecked: Undefined Logic type"));
}

TEST_F(AlarmConditionsTest, UnderDurationOneRowPassesAllTests)
{
    Log({{NOW, 7, "1", "{\"a\":1,\"b\":1}"}, {NOW, 7, "1", "{\"a\":1}"}, {NOW, 7, "1", "{\"b\":1}"}});
    const auto item = [] {
        return Ids("7", "7").WithParam("p", "a", "int").WithParam("q", "b", "int")
            .Multiple({{"p", "eq", "1"}, {"q", "eq", "1"}});
    };
    EXPECT_TRUE(Fires(item().Duration(1, 1)));
    EXPECT_FALSE(Fires(item().Duration(1, 2)));
    EXPECT_TRUE(Fires(item().Latest(1, 2)));
    EXPECT_TRUE(Fires(item().DailyPeak(1, 2))) << "each test counts for itself, over the period";
    EXPECT_FALSE(Fires(item().Latest(1, 3)));
}

TEST_F(AlarmConditionsTest, UnderDailyPeakSeparateTestsCountOverTheWholePeriod)
{
    Log(Days(3, 7, "{\"a\":1}"));
    const auto item = [] { return Ids("7", "7").WithParam("p", "a", "int"); };
    EXPECT_TRUE(Fires(item().Multiple({{"p", "eq", "1"}}).DailyPeak(30, 3)));
    EXPECT_FALSE(Fires(item().Single("p", "eq", "1").DailyPeak(30, 2))) << "a single test counts day by day";
}

TEST_F(AlarmConditionsTest, OfSeparateTestsTheLastIdDecides)
{
    Log({{NOW, 7, "1", "{\"a\":1}"}, {NOW, 8, "1", "{\"a\":2}"}});
    const auto item = [](const char* last) {
        return Ids("7", last).WithParam("p", "a", "int").Multiple({{"p", "eq", "1"}}).Latest(1, 1);
    };
    EXPECT_TRUE(Fires(item("7")));
    EXPECT_FALSE(Fires(item("8")));
    EXPECT_FALSE(Fires(item("9"))) << "an id without rows";
}

TEST_F(AlarmConditionsTest, MultipleTestsWithoutItemsHoldUnlessUnderDuration)
{
    Log({});
    EXPECT_TRUE(Fires(Ids("7", "7").WithParam("p", "a", "int").Multiple({}).Latest(1, 1)));
    EXPECT_TRUE(Fires(Ids("7", "7").WithParam("p", "a", "int").Multiple({}).DailyPeak(1, 1)));
    EXPECT_FALSE(Fires(Ids("7", "7").WithParam("p", "a", "int").Multiple({}).Duration(1, 1)));
    Log(Days(1, 7, "{\"a\":5}"));
    EXPECT_FALSE(Fires(Ids("7", "7").WithParam("p", "a", "int").Multiple({}).Duration(1, 1))) << "whatever rows there are";
}

TEST_F(AlarmConditionsTest, NullItemsOfAConditionAreLeftOut)
{
    Log(Days(1, 7, "{\"a\":5}"));
    const Ids ids = Ids("7", "7").WithParam("p", "a", "int").Multiple({{"p", "eq", "5"}}).Duration(30, 1);
    ids.Item()->conditionList[0]->SetLogicItemList({nullptr, ids.Item()->conditionList[0]->GetLogicItemList()[0]});
    EXPECT_TRUE(Fires(ids));
}

TEST_F(AlarmConditionsTest, EachTestIsNotedAgainstTheRowsThatPassedThoseBefore)
{
    Log({{NOW, 7, "1", "{\"a\":5,\"b\":\"x\"}"}, {NOW, 7, "1", "{\"a\":9,\"b\":\"y\"}"}, {NOW, 7, "1", "{\"a\":1}"}});
    EXPECT_FALSE(Fires(Ids("7", "7").WithParam("p", "a", "int").WithParam("q", "b", "string")
        .Multiple({{"p", "ge", "5"}, {"q", "eq", "x"}}).Duration(1, 2)));
    EXPECT_THAT(EvidenceLines(mRecord, "test"), ElementsAre(
        "test a int ge '5' passed 2 of 3", "test b string eq 'x' passed 1 of 2"));
}

TEST_F(AlarmConditionsTest, SeparateTestsAreNotedEachAgainstAllRows)
{
    Log({{NOW, 7, "1", "{\"a\":5}"}, {NOW, 7, "1", "{\"a\":9}"}});
    EXPECT_FALSE(Fires(Ids("7", "7").WithParam("p", "a", "int").Multiple({{"p", "eq", "5"}, {"p", "eq", "8"}})
        .Latest(1, 1)));
    EXPECT_THAT(EvidenceLines(mRecord, "test"), ElementsAre(
        "test a int eq '5' passed 1 of 2 last id 1", "test a int eq '8' passed 0 of 2 last id 0"));
}

TEST_F(AlarmConditionsTest, ConditionThatIsNullIsOfNoKnownType)
{
    Log(Days(2, 7, R"({"a":5})"));
    EXPECT_FALSE(Fires(Ids("7", "7").WithParam("p", "a", "int").Condition(nullptr).Latest(7, 2)));
    EXPECT_EQ(mReason, Reason::UNKNOWN_CONDITION);
    EXPECT_FALSE(Fires(Ids("7", "7").WithParam("p", "a", "int").Single("p", "eq", "4").Condition(nullptr).Latest(7, 2)));
    EXPECT_EQ(mReason, Reason::WINDOW_SHORT) << "a condition of a known type was counted before";
    EXPECT_TRUE(Fires(Ids("7", "7").WithParam("p", "a", "int").Condition(nullptr).Single("p", "eq", "5").Latest(7, 2)));
}

} // namespace
