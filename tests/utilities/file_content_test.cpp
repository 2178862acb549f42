#include "arborist/utilities/file_util.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/utilities/odd_files.h"

namespace fs = std::filesystem;

namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uintmax_t LIMIT = 33554432;

using Bytes = std::vector<std::uint8_t>;

class FileContentTest : public testing::Test {
protected:
    const std::string mTooLongName = std::string(300, 'n');
    TempDir mDir;
    LogCapture mLog;
};

TEST_F(FileContentTest, LoadsAFileWhole)
{
    const std::string content("a\0b\r\n\xff", 6);
    mDir.Write("file", content);
    Bytes buffer = {1};
    std::string text = "former";
    EXPECT_TRUE(FileUtil::LoadBufferFromFile("file", buffer));
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), content);
#ifdef _WIN32
    const std::string asText("a\0b\n\xff", 5);
#else
    const std::string& asText = content;
#endif
    EXPECT_TRUE(FileUtil::LoadStringFromFile("file", text));
    EXPECT_EQ(text, asText);
    EXPECT_TRUE(FileUtil::LoadBufferFromNodeFile("file", buffer));
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), content + asText);
}

TEST_F(FileContentTest, EmptyFileIsTrueAndEmpty)
{
    mDir.Write("file", "");
    Bytes buffer = {1};
    std::string text = "former";
    EXPECT_TRUE(FileUtil::LoadBufferFromFile("file", buffer));
    EXPECT_THAT(buffer, IsEmpty());
    EXPECT_TRUE(FileUtil::LoadBufferFromNodeFile("file", buffer));
    EXPECT_THAT(buffer, IsEmpty());
    EXPECT_TRUE(FileUtil::LoadStringFromFile("file", text));
    EXPECT_EQ(text, "");
}

TEST_F(FileContentTest, FileOfExactlyTheLimitIsRead)
{
    SparseFile("file", LIMIT);
    Bytes buffer;
    std::string text;
    EXPECT_TRUE(FileUtil::LoadBufferFromFile("file", buffer));
    EXPECT_EQ(buffer.size(), LIMIT);
    buffer.clear();
    EXPECT_TRUE(FileUtil::LoadBufferFromNodeFile("file", buffer));
    EXPECT_EQ(buffer.size(), LIMIT);
    EXPECT_TRUE(FileUtil::LoadStringFromFile("file", text));
    EXPECT_EQ(text.size(), LIMIT);
}

TEST_F(FileContentTest, FileOneByteOverTheLimitIsRefused)
{
    SparseFile("file", LIMIT + 1);
    Bytes buffer = {1};
    std::string text = "former";
    EXPECT_FALSE(FileUtil::LoadBufferFromFile("file", buffer));
    EXPECT_THAT(buffer, SizeIs(1));
    EXPECT_FALSE(FileUtil::LoadStringFromFile("file", text));
    EXPECT_EQ(text, "former");
    EXPECT_FALSE(FileUtil::LoadBufferFromNodeFile("file", buffer));
    EXPECT_THAT(buffer, IsEmpty());
}

// Reading any of these with blocking calls would never return.
TEST_F(FileContentTest, WhatIsNoFileIsRefusedAtOnce)
{
    mDir.MakeDir("folder");
    fs::create_symlink("loop", "loop");
    for (const std::string& path : {Pipe("pipe"), Socket("socket"), std::string("folder"), std::string("missing"),
             std::string("loop"), std::string(""), mTooLongName}) {
        std::string text = "former";
        Bytes buffer = {1};
        EXPECT_FALSE(FileUtil::LoadStringFromFile(path, text)) << path;
        EXPECT_EQ(text, "former") << path;
        EXPECT_FALSE(FileUtil::LoadBufferFromFile(path, buffer)) << path;
        EXPECT_FALSE(FileUtil::LoadBufferFromNodeFile(path, buffer)) << path;
        EXPECT_THAT(buffer, SizeIs(1)) << path;
    }
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FileContentTest, UnreadableFileIsRefused)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "root reads everything";
    }
    mDir.Write("file", "secret");
    fs::permissions("file", fs::perms::none);
    std::string text;
    EXPECT_FALSE(FileUtil::LoadStringFromFile("file", text));
}

