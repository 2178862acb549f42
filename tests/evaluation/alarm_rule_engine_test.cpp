#include "arborist/evaluation/alarm_rule_engine.h"

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/evaluation/alarm_rule_fixture.h"
#include "tests/support/case_name.h"
#include "tests/support/evidence_lines.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Evidence::Reason;

using AlarmRuleEngineTest = AlarmRuleFixture;

TEST_F(AlarmRuleEngineTest, OtherRulesAreFalseInSilence)
{
    Log(Days(1, 7));
    EXPECT_FALSE(Fires(std::shared_ptr<Rule>()));
    EXPECT_FALSE(Fires(std::make_shared<NodeRule>()));
    EXPECT_FALSE(Fires(RuleOf({})));
    EXPECT_EQ(mReason, Reason::NO_ITEMS);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(AlarmRuleEngineTest, CountsTheRowsOfOneIdAgainstTheThreshold)
{
    Log(Days(4, 7));
    EXPECT_TRUE(Fires(Ids("7", "7").Duration(30, 4)));
    EXPECT_TRUE(Fires(Ids("7", "7").Latest(30, 4)));
    EXPECT_EQ(mReason, Reason::WINDOW_REACHED);
    EXPECT_FALSE(Fires(Ids("7", "7").Duration(30, 5)));
    EXPECT_EQ(mReason, Reason::WINDOW_SHORT);
}

TEST_F(AlarmRuleEngineTest, IdsAreNotAddedUp)
{
    auto rows = Days(2, 7);
    const auto others = Days(2, 8);
    rows.insert(rows.end(), others.begin(), others.end());
    Log(rows);
    EXPECT_FALSE(Fires(Ids("7", "8").Duration(30, 3)));
    EXPECT_TRUE(Fires(Ids("7", "8").Duration(30, 2)));
}

struct RangeCase { const char* name; const char* first; const char* last; bool expected; };
void PrintTo(const RangeCase& range, std::ostream* out) { *out << range.name; }
class AlarmRange : public AlarmRuleFixture, public testing::WithParamInterface<RangeCase> {};

TEST_P(AlarmRange, HoldsTheIdsFromFirstToLast)
{
    Log({{NOW, 7, "1", ""}, {NOW, -2, "1", ""}});
    EXPECT_EQ(Fires(Ids(GetParam().first, GetParam().last).Duration(1, 1)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, AlarmRange, testing::Values(
    RangeCase{"FirstOfRange", "7", "9", true}, RangeCase{"LastOfRange", "5", "7", true},
    RangeCase{"BesideTheRange", "8", "9", false}, RangeCase{"OnlyTheUpperBound", "", "7", true},
    RangeCase{"LowerBoundZeroIsNone", "0", "7", true}, RangeCase{"OnlyTheUpperBoundIsThatId", "", "9", false},
    RangeCase{"OnlyTheLowerBound", "7", "", false}, RangeCase{"NoBounds", "", "", false},
    RangeCase{"Reversed", "9", "5", false}, RangeCase{"TextReadsAsZero", "x", "7", true},
    RangeCase{"NegativeIds", "-5", "-1", true}, RangeCase{"AcrossZero", "-1", "8", true},
    RangeCase{"AllIds", "-2147483648", "2147483647", true}),
    CaseName());

TEST_F(AlarmRuleEngineTest, ItemWithoutIdsEndsTheRule)
{
    Log(Days(1, 7));
    EXPECT_FALSE(Fires(RuleOf({Ids("9", "5").Duration(1, 1), Ids("7", "7").Duration(1, 1)})));
    EXPECT_EQ(mReason, Reason::NO_IDS);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_TRUE(Fires(RuleOf({Ids("7", "7").Duration(1, 1), Ids("9", "5").Duration(1, 1)})));
    EXPECT_TRUE(Fires(RuleOf({Ids("1", "2").Duration(1, 1), Ids("7", "7").Duration(1, 1)})));
}

TEST_F(AlarmRuleEngineTest, BoundsThatAreNoNumbersAreLoggedOnceEach)
{
    Log({});
    Fires(Ids("x", "y").Duration(1, 1).DailyPeak(1, 1));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), SizeIs(2));
}

TEST_F(AlarmRuleEngineTest, PeriodZeroIsThirtyDays)
{
    Log({{NOW - 30 * DAY, 7, "1", ""}, {NOW - 30 * DAY + 1, 7, "1", ""}, {NOW - 30 * DAY - 1, 7, "1", ""}});
    EXPECT_TRUE(Fires(Ids("7", "7").Latest(0, 2)));
    EXPECT_FALSE(Fires(Ids("7", "7").Latest(0, 3)));
    EXPECT_TRUE(Fires(Ids("7", "7").Latest(31, 3)));
}

TEST_F(AlarmRuleEngineTest, ThresholdZeroNeedsOneRow)
{
    Log(Days(1, 7));
    EXPECT_TRUE(Fires(Ids("7", "7").Duration(7, 0)));
    EXPECT_FALSE(Fires(Ids("8", "8").Duration(7, 0)));
}

TEST_F(AlarmRuleEngineTest, WindowOfNothingIsSkippedAndTheOthersCount)
{
    Log(Days(1, 7));
    EXPECT_FALSE(Fires(Ids("7", "7").Duration(0, 0)));
    EXPECT_EQ(mReason, Reason::WINDOW_EMPTY);
    EXPECT_TRUE(Fires(Ids("7", "7").Duration(0, 0).Latest(1, 1)));
    EXPECT_FALSE(Fires(Ids("7", "7")));
    EXPECT_EQ(mReason, Reason::WINDOW_ABSENT);
}

TEST_F(AlarmRuleEngineTest, NegativeThresholdIsReachedByPeaksButNotByCounts)
{
    Log(Days(3, 7, "{\"a\":1}"));
    EXPECT_FALSE(Fires(Ids("7", "7").Duration(30, -1)));
    EXPECT_FALSE(Fires(Ids("7", "7").Latest(30, -1)));
    EXPECT_TRUE(Fires(Ids("7", "7").DailyPeak(30, -1)));
    EXPECT_FALSE(Fires(Ids("8", "8").DailyPeak(30, -1)));
    EXPECT_TRUE(Fires(Ids("7", "7").WithParam("p", "a", "int").Multiple({{"p", "eq", "2"}}).Duration(30, -1)));
}

TEST_F(AlarmRuleEngineTest, DailyPeakIsTheDayOfTheMonth)
{
    // Two rows on 2 November and one on 2 October.
    Log({{NOW - 12 * DAY, 7, "1", ""}, {NOW - 12 * DAY + 60, 7, "1", ""}, {NOW - 43 * DAY - 7200, 7, "1", ""},
        {NOW, 8, "1", ""}, {NOW - DAY, 8, "1", ""}, {NOW - 2 * DAY, 8, "1", ""}});
    EXPECT_TRUE(Fires(Ids("7", "7").DailyPeak(60, 3)));
    EXPECT_FALSE(Fires(Ids("7", "7").DailyPeak(60, 4)));
    EXPECT_FALSE(Fires(Ids("7", "7").DailyPeak(30, 3)));
    EXPECT_FALSE(Fires(Ids("8", "8").DailyPeak(60, 2)));
    EXPECT_TRUE(Fires(Ids("8", "8").Duration(60, 3)));
}

TEST_F(AlarmRuleEngineTest, FirstAndLastDayOfAMonthCountInAPeak)
{
    const std::int64_t first = NOW - 13 * DAY; // of November
    const std::int64_t last = NOW - 14 * DAY; // of October
    Log({{first, 7, "1", "{\"a\":1}"}, {last, 8, "1", "{\"a\":1}"}, {first, DMD, "1", "{\"COUNT\":5}"},
        {last, DMD + 1, "1", "{\"COUNT\":5}"}});
    for (const char* const id : {"7", "8"}) {
        EXPECT_TRUE(Fires(Ids(id, id).DailyPeak(30, 1))) << id;
        EXPECT_TRUE(Fires(Ids(id, id).WithParam("p", "a", "int").Single("p", "eq", "1").DailyPeak(30, 1))) << id;
    }
    for (const char* const id : {"920000001", "920000002"}) {
        EXPECT_TRUE(Fires(Ids(id, id).DailyPeak(30, 5))) << id;
    }
}

TEST_F(AlarmRuleEngineTest, RowsWithoutADayCountInNoPeak)
{
    Log({{NOW, 7, "1", ""}, {INT64_MAX, 7, "1", ""}, {INT64_MAX, 7, "1", ""}});
    EXPECT_TRUE(Fires(Ids("7", "7").Duration(1, 3)));
    EXPECT_TRUE(Fires(Ids("7", "7").DailyPeak(1, 1)));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), testing::AllOf(testing::SizeIs(2),
        Each("FUNc:StringUtil::StollS: stoll exception: invalid stoll argument")));
    EXPECT_FALSE(Fires(Ids("7", "7").DailyPeak(1, 2)));
}

