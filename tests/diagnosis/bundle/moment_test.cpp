#include "diagnosis/bundle/moment.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "diagnosis/process/process_state.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::FirstSecondOf;
using diagnosis::FormatMoment;
using diagnosis::IsDay;
using diagnosis::IsMomentText;
using diagnosis::IsTimeZone;
using diagnosis::LastSecondOf;
using diagnosis::MomentText;
using diagnosis::ParseMoment;
using diagnosis::TimeZoneGuard;
using diagnosis::ZoneOfThisMachine;

constexpr char BERLIN[] = "CET-1CEST,M3.5.0,M10.5.0/3";

// More than 127 characters of the right form.
constexpr char LONG_ZONE[] = "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"
    "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA5";

struct ZoneCase { const char* name; const char* zone; bool isOne; };
void PrintTo(const ZoneCase& zoneCase, std::ostream* out) { *out << zoneCase.name; }
class TimeZoneText : public testing::TestWithParam<ZoneCase> {};

TEST_P(TimeZoneText, IsAZoneOrNot)
{
    EXPECT_EQ(IsTimeZone(GetParam().zone), GetParam().isOne);
}

INSTANTIATE_TEST_SUITE_P(Table, TimeZoneText, testing::Values(
    ZoneCase{"Utc", "UTC", true}, ZoneCase{"RuleWithSummerTime", BERLIN, true}, ZoneCase{"Offset", "<+03>-3", true},
    ZoneCase{"RuleWithoutChanges", "EST5EDT", true}, ZoneCase{"Empty", "", false},
    ZoneCase{"UnknownName", "Europe/Nowhere", false}, ZoneCase{"Absolute", "/etc/localtime", false},
    ZoneCase{"AboveTheDatabase", "../../etc/passwd", false}, ZoneCase{"Folder", "Europe", false},
    ZoneCase{"Words", "not a zone", false}, ZoneCase{"RuleWithSeconds", "AAA-1:02:03BBB+10:30,J60/-1,300/2:00", true},
    ZoneCase{"RuleWithAQuotedNameOfTwo", "<+3>-3", false}, ZoneCase{"RuleWithoutAnOffset", "ABCD", false},
    ZoneCase{"RuleWithOneChange", "CET-1CEST,M3.5.0", false}, ZoneCase{"RuleWithAThirdChange",
        "CET-1CEST,M3.5.0,M10.5.0,M11.5.0", false}, ZoneCase{"RuleWithAWeekTooMany", "CET-1CEST,M3.6.0,M10.5.0", false},
    ZoneCase{"RuleWithALongOffset", "CET-1000", false}, ZoneCase{"RuleWithAnOpenName", "<+03-3", false},
    ZoneCase{"RuleWithShortMinutes", "CET-1:3", false}, ZoneCase{"RuleWithShortSeconds", "CET-1:30:3", false},
    ZoneCase{"Gmt", "GMT", true}, ZoneCase{"RuleWithDefaultChanges", "AAA5BBB", true},
    ZoneCase{"RuleWithOffsetsOfSummerTime", "AAA5BBB-3,J60,J300", true}, ZoneCase{"RuleWithAPlainOffset", "AAA5BBB4,0,J300", true},
    ZoneCase{"RuleWithAShortSecondName", "AAA5BB", false}, ZoneCase{"RuleWithABadSecondOffset", "AAA5BBB+x", false},
    ZoneCase{"RuleWithoutAMonth", "AAA5BBB,M.1.0,J1", false}, ZoneCase{"RuleWithoutAPoint", "AAA5BBB,M3x1.0,J1", false},
    ZoneCase{"RuleWithoutASecondPoint", "AAA5BBB,M3.1x0,J1", false}, ZoneCase{"RuleWithADayTooMany", "AAA5BBB,M3.1.7,J1", false},
    ZoneCase{"RuleWithABadTimeOfChange", "AAA5BBB,J1/x,J2", false}, ZoneCase{"RuleThatIsLong", LONG_ZONE, false}), CaseName());

TEST(MomentTest, LocalTimeAndSecondsNameTheSameMoment)
{
    const TimeZoneGuard zone(BERLIN);
    EXPECT_EQ(ParseMoment("2024-05-01 10:00:00"), 1714550400);
    EXPECT_EQ(ParseMoment("1714550400"), 1714550400);
    EXPECT_EQ(ParseMoment("-1"), -1);
    EXPECT_EQ(FormatMoment(1714550400), "2024-05-01 10:00:00");
    EXPECT_EQ(FormatMoment(-1), "1970-01-01 00:59:59");
}

TEST(MomentTest, WhatIsNoMomentIsNone)
{
    const TimeZoneGuard zone(BERLIN);
    for (const char* text : {"", "now", "2024-05-01", "2024-05-01T10:00:00", "2024-13-01 00:00:00", "2023-02-29 00:00:00",
             "2024-05-01 24:00:00", "2024-00-01 00:00:00", "2024-05-00 00:00:00",
             "1900-02-29 00:00:00", "2024-05-01 10:00:0x", "2024-05-01 10:00:0/", "2024-05-01 10:60:00", "2024-05-01 10:00:61", "1e9", "5 ", "+5",
             "99999999999999999999"}) {
        EXPECT_EQ(ParseMoment(text), std::nullopt) << text;
        EXPECT_FALSE(IsMomentText(text)) << text;
    }
    EXPECT_EQ(ParseMoment("2024-03-31 02:30:00"), std::nullopt) << "the clocks skipped it";
    EXPECT_TRUE(IsMomentText("2024-03-31 02:30:00")) << "it exists elsewhere";
    EXPECT_TRUE(IsMomentText("2024-02-29 00:00:00"));
    EXPECT_EQ(FormatMoment(INT64_MAX), std::nullopt);
    EXPECT_EQ(FormatMoment(253402300800), std::nullopt) << "the year 10000";
    EXPECT_EQ(FormatMoment(-62200000000), std::nullopt) << "the year -1";
    EXPECT_TRUE(IsMomentText("2000-02-29 00:00:00"));
}

