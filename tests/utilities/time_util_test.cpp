#include "arborist/utilities/time_util.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "arborist/frame/settings.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/time_zone.h"

#ifndef _WIN32

namespace {

std::vector<std::timespec>* recordedPauses = nullptr;

} // namespace

// Replaces the system's function: records the pause instead of waiting.
extern "C" int nanosleep(const std::timespec* pause, std::timespec* left)
{
    if (recordedPauses != nullptr) {
        recordedPauses->push_back(*pause);
        return 0;
    }
    const int error = clock_nanosleep(CLOCK_REALTIME, 0, pause, left);
    errno = error;
    return error == 0 ? 0 : -1;
}

#endif

namespace {

constexpr char FORMAT[] = "%Y-%m-%d %H:%M:%S";

class TimeUtilTest : public testing::Test {
protected:
    TimeZone mZone{CENTRAL_EUROPE};
    SettingsGuard mSettings;
};

TEST_F(TimeUtilTest, ClockIsThatOfTheSystem)
{
    const std::int64_t before = std::time(nullptr) - 1;
    const std::int64_t now = TimeUtil::GetTimeOfDay();
    const std::uint64_t timestamp = TimeUtil::GenerateTimestamp();
    const std::int64_t after = std::time(nullptr) + 1;
    EXPECT_LE(before, now);
    EXPECT_LE(now, after);
    EXPECT_LE(before, static_cast<std::int64_t>(timestamp));
    EXPECT_LE(static_cast<std::int64_t>(timestamp), after);
}

TEST_F(TimeUtilTest, SettingStandsForTheClock)
{
    mSettings.Set(Settings::CURRENT_TIME, "1705309200");
    EXPECT_EQ(TimeUtil::GetTimeOfDay(), 1705309200);
    EXPECT_EQ(TimeUtil::GenerateTimestamp(), 1705309200U);
    mSettings.Set(Settings::CURRENT_TIME, "-5");
    EXPECT_EQ(TimeUtil::GetTimeOfDay(), -5);
}

TEST_F(TimeUtilTest, SettingThatIsNoDecimalNumberDoesNotCount)
{
    const std::int64_t before = std::time(nullptr) - 1;
    for (const char* text : {"5 ", "5x", "x", "0x5", "1e3", "99999999999999999999"}) {
        mSettings.Set(Settings::CURRENT_TIME, text);
        EXPECT_GE(TimeUtil::GetTimeOfDay(), before) << text;
    }
}

std::int64_t Milliseconds()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

TEST_F(TimeUtilTest, MillisecondsAreThoseOfTheClockWithinTheSecond)
{
    mSettings.Set(Settings::CURRENT_TIME, "1705309200"); // replaces the seconds only
    for (int matches = 0; matches < 100;) {
        const std::int64_t before = Milliseconds();
        const std::int32_t within = TimeUtil::GetMillSecOfSec();
        if (Milliseconds() == before) {
            ASSERT_EQ(within, before % 1000);
            ++matches;
        }
    }
}

TEST_F(TimeUtilTest, NanosecondCounterDoesNotGoBack)
{
    const std::uint64_t before = TimeUtil::GetNanoTime();
    EXPECT_GE(TimeUtil::GetNanoTime(), before);
}

#ifndef _WIN32

TEST_F(TimeUtilTest, SleepTakesTheSecondsThatItIsGiven)
{
    std::vector<std::timespec> pauses;
    recordedPauses = &pauses;
    TimeUtil::Sleep(0);
    EXPECT_TRUE(pauses.empty());
    TimeUtil::Sleep(7);
    recordedPauses = nullptr;
    ASSERT_EQ(pauses.size(), 1U);
    EXPECT_EQ(pauses[0].tv_sec, 7);
    EXPECT_EQ(pauses[0].tv_nsec, 0);
}

#endif

TEST_F(TimeUtilTest, FormatsLocalTime)
{
    EXPECT_EQ(TimeUtil::GetFormatTime(0), "1970-01-01 01:00:00");
    EXPECT_EQ(TimeUtil::GetFormatTime(-3600), "1970-01-01 00:00:00");
    EXPECT_EQ(TimeUtil::GetFormatTime(1705309200), "2024-01-15 10:00:00");
    EXPECT_EQ(TimeUtil::GetFormatTime(1721034000), "2024-07-15 11:00:00");
}

TEST_F(TimeUtilTest, TimeWithoutALocalFormGivesTheLiteral)
{
    EXPECT_EQ(TimeUtil::GetFormatTime(std::numeric_limits<std::int64_t>::max()), "YYYY-MM-DD HH:MM:SS");
    EXPECT_EQ(TimeUtil::GetFormatTime(std::numeric_limits<std::int64_t>::min()), "YYYY-MM-DD HH:MM:SS");
}

struct DigitsCase { const char* name; const char* text; std::int64_t expected; };
void PrintTo(const DigitsCase& digitsCase, std::ostream* out) { *out << digitsCase.name; }
class TimeOfDigits : public testing::TestWithParam<DigitsCase> {};

TEST_P(TimeOfDigits, IsLocalAndSilent)
{
    const TimeZone zone(CENTRAL_EUROPE);
    const LogCapture log;
    EXPECT_EQ(TimeUtil::StrToTimeStamp(GetParam().text), GetParam().expected);
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Table, TimeOfDigits, testing::Values(
    DigitsCase{"Winter", "20240115100000", 1705309200},
    DigitsCase{"SummerIsReadAsStandardTime", "20240715100000", 1721034000},
    DigitsCase{"MidnightOfTheDay", "20240115000000", 1705273200},
    DigitsCase{"Month13RollsOver", "20231315100000", 1705309200},
    DigitsCase{"ThirteenDigits", "2024011510000", 0},
    DigitsCase{"FifteenDigits", "202401151000000", 0},
    DigitsCase{"SpaceAmongThem", "20240115 10000", 0},
    DigitsCase{"SpaceInFront", " 20240115100000", 0},
    DigitsCase{"LineEndBehind", "20240115100000\n", 0},
    DigitsCase{"Letters", "2024011510000x", 0},
    DigitsCase{"Empty", "", 0}),
    CaseName());

struct FormatCase { const char* name; const char* text; const char* format; std::int64_t expected; };
void PrintTo(const FormatCase& formatCase, std::ostream* out) { *out << formatCase.name; }
class TimeOfFormat : public testing::TestWithParam<FormatCase> {};

TEST_P(TimeOfFormat, IsLocal)
{
    const TimeZone zone(CENTRAL_EUROPE);
    EXPECT_EQ(TimeUtil::StrToTimeStamp(GetParam().text, GetParam().format), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, TimeOfFormat, testing::Values(
    FormatCase{"Winter", "2024-01-15 10:00:00", FORMAT, 1705309200},
    FormatCase{"SummerIsReadAsStandardTime", "2024-07-15 10:00:00", FORMAT, 1721034000},
    FormatCase{"TextBehindDoesNotMatter", "2024-01-15 10:00:00.123", FORMAT, 1705309200},
    FormatCase{"OtherFormat", "15.01.2024", "%d.%m.%Y", 1705273200},
    FormatCase{"NoDate", "yesterday", FORMAT, 0},
    FormatCase{"TextThatEndsEarlyLeavesTheRestAtZero", "2024-01-15", FORMAT, 1705273200},
    FormatCase{"OtherSeparator", "2024/01/15 10:00:00", FORMAT, 0},
    FormatCase{"Month13", "2024-13-15 10:00:00", FORMAT, 0},
    FormatCase{"Empty", "", FORMAT, 0},
    FormatCase{"EmptyBoth", "", "", 0}),
    CaseName());

} // namespace
