#include "diagnosis/process/process_state.h"

#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/settings.h"
#include "diagnosis/process/local_time.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::SettingsInForce;
using diagnosis::TimeZoneGuard;
using diagnosis::WorkingDirectory;

int HourAtTheEpoch()
{
    return diagnosis::LocalTime(0)->tm_hour;
}

std::string Setting(const char* key)
{
    return FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(key, "");
}

TEST(TimeZoneGuardTest, GivesTheZoneBack)
{
    const std::string before = std::getenv("TZ") == nullptr ? "" : std::getenv("TZ");
    {
        const TimeZoneGuard zone("UTC");
        EXPECT_EQ(HourAtTheEpoch(), 0);
        const TimeZoneGuard other("<+03>-3");
        EXPECT_EQ(HourAtTheEpoch(), 3);
        const TimeZoneGuard same("");
        EXPECT_EQ(HourAtTheEpoch(), 3);
    }
    EXPECT_EQ(std::getenv("TZ") == nullptr ? "" : std::getenv("TZ"), before);
}

TEST(WorkingDirectoryTest, IsGivenBackAlsoWhenItCouldNotBeEntered)
{
    const TempDir dir;
    dir.MakeDir("inner");
    {
        WorkingDirectory directory;
        EXPECT_FALSE(directory.Enter("inner"));
        EXPECT_EQ(std::filesystem::current_path().filename(), "inner");
        WorkingDirectory missing;
        EXPECT_EQ(missing.Enter("none"), std::errc::no_such_file_or_directory);
        EXPECT_EQ(std::filesystem::current_path().filename(), "inner");
    }
    EXPECT_EQ(std::filesystem::current_path().generic_string(), dir.Path());
}

TEST(SettingsInForceTest, EachSetReplacesAllAndNoneIsLeftAtTheEnd)
{
    SetFaultTreeProperty(Settings::VERSION_NAME, "old");
    {
        SettingsInForce settings;
        settings.Set({{Settings::CURRENT_TIME, "5"}});
        EXPECT_EQ(Setting(Settings::VERSION_NAME), "");
        EXPECT_EQ(Setting(Settings::CURRENT_TIME), "5");
        settings.Set({{Settings::APP_FILE_DIR, "files"}});
        EXPECT_EQ(Setting(Settings::CURRENT_TIME), "");
        EXPECT_EQ(Setting(Settings::APP_FILE_DIR), "files");
    }
    EXPECT_EQ(Setting(Settings::APP_FILE_DIR), "");
}

} // namespace
