#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/evaluation/detection_customize.h"
#include "diagnosis/lint/reading/weighted_ids.h"
#include "tests/diagnosis/lint/rule_findings.h"
#include "tests/support/case_name.h"

namespace {

using testing::ElementsAreArray;

struct ItemCase {
    const char* name;
    std::set<std::string> checks;
    std::string item;
    std::vector<std::string> findings;
};

void PrintTo(const ItemCase& itemCase, std::ostream* out) { *out << itemCase.item; }

class AlarmChecks : public testing::TestWithParam<ItemCase> {};

TEST_P(AlarmChecks, FindWhatIsWrongWithAnItem)
{
    EXPECT_THAT(FindingsInItem(GetParam().item, GetParam().checks), ElementsAreArray(GetParam().findings));
}

std::string Item(const std::string& attributes, const std::string& content)
{
    return "<alarmId " + attributes + ">" + content + "</alarmId>";
}

/// An item of the event 5.
std::string Plain(const std::string& content)
{
    return Item("Eventid_Max=\"5\"", content);
}

std::string Time(const std::string& type, const std::string& attributes)
{
    return "<time type=\"" + type + "\" " + attributes + "/>";
}

/// An item with tests, of the events 5 to `last`.
std::string Tested(const std::string& last, const std::string& content, const std::string& condition)
{
    return Item("type=\"param_eventid\" Eventid_Min=\"5\" Eventid_Max=\"" + last + "\"",
        content + "<params><param id=\"1\" key=\"a\" type=\"int\"/></params><condition>" + condition + "</condition>");
}

const std::string SINGLE = "<or type=\"single_logic\"><gt><id>1</id><value>5</value></gt></or>";
const std::string ONE_OF_SEVERAL =
    "<or type=\"multiple_logic\"><and><gt><id>1</id><value>5</value></gt></and></or>";
const std::string SEVERAL = "<or type=\"multiple_logic\"><and><gt><id>1</id><value>5</value></gt>"
                            "<lt><id>1</id><value>9</value></lt></and></or>";
const std::string WEEK = "period=\"7\" threshold=\"1\"";

const std::string IS_REACHED = ", which any row of the events reaches";
const std::string IS_NOT_REACHED = ", which no count reaches";
const std::string TIME_OF_R = "a time of the rule \"r\" ";

INSTANTIATE_TEST_SUITE_P(Times, AlarmChecks, testing::Values(
    ItemCase{"TimeOfAnUnknownTypeIsNone", {"A502", "A503"}, Plain(Time("weekly", WEEK)),
        {"A502: an \"alarmId\" of the rule \"r\" has no time in which it counts",
            "A503: a time of the rule \"r\" has the unknown type \"weekly\""}},
    ItemCase{"TimeWithoutAType", {"A503"}, Plain("<time " + WEEK + "/>"),
        {"A503: a time of the rule \"r\" has no type"}},
    ItemCase{"EmptyTimeBesideAnother", {"A502"}, Plain(Time("latest", "") + Time("duration", WEEK)),
        {"A502: a time of the rule \"r\" has neither a period nor a threshold"}},
    ItemCase{"PeriodAloneIsATime", {"A502"}, Plain(Time("latest", "period=\"7\"")), {}},
    ItemCase{"DurationAndLatestWithTests", {"A504"}, Tested("5", Time("latest", WEEK) + Time("duration", WEEK), SINGLE),
        {}},
    ItemCase{"MissingThreshold", {"A505"}, Plain(Time("latest", "period=\"7\"")),
        {"A505: " + TIME_OF_R + "has no threshold" + IS_REACHED}},
    ItemCase{"ThresholdOfAPassedOverTime", {"A505"}, Plain(Time("latest", "threshold=\"0\"")), {}},
    ItemCase{"ThresholdThatIsNoNumber", {"A505", "A411"}, Plain(Time("latest", "period=\"7\" threshold=\"x\"")),
        {"A411: " + TIME_OF_R + "has the threshold \"x\", which is read as 0"}},
    ItemCase{"ThresholdWithAUnit", {"A411"}, Plain(Time("latest", "period=\"7\" threshold=\"3 rows\"")),
        {"A411: " + TIME_OF_R + "has the threshold \"3 rows\", which is read as 3"}},
    ItemCase{"NegativeThresholdOfSeveralTestsUnderDuration", {"A505"},
        Tested("5", Time("duration", "period=\"7\" threshold=\"-1\""), SEVERAL),
        {"A505: " + TIME_OF_R + "has the threshold -1" + IS_REACHED}},
    ItemCase{"NegativeThresholdOfOneTestUnderDuration", {"A505"},
        Tested("5", Time("duration", "period=\"7\" threshold=\"-1\""), SINGLE),
        {"A505: " + TIME_OF_R + "has the threshold -1" + IS_NOT_REACHED}},
    ItemCase{"NegativeThresholdOfSeveralTestsUnderADailyPeak", {"A505"},
        Tested("5", Time("daily_peak", "period=\"7\" threshold=\"-1\""), SEVERAL),
        {"A505: " + TIME_OF_R + "has the threshold -1" + IS_NOT_REACHED}},
    ItemCase{"NegativeThresholdOfOneTestUnderADailyPeak", {"A505"},
        Tested("5", Time("daily_peak", "period=\"7\" threshold=\"-1\""), SINGLE),
        {"A505: " + TIME_OF_R + "has the threshold -1" + IS_REACHED}}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(Days, AlarmChecks, testing::Values(
    ItemCase{"MissingPeriod", {"A410"}, Plain(Time("latest", "threshold=\"1\"")),
        {"A410: " + TIME_OF_R + "has no period: 30 days are taken"}},
    ItemCase{"PeriodWithAUnit", {"A410"}, Plain(Time("latest", "period=\"7 days\" threshold=\"1\"")),
        {"A410: " + TIME_OF_R + "has the period \"7 days\", which is no number: it is read as 7"}},
    ItemCase{"PeriodOfAPassedOverTime", {"A410"}, Plain(Time("latest", "period=\"0\"")), {}},
    ItemCase{"SmallestNegativePeriod", {"A410"}, Plain(Time("latest", "period=\"-2147483648\" threshold=\"1\"")),
        {"A410: " + TIME_OF_R + "has a period of -2147483648 days, whose seconds do not fit into 32 bits"}},
    ItemCase{"LongestPeriod", {"A410"}, Plain(Time("latest", "period=\"24855\" threshold=\"1\"")), {}},
    ItemCase{"DailyPeakOfAFebruary", {"A511"}, Plain(Time("daily_peak", "period=\"28\" threshold=\"1\"")), {}},
    ItemCase{"DailyPeakWithoutAPeriod", {"A511"}, Plain(Time("daily_peak", "threshold=\"1\"")),
        {"A511: a daily peak of the rule \"r\" looks at 30 days"}},
    ItemCase{"DailyPeakThatIsPassedOver", {"A511"}, Plain(Time("daily_peak", "")), {}},
    ItemCase{"DailyPeakThatOverflows", {"A511"}, Plain(Time("daily_peak", "period=\"24856\" threshold=\"1\"")), {}},
    ItemCase{"LongDailyPeakOfOneTest", {"A511"},
        Tested("5", Time("daily_peak", "period=\"29\" threshold=\"1\""), SINGLE),
        {"A511: a daily peak of the rule \"r\" looks at 29 days"}},
    ItemCase{"LongDailyPeakOfSeveralTestsAddsNothingUp", {"A511"},
        Tested("5", Time("daily_peak", "period=\"29\" threshold=\"1\""), SEVERAL), {}}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(Tests, AlarmChecks, testing::Values(
    ItemCase{"DroppedAlternativesAreNoMissingTests", {"A507"}, Tested("5", Time("latest", WEEK), "<or/>"), {}},
    ItemCase{"EmptyCondition", {"A507"}, Tested("5", Time("latest", WEEK), ""),
        {"A507: the rule \"r\" has the type \"param_eventid\" and no tests"}},
    ItemCase{"SeveralTestsUnderLatestForOneEvent", {"A509"}, Tested("5", Time("latest", WEEK), SEVERAL), {}},
    ItemCase{"SeveralTestsUnderLatestForTwoEvents", {"A509"}, Tested("6", Time("latest", WEEK), SEVERAL),
        {"A509: the rule \"r\" has a \"multiple_logic\" under \"latest\" for 2 events"}},
    ItemCase{"OneTestUnderLatestForTwoEvents", {"A509"}, Tested("6", Time("latest", WEEK), SINGLE), {}},
    ItemCase{"SeveralTestsUnderTwoTimes", {"A510"},
        Tested("5", Time("duration", WEEK) + Time("daily_peak", WEEK), SEVERAL),
        {"A510: the rule \"r\" asks one \"multiple_logic\" under \"duration\" and under \"daily_peak\""}},
    ItemCase{"SeveralTestsUnderTimesWithoutDuration", {"A510"},
        Tested("5", Time("latest", WEEK) + Time("daily_peak", WEEK), SEVERAL), {}},
    ItemCase{"OneTestOfSeveralUnderTwoTimes", {"A510"},
        Tested("5", Time("duration", WEEK) + Time("latest", WEEK), ONE_OF_SEVERAL), {}},
    ItemCase{"WideRangeWithTests", {"A512"}, Tested("2147483647", Time("duration", WEEK) + Time("latest", WEEK), SEVERAL),
        {"A512: the rule \"r\" asks for 2147483643 events, each for itself, in 2 times with 2 tests"}},
    ItemCase{"RangeOfAThousand", {"A512"}, Tested("1004", Time("latest", WEEK), SINGLE), {}},
    ItemCase{"TestWithASystemParameter", {"A513"}, Tested("5", Time("latest", WEEK),
        "<or type=\"multiple_logic\"><and><gt type=\"systemParam\"><id>1</id><value>5</value></gt></and></or>"),
        {"A513: a test of the rule \"r\" has the type \"systemParam\""}},
    ItemCase{"TestsOnARangeThatHoldsWeightedEvents", {"A514"}, Tested("909030000", Time("latest", WEEK), SINGLE),
        {"A514: the rule \"r\" has tests on events that carry a \"COUNT\""}},
    ItemCase{"TestsBelowTheWeightedEvents", {"A514"}, Tested("909029999", Time("latest", WEEK), SINGLE), {}}),
    CaseName());

TEST(WeightedIds, AreThoseThatTheEngineWeighs)
{
    using diagnosis::lint::WEIGHTED_IDS;
    std::set<std::pair<int, int>> here;
    std::set<std::pair<int, int>> engine;
    for (const auto& ids : WEIGHTED_IDS) {
        here.emplace(ids.first, ids.last);
    }
    for (const auto& ids : DetectionCustomize::DMD_RANGES) {
        engine.emplace(ids.first, ids.last);
    }
    EXPECT_EQ(here, engine);
}

TEST(TimeChecks, LookAtCommandRulesThatAreLimitedInTime)
{
    const auto rule = [](const std::string& reference) {
        return "<commandRule name=\"r\" detectScene=\"1\">" + reference
            + "<AnalysisMethod type=\"SQL\"><SQL_Condition><SQLItem BeginFlag=\"4\"><sql>select 1</sql>"
              "<time period=\"-3\"/></SQLItem></SQL_Condition></AnalysisMethod></commandRule>";
    };
    const std::set<std::string> checks = {"A408", "A410"};
    EXPECT_THAT(FindingsInRules(rule(""), checks),
        testing::UnorderedElementsAre("A408: the BeginFlag of the command rule \"r\" is an attribute",
            "A410: a time of the rule \"r\" has a period of -3 days, which begins in the future"));
    EXPECT_THAT(FindingsInRules(rule("<referenceDefDB type=\"singleDB\"/>"), checks), testing::IsEmpty());
}

TEST(TimeChecks, LookAtTheBeginFlagOfCommandRules)
{
    const auto rule = [](const std::string& flag) {
        return "<commandRule name=\"r\" detectScene=\"1\"><AnalysisMethod type=\"SQL\"><SQL_Condition><SQLItem>" + flag
            + "</SQLItem></SQL_Condition></AnalysisMethod></commandRule>";
    };
    const std::set<std::string> checks = {"A407", "A408", "A409"};
    EXPECT_THAT(FindingsInRules(rule("<BeginFlag value=\"0\"/>"), checks),
        testing::ElementsAre("A407: the rule \"r\" has the unknown BeginFlag \"0\""));
    EXPECT_THAT(FindingsInRules(rule("<BeginFlag>4</BeginFlag>"), checks),
        testing::ElementsAre("A408: the BeginFlag of the command rule \"r\" has no \"value\""));
    EXPECT_THAT(FindingsInRules(rule("<BeginFlag value=\"3\"/>"), checks),
        testing::ElementsAre("A409: the BeginFlag \"3\" of the rule \"r\" does what \"4\" does"));
    EXPECT_THAT(FindingsInRules(rule("<BeginFlag value=\"4\"/>"), checks), testing::IsEmpty());
}

} // namespace