TEST_F(AlarmRuleEngineTest, OrdinaryRowsCountOneWhateverTheyCarry)
{
    Log(Days(4, 7, "{\"COUNT\":9} no json"));
    EXPECT_TRUE(Fires(Ids("7", "7").Duration(30, 4)));
    EXPECT_FALSE(Fires(Ids("7", "7").Duration(30, 5).DailyPeak(30, 2)));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(AlarmRuleEngineTest, DmdRowsCountWhatTheySay)
{
    Log({{NOW, DMD, "1", "{\"COUNT\":\"5\"}"}, {NOW, DMD, "1", "{}"}, {NOW, DMD, "1", ""}, {NOW, DMD, "1", "{"}});
    EXPECT_TRUE(Fires(Ids("920000001", "920000001").Duration(1, 7)));
    EXPECT_FALSE(Fires(Ids("920000001", "920000001").Duration(1, 8)));
    EXPECT_TRUE(Fires(Ids("920000001", "920000001").DailyPeak(1, 7)));
    EXPECT_FALSE(Fires(Ids("920000001", "920000001").DailyPeak(1, 8)));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), SizeIs(4));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), Each(HasSubstr("DetectionCustomize::CheckDmdEventCount: parseJson err.")));
}

TEST_F(AlarmRuleEngineTest, DmdRowsUnderATestCountOne)
{
    Log({{NOW, DMD, "1", "{\"COUNT\":5}"}});
    EXPECT_TRUE(Fires(Ids("920000001", "920000001").WithParam("p", "COUNT", "int").Single("p", "eq", "5")
        .Duration(1, 1)));
    EXPECT_FALSE(Fires(Ids("920000001", "920000001").WithParam("p", "COUNT", "int").Single("p", "eq", "5")
        .Duration(1, 2).DailyPeak(1, 2)));
}