TEST_F(FileContentTest, EndlessDeviceEndsAtTheLimit)
{
    std::string text = "former";
    Bytes buffer;
    EXPECT_FALSE(FileUtil::LoadStringFromFile("/dev/zero", text));
    EXPECT_EQ(text, "");
    EXPECT_FALSE(FileUtil::LoadBufferFromNodeFile("/dev/zero", buffer));
    EXPECT_THAT(buffer, IsEmpty());
    EXPECT_TRUE(FileUtil::LoadBufferFromFile("/dev/zero", buffer)); // its size is 0
}

TEST_F(FileContentTest, NullDeviceIsEmpty)
{
    std::string text = "former";
    EXPECT_TRUE(FileUtil::LoadStringFromFile("/dev/null", text));
    EXPECT_EQ(text, "");
}

TEST_F(FileContentTest, DevicesOfMemoryAreOpened)
{
    for (const char* const device : {"/dev/null", "/dev/zero", "/dev/full", "/dev/random", "/dev/urandom"}) {
        Bytes buffer = {1};
        EXPECT_TRUE(FileUtil::LoadBufferFromFile(device, buffer)) << device; // its size is 0, so that nothing is read
        EXPECT_THAT(buffer, IsEmpty());
    }
}

TEST_F(FileContentTest, DeviceWhoseOpeningMayHaveEffectsIsRefused)
{
    std::string text;
    EXPECT_FALSE(FileUtil::LoadStringFromFile("/dev/kmsg", text)); // its reading takes lines away
    EXPECT_FALSE(FileUtil::LoadStringFromFile("/dev/tty", text));
    EXPECT_FALSE(FileUtil::LoadStringFromFile("/dev/ptmx", text));
}

// The file system reports the size 0 (or, in sysfs, of a page).
TEST_F(FileContentTest, FileOfTheKernelIsReadToItsEnd)
{
    std::string text;
    Bytes buffer;
    ASSERT_TRUE(FileUtil::LoadStringFromFile("/proc/self/status", text));
    EXPECT_THAT(text, testing::HasSubstr("\nPid:\t" + std::to_string(getpid()) + "\n"));
    ASSERT_TRUE(FileUtil::LoadBufferFromNodeFile("/proc/self/status", buffer));
    EXPECT_GT(buffer.size(), 100U);
    ASSERT_TRUE(FileUtil::LoadStringFromFile("/proc/self/mounts", text));
    EXPECT_EQ(text.back(), '\n');
    const std::string ofSysfs = "/sys/kernel/mm/transparent_hugepage/enabled";
    if (fs::exists(ofSysfs)) {
        ASSERT_TRUE(FileUtil::LoadStringFromFile(ofSysfs, text));
        EXPECT_THAT(text, testing::HasSubstr("never"));
        EXPECT_LT(text.size(), 100U);
    }
}

TEST_F(FileContentTest, FileThatFailsWhileItIsReadIsFalse)
{
    std::string text = "former";
    EXPECT_FALSE(FileUtil::LoadStringFromFile("/proc/self/mem", text)); // nothing is mapped at address 0
    EXPECT_EQ(text, "");
}

TEST_F(FileContentTest, SaveReplacesOrAppends)
{
    mDir.Write("file", "former");
    EXPECT_TRUE(FileUtil::SaveStringToFile("file", " and more", false));
    EXPECT_EQ(mDir.Read("file"), "former and more");
    EXPECT_TRUE(FileUtil::SaveStringToFile("file", "new", true));
    EXPECT_EQ(mDir.Read("file"), "new");
}

TEST_F(FileContentTest, SaveOfTheEmptyTextIsTrueAndWritesNothing)
{
    mDir.Write("file", "former");
    EXPECT_TRUE(FileUtil::SaveStringToFile("file", "", true));
    EXPECT_EQ(mDir.Read("file"), "former");
    EXPECT_TRUE(FileUtil::SaveStringToFile("missing", "", true));
    EXPECT_FALSE(mDir.Has("missing"));
}

TEST_F(FileContentTest, SaveMakesNoFile)
{
    EXPECT_FALSE(FileUtil::SaveStringToFile("missing", "text", true));
    EXPECT_FALSE(FileUtil::SaveStringToFile("missing", "text", false));
    EXPECT_FALSE(mDir.Has("missing"));
}

TEST_F(FileContentTest, SaveThatCannotWriteIsFalse)
{
    EXPECT_FALSE(FileUtil::SaveStringToFile(".", "text", true));
    EXPECT_FALSE(FileUtil::SaveStringToFile(Pipe("pipe"), "text", false));
    if (fs::exists("/dev/full")) {
        EXPECT_FALSE(FileUtil::SaveStringToFile("/dev/full", "text", false));
    }
}

} // namespace
