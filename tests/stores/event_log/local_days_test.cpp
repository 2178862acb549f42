#include "arborist/stores/event_log/local_days.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "arborist/utilities/time_util.h"
#include "tests/support/time_zone.h"

namespace {

constexpr std::int64_t MINUTE = 60;
constexpr std::int64_t HOUR = 3600;
constexpr std::int64_t DAY = 86400;
[[maybe_unused]] constexpr char ZONES[] = "/usr/share/zoneinfo";

std::int32_t WrittenDay(std::int64_t time)
{
    return std::stoi(TimeUtil::GetFormatTime(time).substr(8, 2));
}

TEST(LocalDaysTest, DaysBeginAtLocalMidnight)
{
    const TimeZone zone("IST-5:30");
    LocalDays days;
    EXPECT_EQ(days.DayOfMonth(1704047399), 31); // 23:59:59
    EXPECT_EQ(days.DayOfMonth(1704047400), 1);
    EXPECT_EQ(days.DayOfMonth(0), 1);
    EXPECT_EQ(days.DayOfMonth(UINT32_MAX), WrittenDay(UINT32_MAX));
}

// Clocks that are set back at a minute past midnight return to the day before.
TEST(LocalDaysTest, ClocksThatAreChangedAMinutePastMidnightHaveTwoDaysInAnHour)
{
    const TimeZone zone("NST3:30NDT,M4.1.0/0:01,M10.5.0/0:01");
    constexpr std::int64_t CHANGE = 1256437860; // 25 October 2009, 00:01, back to 23:01
    LocalDays days;
    EXPECT_EQ(days.DayOfMonth(CHANGE - MINUTE - 1), 24);
    EXPECT_EQ(days.DayOfMonth(CHANGE - 1), 25);
    EXPECT_EQ(days.DayOfMonth(CHANGE), 24);
    EXPECT_EQ(days.DayOfMonth(CHANGE + HOUR - MINUTE), 25);
}

TEST(LocalDaysTest, ZoneIsTheOneInForceWhenTheDaysAreAsked)
{
    const TimeZone zone("CET-1");
    EXPECT_EQ(LocalDays().DayOfMonth(1704065400), 1);
    const TimeZone other("UTC0");
    EXPECT_EQ(LocalDays().DayOfMonth(1704065400), 31);
}

#ifndef _WIN32

// The names of all zones of the system.
std::vector<std::string> ZoneNames()
{
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::recursive_directory_iterator file(ZONES, error), end; !error && file != end; ++file) {
        std::string magic(4, ' ');
        std::ifstream(file->path(), std::ios::binary).read(magic.data(), 4);
        if (file->is_regular_file() && magic == "TZif") {
            names.push_back(std::filesystem::relative(file->path(), ZONES).string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::int64_t OffsetAt(std::int64_t time)
{
    const std::time_t moment = time;
    std::tm local{};
    localtime_r(&moment, &local);
    return local.tm_gmtoff;
}

// The moments from 1970 to 2037 at which the clocks of the zone are changed.
std::vector<std::int64_t> ClockChanges()
{
    std::vector<std::int64_t> changes;
    constexpr std::int64_t END = 2145916800;
    for (std::int64_t begin = 0; begin < END; begin += 7 * DAY) {
        std::int64_t before = begin;
        std::int64_t after = begin + 7 * DAY;
        if (OffsetAt(before) == OffsetAt(after)) {
            continue;
        }
        while (after - before > 1) {
            const std::int64_t middle = before + (after - before) / 2;
            (OffsetAt(middle) == OffsetAt(begin) ? before : after) = middle;
        }
        changes.push_back(after);
    }
    return changes;
}

TEST(LocalDaysTest, DaysAreThoseOfTheWrittenTimeOnBothSidesOfEveryClockChange)
{
    const std::vector<std::string> names = ZoneNames();
    ASSERT_GT(names.size(), 300U) << "install tzdata";
    for (const std::string& name : names) {
        const TimeZone zone(name);
        LocalDays days;
        for (const std::int64_t change : ClockChanges()) {
            const std::int64_t midnight = change - change % DAY;
            for (const std::int64_t time : {change - DAY, change - HOUR, change - 2 * MINUTE, change - MINUTE,
                     change - 1, change, change + 1, change + MINUTE - 1, change + MINUTE, change + HOUR - MINUTE,
                     change + HOUR - 1, change + HOUR, change + DAY, midnight, midnight + DAY - 1, midnight + DAY}) {
                if (time >= 0) {
                    ASSERT_EQ(days.DayOfMonth(static_cast<std::uint32_t>(time)), WrittenDay(time))
                        << name << ' ' << time;
                }
            }
        }
    }
}

#endif

} // namespace