TEST_F(AlarmRuleEngineTest, NegativeWeightsTakeAwayAndWrap)
{
    Log({{NOW, DMD, "1", "{\"COUNT\":-3}"}, {NOW, DMD, "1", "{\"COUNT\":2}"}});
    const Ids ids("920000001", "920000001");
    EXPECT_TRUE(Fires(Ids(ids).Duration(1, 2147483647))) << "-1 without sign";
    EXPECT_TRUE(Fires(Ids("920000001", "920000001").Duration(1, -1)));
    EXPECT_FALSE(Fires(Ids("920000001", "920000001").DailyPeak(1, 1))) << "a peak is never below 0";
}

TEST_F(AlarmRuleEngineTest, DailyWeightsWrapAt32Bits)
{
    Log({{NOW, DMD, "1", "{\"COUNT\":2147483647}"}, {NOW, DMD, "1", "{\"COUNT\":2}"}});
    EXPECT_FALSE(Fires(Ids("920000001", "920000001").DailyPeak(1, 1)));
    EXPECT_TRUE(Fires(Ids("920000001", "920000001").Duration(1, 2147483647)));
}

TEST_F(AlarmRuleEngineTest, RowsOfOtherVersionsCountOnlyWithoutUpdate)
{
    Log({{NOW, 7, "2", ""}, {NOW, 7, "", ""}, {NOW, 7, "1", ""}});
    for (const char* const word : {"1", "2"}) {
        EXPECT_TRUE(Fires(Ids("7", "7").Begin(word).Duration(1, 2)));
        EXPECT_FALSE(Fires(Ids("7", "7").Begin(word).Duration(1, 3)));
    }
    for (const char* const word : {"3", "4", ""}) {
        EXPECT_TRUE(Fires(Ids("7", "7").Begin(word).Duration(1, 3)));
    }
}

