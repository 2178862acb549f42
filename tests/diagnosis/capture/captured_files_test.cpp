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

TEST(CapturedFilesTest, WhatIsNotThereIsNotCapturedAndIsNoTrouble)
{
    const TempDir dir;
    diagnosis::CapturedFiles files(dir.MakeDir("target"), {});
    EXPECT_FALSE(files.AddFile("none", "a").has_value());
    EXPECT_FALSE(files.AddNodeFile("none", "b").has_value());
    EXPECT_FALSE(files.AddFolder("none", "c").has_value());
    EXPECT_EQ(files.Files(), 0U);
    EXPECT_TRUE(files.GetWarnings().empty());
    EXPECT_TRUE(fs::is_empty("target"));
}

TEST(CapturedFilesTest, APlainFileInThePlaceOfAFolderIsCaptured)
{
    const TempDir dir;
    dir.Write("source", "x");
    diagnosis::CapturedFiles files(dir.MakeDir("target"), {});
    EXPECT_FALSE(files.AddFolder("source", "s").has_value());
    EXPECT_EQ(dir.Read("target/s"), "x");
}

TEST(CapturedFilesTest, MoreFilesOrBytesThanACaptureMayHaveAreRefused)
{
    const TempDir dir;
    dir.Write("folder/file", "123456");
    diagnosis::CapturedFiles one(dir.MakeDir("one"), {.entries = 1});
    EXPECT_FALSE(one.AddFile("folder/file", "a").has_value());
    EXPECT_EQ(one.AddFile("folder/file", "b")->message, "more than 1 files or 4294967296 bytes to capture");
    for (const bool isFolder : {false, true}) {
        diagnosis::CapturedFiles five(dir.MakeDir(isFolder ? "all" : "file"), {.bytes = 5});
        const auto failure = isFolder ? five.AddFolder("folder", "f") : five.AddFile("folder/file", "f");
        ASSERT_TRUE(failure.has_value());
        EXPECT_EQ(failure->code, diagnosis::FailureCode::TOO_LARGE);
    }
    diagnosis::CapturedFiles six(dir.MakeDir("six"), {.bytes = 6});
    EXPECT_FALSE(six.AddFolder("folder", "f").has_value());
}

TEST(CapturedFilesTest, ANodeFileIsCutWhereNoLibraryReadsIt)
{
    const TempDir dir;
    dir.Write("node", "");
    fs::resize_file("node", 40U << 20U);
    diagnosis::CapturedFiles files(dir.MakeDir("target"), {});
    EXPECT_FALSE(files.AddNodeFile("node", "n").has_value());
    EXPECT_EQ(fs::file_size("target/n"), (32U << 20U) + 1);
}

TEST(CapturedFilesTest, WhatLiesTooDeepIsLeftOutWithAWarning)
{
    const TempDir dir;
    std::string folder = "source";
    for (int depth = 1; depth <= 61; ++depth) {
        folder += "/f";
        dir.Write(folder + "/file", "x");
    }
    diagnosis::CapturedFiles files(dir.MakeDir("target"), {});
    EXPECT_FALSE(files.AddFolder("source", "s").has_value());
    EXPECT_EQ(files.Files(), 60U);
    ASSERT_EQ(files.GetWarnings().size(), 1U);
    EXPECT_EQ(files.GetWarnings()[0].message,
        fs::canonical(folder).generic_string() + ": lies too deep, and what it holds is left out");
}

} // namespace
