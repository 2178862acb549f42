#include "arborist/utilities/device_paths.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "arborist/frame/settings.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

namespace {

class DevicePathsTest : public testing::Test {
protected:
    SettingsGuard mSettings;
};

TEST_F(DevicePathsTest, StandBelowTheDefaultRoot)
{
#ifdef _WIN32
    EXPECT_EQ(DevicePaths::EventLog(), R"(C:\ProgramData\Comms\Lumbra\workDir\0\log.db)");
    EXPECT_EQ(DevicePaths::DerivedDatabase(),
        R"(C:\ProgramData\Comms\Lumbra\zxdetectrepair\databases\JankEventDb.db)");
    EXPECT_EQ(DevicePaths::RepairDatabase(),
        R"(C:\ProgramData\Comms\Lumbra\zxdetectrepair\databases\repair_record.db)");
#else
    EXPECT_EQ(DevicePaths::EventLog(), "/var/lib/arborist/Comms/Lumbra/workDir/0/log.db");
    EXPECT_EQ(DevicePaths::DerivedDatabase(),
        "/var/lib/arborist/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db");
    EXPECT_EQ(DevicePaths::RepairDatabase(),
        "/var/lib/arborist/Comms/Lumbra/zxdetectrepair/databases/repair_record.db");
#endif
}

TEST_F(DevicePathsTest, FollowTheSettingAtEachCall)
{
    mSettings.Set(Settings::PROGRAM_DATA_DIR, "programdata");
    EXPECT_EQ(DevicePaths::EventLog(), "programdata/Comms/Lumbra/workDir/0/log.db");
    mSettings.Set(Settings::PROGRAM_DATA_DIR, "/other");
    EXPECT_EQ(DevicePaths::DerivedDatabase(), "/other/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db");
    EXPECT_EQ(DevicePaths::RepairDatabase(), "/other/Comms/Lumbra/zxdetectrepair/databases/repair_record.db");
}

TEST_F(DevicePathsTest, PathOnTheDeviceIsAsItIsWithoutARoot)
{
    EXPECT_EQ(DevicePaths::OnDevice("/proc/../x"), "/proc/../x");
    EXPECT_EQ(DevicePaths::OnDevice("x"), "x");
    EXPECT_EQ(DevicePaths::OnDevice(""), "");
}

TEST_F(DevicePathsTest, AbsolutePathStandsBelowTheRootOfTheDevice)
{
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "captured/root");
    EXPECT_EQ(DevicePaths::OnDevice("/proc/loadavg"), "captured/root/proc/loadavg");
    EXPECT_EQ(DevicePaths::OnDevice("proc/loadavg"), "proc/loadavg");
    EXPECT_EQ(DevicePaths::OnDevice(""), "");
}

TEST_F(DevicePathsTest, NeitherParentElementsNorLinksLeaveTheRootOfTheDevice)
{
    const TempDir dir;
    std::filesystem::create_directory_symlink("/etc", dir.MakeDir("root") + "/link");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "root");
    EXPECT_EQ(DevicePaths::OnDevice("/../../etc/hostname"), "root/etc/hostname");
    EXPECT_EQ(DevicePaths::OnDevice("/link/passwd"), "root/etc/passwd");
    EXPECT_EQ(DevicePaths::OnDevice("../../etc/hostname"), "etc/hostname");
}

TEST_F(DevicePathsTest, RealPathStaysInTheRootOfTheDevice)
{
    const TempDir dir;
    const std::string root = dir.MakeDir("root");
    const std::string inside = dir.Write("root/data/a.db", "");
    std::filesystem::create_symlink("/data/a.db", root + "/inside");
    std::filesystem::create_symlink("/etc/passwd", root + "/outside");
    const std::string besides = dir.Write("besides", "");
    std::filesystem::create_symlink("/besides", dir.Path("link"));
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "root");
    EXPECT_EQ(DevicePaths::RealPath(root + "/inside", root), inside);
    EXPECT_EQ(DevicePaths::RealPath(root + "/outside", root), "");
    EXPECT_EQ(DevicePaths::RealPath(root + "/none", root), "");
    EXPECT_EQ(DevicePaths::RealPath(dir.Path("link"), root), besides); // below the working directory
    EXPECT_EQ(DevicePaths::RealPath("/etc/passwd", root), "");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "");
    EXPECT_EQ(DevicePaths::RealPath(root + "/outside", ""), "/etc/passwd");
}

#if defined(__linux__)
TEST_F(DevicePathsTest, RealPathIsOpenedWhereItsFoldersAreReplacedByLinks)
{
    const TempDir dir;
    const std::string root = dir.MakeDir("root");
    const std::string onDevice = dir.Write("root/data/a.db", "");
    const std::string besides = dir.Write("besides/a.db", "");
    const auto isFound = [&root](const std::string& path) {
        return std::filesystem::exists(DevicePaths::FindReal(path, root).Path());
    };
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "root");
    EXPECT_TRUE(isFound(onDevice));
    EXPECT_TRUE(isFound(besides)); // below the working directory
    EXPECT_TRUE(isFound(root));
    EXPECT_FALSE(isFound("/etc/passwd"));
    for (const char* folder : {"root/data", "besides"}) {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directory_symlink("/etc", folder);
    }
    EXPECT_FALSE(isFound(root + "/data/passwd"));
    EXPECT_FALSE(isFound(dir.Path("besides/passwd")));
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "");
    EXPECT_EQ(DevicePaths::FindReal("/etc/passwd", "").Path(), "/etc/passwd");
}
#endif

TEST_F(DevicePathsTest, PathOnTheDeviceIsWhatStandsBelowItsRoot)
{
    EXPECT_EQ(DevicePaths::PathOnDevice("/capture/root/data/a.db", "/capture/root"), "/data/a.db");
    EXPECT_EQ(DevicePaths::PathOnDevice("/capture/root2/a.db", "/capture/root"), "/capture/root2/a.db");
    EXPECT_EQ(DevicePaths::PathOnDevice("/capture/root", "/capture/root"), "/capture/root");
    EXPECT_EQ(DevicePaths::PathOnDevice("/data/a.db", ""), "/data/a.db");
}

TEST_F(DevicePathsTest, WithoutTheFolderOfADeviceNothingIsFoundOutside)
{
    const TempDir dir;
    dir.Write("here", "1");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "/no/such/folder");
    EXPECT_EQ(DevicePaths::RealPath(dir.Path("here"), ""), dir.Path("here")) << "below the working directory";
    EXPECT_EQ(DevicePaths::RealPath("/etc/passwd", ""), "");
    EXPECT_EQ(DevicePaths::FindReal("/etc/passwd", "").Path(), "");
}

TEST_F(DevicePathsTest, RealRootOfTheDeviceHasNoLinks)
{
    EXPECT_EQ(DevicePaths::RealRootOfDevice(), "");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "/no/such/folder");
    EXPECT_EQ(DevicePaths::RealRootOfDevice(), "");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "/");
    EXPECT_EQ(DevicePaths::RealRootOfDevice(), "");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "/proc/self/../../usr/.");
    EXPECT_EQ(DevicePaths::RealRootOfDevice(), "/usr");
}

} // namespace