TEST_F(AlarmRuleEngineTest, WritesTheKindOfWindowAndTheResultsIntoTheRule)
{
    Log(Days(1, 7, "{\"a\":5}"));
    const Ids ids = Ids("7", "7").WithParam("p", "a", "int").Multiple({{"p", "eq", "5"}, {"p", "eq", "6"}})
        .Latest(30, 1);
    EXPECT_FALSE(Fires(ids));
    EXPECT_EQ(ids.Item()->latest->timeType, TimeSet::LATEST);
    EXPECT_TRUE(ids.Item()->conditionList[0]->GetLogicItemList()[0]->IsResult());
    EXPECT_FALSE(ids.Item()->conditionList[0]->GetLogicItemList()[1]->IsResult());
}

TEST_F(AlarmRuleEngineTest, EachWindowUnderATestIsToldItsKind)
{
    Log({});
    const Ids ids = Ids("7", "7").WithParam("p", "a", "int").Single("p", "eq", "5").Duration(30, 1).DailyPeak(30, 1);
    ids.Item()->duration->timeType = TimeSet::LATEST;
    EXPECT_FALSE(Fires(ids));
    EXPECT_EQ(ids.Item()->duration->timeType, TimeSet::DURATION);
    EXPECT_EQ(ids.Item()->daily_peak->timeType, TimeSet::DAILY_PEAK);
}

TEST_F(AlarmRuleEngineTest, MissingLogIsToldForEachIdAndWindow)
{
    EXPECT_FALSE(Fires(Ids("7", "8").Duration(1, 1).Latest(1, 1)));
    EXPECT_EQ(mReason, Reason::LOG_UNAVAILABLE);
    const std::string missing = "FUNc:AlarmRuleDbHelper::OpenDatabase: log.db is not exist.";
    const std::string failed = "FUNc:AlarmRuleDbHelper::GetEventList: Open log.db fail.";
    EXPECT_THAT(mLog.Lines(), ElementsAre(missing, missing, failed, missing, failed, missing, failed, missing, failed))
        << "the first as the engine is made, then two for each id and window";
}

TEST_F(AlarmRuleEngineTest, LogMayAppearBetweenTwoRules)
{
    AlarmRuleEngine engine(std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr));
    const auto rule = RuleOf({Ids("7", "7").Duration(1, 1)});
    EXPECT_FALSE(engine.IsFaultHappened(rule, ""));
    Log(Days(1, 7));
    EXPECT_TRUE(engine.IsFaultHappened(rule, ""));
}

TEST_F(AlarmRuleEngineTest, EachWindowIsNoted)
{
    Log({{NOW, 7, "1", "{\"a\":5}"}, {NOW, 7, "2", "{\"a\":5}"}, {NOW, 8, "1", "{\"a\":5}"}, {NOW, 8, "1", ""},
        {NOW, 8, "1", "{\"a\":7}"}});
    EXPECT_TRUE(Fires(Ids("7", "8").Begin("2").WithParam("p", "a", "int").Single("p", "ge", "5").Duration(1, 3)
        .Latest(1, 2)));
    EXPECT_THAT(EvidenceLines(mRecord, "window"), ElementsAre(
        "window item 0 ids 7-8 duration days 1 threshold 3 since 1699913600 by version rows 5 other version 1 failed 1 "
        "covered 0 reached 2 rows by 8 miss [window_short]",
        testing::StartsWith("window item 0 ids 7-8 daily_peak days 0 threshold 0 since 0"),
        "window item 0 ids 7-8 latest days 1 threshold 2 since 1699913600 by version rows 5 other version 1 failed 1 "
        "covered 0 reached 2 rows by 8 hit [window_reached]"));
    EXPECT_THAT(EvidenceLines(mRecord, "start"), SizeIs(2));
}

