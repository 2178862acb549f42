// Alarm rules that check the version of a row, together with rules that don't.

#include <gtest/gtest.h>

#include "arborist/evaluation/alarm_rule_engine.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/settings.h"
#include "tests/evaluation/alarm_rules.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

namespace {

constexpr std::int64_t NOW = 1700000000;
constexpr char SINCE_UPDATE[] = "2";
constexpr char ALL[] = "4";

class AlarmVersionTest : public testing::Test {
protected:
    AlarmVersionTest()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        EventLogBuilder()
            .Rows({{NOW - 10, 7, "1", ""}, {NOW - 9, 7, "2", ""}, {NOW - 8, 7, "2", ""}, {NOW - 7, 7, "", ""}})
            .WriteTo(mDir.Path("data/Comms/Lumbra/workDir/0/log.db"));
    }

    // The number of rows that a rule counts, found as the greatest threshold that it reaches.
    int CountOf(const char* begin)
    {
        int count = 0;
        while (mEngine.IsFaultHappened(RuleOf({Ids("7", "7").Begin(begin).Duration(30, count + 1)}), "event")) {
            ++count;
        }
        return count;
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    AlarmRuleEngine mEngine{std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr)};
};

TEST_F(AlarmVersionTest, VersionOfTheDeviceAndRowsWithoutOneCount)
{
    mSettings.Set(Settings::VERSION_NAME, "2");
    EXPECT_EQ(CountOf(SINCE_UPDATE), 3);
    EXPECT_EQ(CountOf(ALL), 4);
}

TEST_F(AlarmVersionTest, VersionThatTheLogLacksLeavesTheRowsWithoutOneToSuchRulesAlone)
{
    mSettings.Set(Settings::VERSION_NAME, "9");
    EXPECT_EQ(CountOf(SINCE_UPDATE), 1);
    EXPECT_EQ(CountOf(ALL), 4);
    EXPECT_EQ(CountOf(SINCE_UPDATE), 1);
}

TEST_F(AlarmVersionTest, RuleThatAsksForAllFirstChangesNothingForTheOther)
{
    mSettings.Set(Settings::VERSION_NAME, "9");
    EXPECT_EQ(CountOf(ALL), 4);
    EXPECT_EQ(CountOf(SINCE_UPDATE), 1);
}

TEST_F(AlarmVersionTest, DeviceWithoutAVersionCountsTheRowsWithoutOne)
{
    mSettings.Set(Settings::VERSION_NAME, "");
    EXPECT_EQ(CountOf(SINCE_UPDATE), 1);
    EXPECT_EQ(CountOf(ALL), 4);
}

} // namespace