TEST(MomentTest, AnHourThatComesTwiceIsTheFirstWhateverWasAskedBefore)
{
    const TimeZoneGuard zone(BERLIN);
    for (const char* before : {"2024-07-01 12:00:00", "2024-12-01 12:00:00"}) {
        ASSERT_TRUE(ParseMoment(before));
        EXPECT_EQ(ParseMoment("2024-10-27 02:00:00"), 1729987200) << before;
        EXPECT_EQ(ParseMoment("2024-10-27 02:59:59"), 1729990799) << before;
        EXPECT_EQ(ParseMoment("2024-10-27 01:59:59"), 1729987199) << before;
        EXPECT_EQ(ParseMoment("2024-10-27 03:00:00"), 1729994400) << before;
    }
}

TEST(MomentTest, ADayReachesFromItsFirstSecondToItsLast)
{
    const TimeZoneGuard zone(BERLIN);
    EXPECT_EQ(FirstSecondOf("2024-05-01"), ParseMoment("2024-05-01 00:00:00"));
    EXPECT_EQ(LastSecondOf("2024-05-01"), ParseMoment("2024-05-01 23:59:59"));
    for (const char* text : {"", "2024-02-30", "2024-05-1", "2024-05-01 00:00:00", "1714550400"}) {
        EXPECT_FALSE(IsDay(text)) << text;
        EXPECT_EQ(FirstSecondOf(text), std::nullopt) << text;
        EXPECT_EQ(LastSecondOf(text), std::nullopt) << text;
    }
}

// Clocks that are changed at midnight: forward from 00:00 to 01:00, and back from 00:00 to 23:00 of the day before.
TEST(MomentTest, ADayHasEndsWhereTheClocksAreChangedAtMidnight)
{
    const TimeZoneGuard zone("AAA3BBB,M10.3.0/0,M2.3.0/0");
    EXPECT_EQ(ParseMoment("2023-10-15 00:00:00"), std::nullopt);
    EXPECT_EQ(FirstSecondOf("2023-10-15"), ParseMoment("2023-10-15 01:00:00"));
    EXPECT_EQ(*FirstSecondOf("2023-10-15"), *LastSecondOf("2023-10-14") + 1);
    EXPECT_EQ(*ParseMoment("2024-02-17 23:59:59") + 3600, LastSecondOf("2024-02-17"));
    EXPECT_EQ(*FirstSecondOf("2024-02-18"), *LastSecondOf("2024-02-17") + 1);
}

TEST(MomentTest, WhatClocksDontShowOnceIsShownInSeconds)
{
    const TimeZoneGuard zone(BERLIN);
    EXPECT_EQ(MomentText(1714550400), "2024-05-01 10:00:00");
    EXPECT_EQ(MomentText(1729992600), "1729992600") << "half past two for the second time";
    EXPECT_EQ(MomentText(INT64_MAX), "9223372036854775807");
}

TEST(MomentTest, ADayThatAZoneSkippedHasNoSecond)
{
    if (!IsTimeZone("Pacific/Apia")) {
        GTEST_SKIP() << "no zone database";
    }
    const TimeZoneGuard zone("Pacific/Apia"); // crossed the date line
    EXPECT_TRUE(IsDay("2011-12-30"));
    EXPECT_EQ(FirstSecondOf("2011-12-30"), std::nullopt);
    EXPECT_EQ(LastSecondOf("2011-12-30"), std::nullopt);
}

TEST(ZoneOfThisMachineTest, IsThatOfTheEnvironmentIfItIsOne)
{
    for (const auto& [given, zone] : {std::pair("UTC", "UTC"), std::pair(":GMT", "GMT"), std::pair("no zone", "UTC0")}) {
        const TimeZoneGuard guard(given);
        EXPECT_EQ(ZoneOfThisMachine(), zone);
    }
}

TEST(ZoneOfThisMachineTest, WithoutTheEnvironmentItIsAZoneAllTheSame)
{
    const std::string before = std::getenv("TZ") == nullptr ? "" : std::getenv("TZ");
    unsetenv("TZ");
    EXPECT_TRUE(IsTimeZone(ZoneOfThisMachine()));
    setenv("TZ", before.c_str(), 1);
}

TEST(TimeZoneTextTest, NamesAreLookedUpInTheFolderOfTheEnvironment)
{
    const TempDir dir;
    dir.Write("Own/Zone", "TZif2");
    dir.Write("Own/Text", "no zone");
    setenv("TZDIR", dir.Path().c_str(), 1);
    EXPECT_TRUE(IsTimeZone("Own/Zone"));
    EXPECT_FALSE(IsTimeZone("Own/Text"));
    unsetenv("TZDIR");
}

} // namespace