TEST_F(AlarmRuleEngineTest, TheBoundsOfAnItemWithoutIdsAreNoted)
{
    Log({});
    EXPECT_FALSE(Fires(RuleOf({Ids("1", "2"), Ids("9", "5").Duration(1, 1)})));
    EXPECT_FALSE(Fires(Ids("x", "0").Duration(1, 1)));
    const auto windows = EvidenceLines(mRecord, "window");
    ASSERT_THAT(windows, SizeIs(5));
    EXPECT_THAT(windows[3], testing::StartsWith("window item 1 ids 9-5  days 0"));
    EXPECT_THAT(windows[3], testing::EndsWith("miss [no_ids]"));
    EXPECT_THAT(windows[4], testing::StartsWith("window item 0 ids 0-0  days 0"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), SizeIs(1)) << "noting reads no bound again";
}

TEST_F(AlarmRuleEngineTest, WhetherRowsOrWeightsWereCountedAndOfOneDayIsNoted)
{
    Log({{NOW, 7, "1", ""}, {NOW, DMD, "1", "{\"COUNT\":5}"}});
    const std::string dmd = std::to_string(DMD);
    Fires(Ids("7", "7").Duration(1, 9).DailyPeak(1, 9));
    Fires(Ids(dmd, dmd).Latest(1, 9).DailyPeak(1, 9));
    Fires(Ids(dmd, dmd).WithParam("p", "COUNT", "int").Single("p", "eq", "5").DailyPeak(1, 9));
    Fires(Ids(dmd, dmd).WithParam("p", "COUNT", "int").Multiple({{"p", "eq", "5"}}).Duration(1, 9).DailyPeak(1, 9));
    Fires(Ids("8", "8").Duration(1, 9));
    std::vector<std::string> reached;
    for (const std::string& line : EvidenceLines(mRecord, "window")) {
        if (line.find("[window_absent]") == std::string::npos) {
            const auto at = line.find("reached ");
            reached.push_back(line.substr(at, line.find(" miss") - at));
        }
    }
    EXPECT_THAT(reached, ElementsAre("reached 1 rows by 7", "reached 1 daily_rows by 7",
        "reached 5 daily_weights by " + dmd, "reached 5 weights by " + dmd, "reached 1 daily_rows by " + dmd,
        "reached 1 rows by " + dmd, "reached 1 rows by last id " + dmd, "reached 0 by 0"));
}

TEST_F(AlarmRuleEngineTest, WhatAsksForNoIdIsNotForeseen)
{
    Log(Days(2, 7));
    const auto rule = RuleOf({Ids("9", "8").Latest(7, 1), Ids("x", "").Latest(7, 1), Ids("7x", "9").Latest(7, 1), Ids("7", "7").Latest(7, 2)});
    rule->alarmItemList.insert(rule->alarmItemList.begin(), nullptr);
    const auto helper = std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr);
    AlarmRuleEngine engine(helper);
    engine.Foresee(*rule);
    EXPECT_TRUE(engine.IsFaultHappened(RuleOf({Ids("7", "7").Latest(7, 2)}), "event"));
    EXPECT_FALSE(engine.IsFaultHappened(rule, "event")) << "an item that is null has no ids";
    EXPECT_EQ(engine.GetReason(), Reason::NO_IDS);
}

TEST_F(AlarmRuleEngineTest, ANumberOfAWindowThatIsNoneIsNoted)
{
    Log(Days(2, 7));
    for (bool TimeSet::*bad : {&TimeSet::isBadPeriod, &TimeSet::isBadThreshold}) {
        const Ids item = Ids("7", "7").Latest(7, 2);
        (*item.Item()->latest).*bad = true;
        mRecord = {};
        EXPECT_TRUE(Fires(item));
        EXPECT_THAT(mRecord.notes, ElementsAre(Reason::BAD_NUMBER));
    }
}

TEST_F(AlarmRuleEngineTest, ARowWhoseTimeIsBeyondTheCalendarCountsForNoDay)
{
    constexpr std::int64_t BEYOND = 67768036191676800; // no year of the calendar has it
    Log({{BEYOND, 7, "1", R"({"a":5})"}, {NOW, 7, "1", R"({"a":5})"}});
    const auto tested = [](int threshold) {
        return Ids("7", "7").WithParam("p", "a", "int").Single("p", "eq", "5").DailyPeak(7, threshold);
    };
    EXPECT_TRUE(Fires(tested(1)));
    EXPECT_FALSE(Fires(tested(2)));
    EXPECT_TRUE(Fires(Ids("7", "7").Latest(7, 2))) << "but as a row";
}

} // namespace
