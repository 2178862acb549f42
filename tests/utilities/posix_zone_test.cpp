#include "arborist/utilities/posix_zone.h"

#include <cstdint>
#include <ctime>
#include <ostream>
#include <random>
#include <string>

#include <gmock/gmock.h>

#include "tests/support/case_name.h"
#include "tests/support/time_zone.h"

namespace {

// What the clock shows in summer and in winter, worked out by hand: 2024-01-15 and 2024-07-15, 12:00 UTC.
struct ZoneCase {
    const char* name;
    const char* text;
    std::int64_t january;
    std::int64_t july;
};

void PrintTo(const ZoneCase& zoneCase, std::ostream* out)
{
    *out << zoneCase.text;
}

constexpr std::int64_t JANUARY = 1705320000;
constexpr std::int64_t JULY = 1721044800;

class PosixZoneOffset : public testing::TestWithParam<ZoneCase> {};

TEST_P(PosixZoneOffset, IsThatOfTheSeason)
{
    const auto zone = PosixZone::Of(GetParam().text);
    ASSERT_TRUE(zone.has_value());
    EXPECT_EQ(zone->OffsetAt(JANUARY), GetParam().january);
    EXPECT_EQ(zone->OffsetAt(JULY), GetParam().july);
}

INSTANTIATE_TEST_SUITE_P(Table, PosixZoneOffset, testing::Values(
    ZoneCase{"Utc", "UTC0", 0, 0},
    ZoneCase{"East", "CET-1", 3600, 3600},
    ZoneCase{"WestWithMinutes", "NST3:30", -12600, -12600},
    ZoneCase{"NameInBrackets", "<+0545>-5:45", 20700, 20700},
    ZoneCase{"SummerOfAnHour", CENTRAL_EUROPE, 3600, 7200},
    ZoneCase{"SummerInJanuary", "AEST-10AEDT,M10.1.0,M4.1.0/3", 39600, 36000},
    ZoneCase{"SummerOfHalfAnHour", "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", 39600, 37800},
    ZoneCase{"DaysOfTheYear", "AAA-1BBB-3,60,300", 3600, 10800},
    ZoneCase{"DaysWithoutTheLeapDay", "AAA-1BBB-3,J60,J300", 3600, 10800}),
    CaseName());

TEST(PosixZoneTest, WhatIsNotWrittenOutIsNoZone)
{
    for (const char* text : {"", "Europe/Berlin", ":UTC0", "CE-1", "CET", "CET-25", "CET-1CEST", "CET-1CEST,M3.5.0",
             "CET-1CEST,M13.5.0,M10.5.0", "CET-1CEST,M3.6.0,M10.5.0", "CET-1CEST,M3.5.7,M10.5.0", "CET-1CEST,J0,J9",
             "CET-1CE", "CET-1CEST:", "CET-1CEST-2", "CET-1CEST,M3",
             "CET-1CEST,M3.5", "<a>-1", "CET-1CEST,M3.5.0,M10.5.0/168", "CET-1CEST,M3.5.0,M10.5.0 ", "<+1-1", "CET--1", "CET-1:60"}) {
        EXPECT_FALSE(PosixZone::Of(text).has_value()) << text;
    }
}

TEST(PosixZoneTest, OffsetOfWinterIsThatWithoutSummer)
{
    EXPECT_EQ(PosixZone::Of(CENTRAL_EUROPE)->StandardOffset(), 3600);
    EXPECT_EQ(PosixZone::Of("NST3:30NDT,M3.2.0,M11.1.0")->StandardOffset(), -12600);
}

TEST(PosixZoneTest, ClocksChangeAtTheSecond)
{
    const auto zone = PosixZone::Of(CENTRAL_EUROPE);
    EXPECT_EQ(zone->OffsetAt(1711846799), 3600); // 2024-03-31 01:59:59 local time
    EXPECT_EQ(zone->OffsetAt(1711846800), 7200);
    EXPECT_EQ(zone->OffsetAt(1729990799), 7200); // 2024-10-27 02:59:59
    EXPECT_EQ(zone->OffsetAt(1729990800), 3600);
}

TEST(CalendarTest, FieldsOutOfTheirRangeAreCarried)
{
    std::tm fields{};
    fields.tm_year = 123;
    fields.tm_mon = 13; // February 2024
    fields.tm_mday = 30; // the first of March
    fields.tm_hour = 25;
    EXPECT_EQ(Calendar::SecondsOf(fields), 1709341200); // 2024-03-02 01:00:00
    fields.tm_mon = -1; // December 2022
    EXPECT_EQ(Calendar::SecondsOf(fields), 1672448400); // 2022-12-31 01:00:00
}

TEST(CalendarTest, YearsHaveFourDigits)
{
    std::tm fields{};
    EXPECT_TRUE(Calendar::FieldsOf(253402300799, fields)); // 9999-12-31 23:59:59
    EXPECT_EQ(fields.tm_year, 9999 - 1900);
    EXPECT_EQ(fields.tm_yday, 364);
    EXPECT_FALSE(Calendar::FieldsOf(253402300800, fields));
    EXPECT_TRUE(Calendar::FieldsOf(-62167219200, fields)); // 0000-01-01
    EXPECT_FALSE(Calendar::FieldsOf(-62167219201, fields));
}

#ifndef _WIN32

// The C library of POSIX answers a second way. For the years before 1970 it takes the days of 1970.
TEST(PosixZoneRandomTest, FieldsAreThoseOfTheCLibrary)
{
    const unsigned int seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937_64 random(seed);
    std::uniform_int_distribution<std::int64_t> moments(40'000'000, 10'000'000'000);
    for (const char* text : {CENTRAL_EUROPE, "AEST-10AEDT,M10.1.0,M4.1.0/3", "EST5EDT,M3.2.0/2:00:00,M11.1.0",
             "AAA3BBB,J59/1:30,J60", "AAA-3BBB-1,0,365/23", "<-03>3<-02>,M3.5.0/-2,M10.5.0/-1", "IST-5:30"}) {
        const TimeZone set(text);
        const auto zone = PosixZone::Of(text);
        ASSERT_TRUE(zone.has_value()) << text;
        for (int sample = 0; sample < 2000; ++sample) {
            const std::time_t moment = moments(random);
            std::tm expected{};
            localtime_r(&moment, &expected);
            std::tm fields{};
            ASSERT_TRUE(Calendar::FieldsOf(moment + zone->OffsetAt(moment), fields));
            ASSERT_EQ(zone->OffsetAt(moment), expected.tm_gmtoff) << text << " at " << moment;
            ASSERT_EQ(Calendar::SecondsOf(fields), Calendar::SecondsOf(expected)) << text << " at " << moment;
            ASSERT_EQ(fields.tm_wday, expected.tm_wday) << moment;
            ASSERT_EQ(fields.tm_yday, expected.tm_yday) << moment;
        }
    }
}

#endif

} // namespace
