#include "diagnosis/capture/captured_files.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

TEST(CapturedFilesTest, FoldersAreCapturedWithEmptyOnesAndWithoutEndlessLinks)
{
    const TempDir dir;
    dir.Write("source/a/file", "x");
    dir.MakeDir("source/empty");
    fs::create_directory_symlink("..", "source/a/up");
    fs::create_symlink("file", "source/a/link");
    diagnosis::CapturedFiles files(dir.MakeDir("target"), {});
    EXPECT_FALSE(files.AddFolder("source", "device/source").has_value());
    EXPECT_EQ(dir.Read("target/device/source/a/link"), "x");
    EXPECT_TRUE(dir.Has("target/device/source/empty"));
    EXPECT_FALSE(dir.Has("target/device/source/a/up"));
    EXPECT_EQ(files.Files(), 2U);
    diagnosis::CapturedFiles few(dir.MakeDir("few"), {.entries = 1});
    EXPECT_EQ(few.AddFolder("source", "s")->code, diagnosis::FailureCode::TOO_LARGE);
}

TEST(CapturedFilesTest, LinksInAFolderAreFollowedWithinTheRoot)
{
    const TempDir dir;
    dir.Write("outside.db", "of this machine");
    dir.Write("device/other/inside.db", "of the device");
    dir.MakeDir("device/data");
    fs::create_symlink(dir.Path("outside.db"), dir.Path("device/data/outside.db"));
    fs::create_symlink("../../outside.db", dir.Path("device/data/climbing.db"));
    fs::create_directory_symlink("/other", dir.Path("device/data/folder"));
    diagnosis::CapturedFiles files(dir.MakeDir("target"), {});
    EXPECT_FALSE(files.AddFolder("device/data", "data", dir.Path("device")).has_value());
    EXPECT_EQ(dir.Read("target/data/folder/inside.db"), "of the device");
    EXPECT_EQ(files.GetNames(), std::vector<std::string>{"data/folder/inside.db"});
    diagnosis::CapturedFiles live(dir.MakeDir("live"), {});
    EXPECT_FALSE(live.AddFolder("device/data", "data").has_value());
    EXPECT_EQ(dir.Read("live/data/outside.db"), "of this machine");
}

} // namespace
