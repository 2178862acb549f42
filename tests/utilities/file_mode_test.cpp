#include "arborist/utilities/file_util.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FileModeTest : public testing::Test {
protected:
    TempDir mDir;
    LogCapture mLog;
};

fs::perms PermissionsOf(const std::string& path)
{
    return fs::status(path).permissions();
}

TEST_F(FileModeTest, ModeWithoutWriteBitsTakesAllWritingAway)
{
    mDir.Write("file", "");
    fs::permissions("file", fs::perms{0666});
    EXPECT_TRUE(FileUtil::ChangeMode("file", 292));
    EXPECT_EQ(PermissionsOf("file"), fs::perms{0444});
    EXPECT_TRUE(FileUtil::ChangeMode("file", 420));
    EXPECT_EQ(PermissionsOf("file"), fs::perms{0644});
}

TEST_F(FileModeTest, AnyWriteBitLetsTheOwnerWriteAndNoOtherBitCounts)
{
    mDir.Write("file", "");
    fs::permissions("file", fs::perms{0400});
    EXPECT_TRUE(FileUtil::ChangeMode("file", 02));
    EXPECT_EQ(PermissionsOf("file"), fs::perms{0600});
    EXPECT_TRUE(FileUtil::ChangeMode("file", 0777));
    EXPECT_EQ(PermissionsOf("file"), fs::perms{0600});
    EXPECT_TRUE(FileUtil::ChangeMode("file", 07555));
    EXPECT_EQ(PermissionsOf("file"), fs::perms{0400});
}

TEST_F(FileModeTest, ModeAbove4095OrWithoutAFileIsRefused)
{
    mDir.Write("file", "");
    EXPECT_FALSE(FileUtil::ChangeMode("file", 4096));
    EXPECT_FALSE(FileUtil::ChangeModeFile("file", 4096));
    EXPECT_TRUE(FileUtil::ChangeModeFile("file", 4095));
    EXPECT_FALSE(FileUtil::ChangeMode("missing", 420));
    EXPECT_FALSE(FileUtil::ChangeModeFile("missing", 420));
    EXPECT_FALSE(FileUtil::ChangeModeDirectory("missing", 420));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FileModeTest, ModeThatTheSystemRefusesLogs)
{
    const std::string refused = "/proc/self/status";
    if (!fs::exists(refused)) {
        GTEST_SKIP() << "needs " << refused;
    }
    EXPECT_FALSE(FileUtil::ChangeMode(refused, 420));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:FileUtil::ChangeMode: Failed to change file mode /proc/self/status."));
}

TEST_F(FileModeTest, ModeOfADirectoryReachesEverythingInIt)
{
    mDir.Write("outside", "");
    mDir.Write("folder/deep/file", "");
    fs::create_symlink(mDir.Path("outside"), "folder/link");
    EXPECT_TRUE(FileUtil::ChangeModeDirectory("folder", 292));
    const auto mayWrite = [](const char* path) { return (PermissionsOf(path) & fs::perms{0222}) != fs::perms::none; };
    EXPECT_FALSE(mayWrite("folder"));
    EXPECT_FALSE(mayWrite("folder/deep"));
    EXPECT_FALSE(mayWrite("folder/deep/file"));
    EXPECT_TRUE(mayWrite("outside"));
    EXPECT_TRUE(FileUtil::ChangeModeDirectory("folder", 420));
    EXPECT_TRUE(mayWrite("folder/deep/file"));
    EXPECT_FALSE(FileUtil::ChangeModeDirectory("folder", 4096));
}

TEST_F(FileModeTest, UmaskIsItsArgument)
{
    EXPECT_EQ(FileUtil::Umask(18), 18);
}

} // namespace
