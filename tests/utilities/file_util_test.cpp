#include "arborist/utilities/file_util.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <pthread.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/frame/stopping.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr std::uintmax_t LIMIT = 33554432;

using Bytes = std::vector<std::uint8_t>;

class FileUtilTest : public testing::Test {
protected:
    // A sparse file of zeros.
    std::string Sparse(const std::string& name, std::uintmax_t size) const
    {
        mDir.Write(name, "");
        fs::resize_file(name, size);
        return name;
    }

    std::string Pipe(const std::string& name) const
    {
        EXPECT_EQ(mkfifo(name.c_str(), 0600), 0);
        return name;
    }

    std::string Socket(const std::string& name) const
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        name.copy(address.sun_path, sizeof(address.sun_path) - 1);
        const int made = socket(AF_UNIX, SOCK_STREAM, 0);
        EXPECT_EQ(bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        close(made);
        return name;
    }

    // An existing file by a path of exactly this length, which is odd.
    std::string LongPathTo(const std::string& oneLetterName, std::size_t length) const
    {
        std::string path;
        while (path.size() + 1 < length) {
            path += "./";
        }
        return path + oneLetterName;
    }

    const std::string mTooLongName = std::string(300, 'n');
    TempDir mDir;
    LogCapture mLog;
};

TEST_F(FileUtilTest, ExistsIsTrueForFilesFoldersAndLinksToThem)
{
    mDir.Write("file", "");
    mDir.MakeDir("folder");
    fs::create_symlink("file", "link");
    fs::create_symlink("nowhere", "dangling");
    EXPECT_TRUE(FileUtil::FileExists("file"));
    EXPECT_TRUE(FileUtil::FileExists("folder"));
    EXPECT_TRUE(FileUtil::FileExists("link"));
    EXPECT_FALSE(FileUtil::FileExists("dangling"));
    EXPECT_FALSE(FileUtil::FileExists("missing"));
    EXPECT_FALSE(FileUtil::FileExists("file/below"));
    EXPECT_FALSE(FileUtil::FileExists(""));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FileUtilTest, ExistsLogsWhatCannotBeTold)
{
    EXPECT_FALSE(FileUtil::FileExists(mTooLongName));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:FileUtil::FileExists: Failed to access file " + mTooLongName + "."));
}

TEST_F(FileUtilTest, ExistsAIsTrueForWhatIsNoFolder)
{
    mDir.Write("file", "");
    mDir.MakeDir("folder");
    EXPECT_TRUE(FileUtil::FileExistsA("file"));
    EXPECT_TRUE(FileUtil::FileExistsA(Pipe("pipe")));
    EXPECT_FALSE(FileUtil::FileExistsA("folder"));
    EXPECT_FALSE(FileUtil::FileExistsA("missing"));
    EXPECT_FALSE(FileUtil::FileExistsA(mTooLongName));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FileUtilTest, PlainFileIsNeitherFolderNorPipe)
{
    mDir.Write("file", "");
    fs::create_symlink("file", "link");
    EXPECT_TRUE(FileUtil::IsPlainFile("file"));
    EXPECT_TRUE(FileUtil::IsPlainFile("link"));
    EXPECT_FALSE(FileUtil::IsPlainFile("."));
    EXPECT_FALSE(FileUtil::IsPlainFile(Pipe("pipe")));
    EXPECT_FALSE(FileUtil::IsPlainFile("/dev/null"));
    EXPECT_FALSE(FileUtil::IsPlainFile("missing"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FileUtilTest, DirectoryIsToldFromFile)
{
    mDir.Write("file", "");
    EXPECT_TRUE(FileUtil::IsDirectory("."));
    EXPECT_FALSE(FileUtil::IsDirectory("file"));
    EXPECT_FALSE(FileUtil::IsDirectory("missing"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FileUtilTest, DirectoryLogsWhatCannotBeTold)
{
    EXPECT_FALSE(FileUtil::IsDirectory(mTooLongName));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:FileUtil::IsDirectory: Failed to judge directory " + mTooLongName + "."));
}

TEST_F(FileUtilTest, SizeIsZeroWhereThereIsNone)
{
    mDir.Write("file", "12345");
    EXPECT_EQ(FileUtil::GetFileSize("file"), 5U);
    EXPECT_EQ(FileUtil::GetFileSize(Sparse("large", 0x123456789)), 0x123456789U);
    EXPECT_EQ(FileUtil::GetFileSize("missing"), 0U);
    EXPECT_EQ(FileUtil::GetFileSize("."), 0U);
}

TEST_F(FileUtilTest, FileNameFollowsTheLastSlash)
{
    EXPECT_EQ(FileUtil::ExtractFileName("/a/b.xml"), "b.xml");
    EXPECT_EQ(FileUtil::ExtractFileName("b.xml"), "b.xml");
    EXPECT_EQ(FileUtil::ExtractFileName("C:\\a\\b.xml"), "C:\\a\\b.xml");
    EXPECT_EQ(FileUtil::ExtractFileName("a/"), "");
    EXPECT_EQ(FileUtil::ExtractFileName(""), "");
}

TEST_F(FileUtilTest, UnixStyleHasNoBackslashes)
{
    std::string path = "C:\\a\\b/c";
    FileUtil::FormatPath2UnixStyle(path);
    EXPECT_EQ(path, "C:/a/b/c");
}

TEST_F(FileUtilTest, RealPathIsCanonical)
{
    mDir.Write("folder/file", "");
    fs::create_symlink("folder", "link");
    std::string real;
    EXPECT_TRUE(FileUtil::PathToRealPath("./link/../folder//file", real));
    EXPECT_EQ(real, mDir.Path("folder/file"));
    EXPECT_TRUE(FileUtil::PathToRealPath("link", real));
    EXPECT_EQ(real, mDir.Path("folder"));
}

TEST_F(FileUtilTest, RealPathOfNothingIsFalseAndKeepsTheText)
{
    std::string real = "kept";
    EXPECT_FALSE(FileUtil::PathToRealPath("", real));
    EXPECT_FALSE(FileUtil::PathToRealPath("missing", real));
    EXPECT_EQ(real, "kept");
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FileUtilTest, PathOf4096CharactersIsRefused)
{
    mDir.Write("f", "text");
    std::string real;
    std::string text;
    Bytes buffer;
    EXPECT_TRUE(FileUtil::PathToRealPath(LongPathTo("f", 4095), real));
    EXPECT_TRUE(FileUtil::LoadStringFromFile(LongPathTo("f", 4095), text));
    const std::string tooLong = "." + LongPathTo("f", 4095);
    ASSERT_THAT(tooLong, SizeIs(4096));
    EXPECT_FALSE(FileUtil::PathToRealPath(tooLong, real));
    EXPECT_FALSE(FileUtil::LoadStringFromFile(tooLong, text));
    EXPECT_FALSE(FileUtil::LoadBufferFromFile(tooLong, buffer));
    EXPECT_FALSE(FileUtil::LoadBufferFromNodeFile(tooLong, buffer));
}

TEST_F(FileUtilTest, CreateMakesAllParents)
{
    EXPECT_TRUE(FileUtil::ForceCreateDirectory("a/b/c"));
    EXPECT_TRUE(FileUtil::ForceCreateDirectory("d/e/"));
    EXPECT_TRUE(FileUtil::ForceCreateDirectory("f/g//", 0700));
    EXPECT_TRUE(fs::is_directory("a/b/c"));
    EXPECT_TRUE(fs::is_directory("d/e"));
    EXPECT_TRUE(fs::is_directory("f/g"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FileUtilTest, CreateOfWhatExistsIsTrue)
{
    mDir.Write("file", "");
    EXPECT_TRUE(FileUtil::ForceCreateDirectory("file"));
    EXPECT_TRUE(FileUtil::ForceCreateDirectory("file", 0700));
    EXPECT_TRUE(FileUtil::ForceCreateDirectory("/"));
    EXPECT_FALSE(fs::is_directory("file"));
}

TEST_F(FileUtilTest, CreateBelowAFileFailsAndLogs)
{
    mDir.Write("file", "");
    EXPECT_FALSE(FileUtil::ForceCreateDirectory("file/a"));
    EXPECT_FALSE(FileUtil::ForceCreateDirectory("file/b/", 0700));
    EXPECT_FALSE(FileUtil::ForceCreateDirectory(""));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:FileUtil::ForceCreateDirectory: Failed to create directory file/a.",
            "FUNc:FileUtil::ForceCreateDirectory: Failed to create directory file/b/.",
            "FUNc:FileUtil::ForceCreateDirectory: Failed to create directory ."));
}

TEST_F(FileUtilTest, RemoveDirectoryTakesAllThatItHolds)
{
    mDir.Write("folder/deep/file", "");
    mDir.Write("outside/file", "");
    fs::create_directory_symlink("../outside", "folder/link");
    EXPECT_TRUE(FileUtil::ForceRemoveDirectory("folder", false));
    EXPECT_FALSE(mDir.Has("folder"));
    EXPECT_TRUE(mDir.Has("outside/file"));
}

TEST_F(FileUtilTest, RemoveOfWhatIsMissingIsTrue)
{
    EXPECT_TRUE(FileUtil::ForceRemoveDirectory("missing", true));
    EXPECT_TRUE(FileUtil::RemoveFile("missing"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FileUtilTest, RemoveDirectoryThatStaysFailsAndLogs)
{
    mDir.MakeDir("folder");
    EXPECT_FALSE(FileUtil::ForceRemoveDirectory("folder/.", true)); // a folder can't be removed by this name
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:FileUtil::ForceRemoveDirectory: remove dir failed folder/."));
}

TEST_F(FileUtilTest, RemoveFileTakesOneFile)
{
    mDir.Write("file", "");
    EXPECT_TRUE(FileUtil::RemoveFile("file"));
    EXPECT_FALSE(mDir.Has("file"));
}

TEST_F(FileUtilTest, RemoveFileOfAFolderThatHoldsSomethingFailsAndLogs)
{
    mDir.Write("folder/file", "");
    EXPECT_FALSE(FileUtil::RemoveFile("folder"));
    EXPECT_TRUE(mDir.Has("folder/file"));
    EXPECT_THAT(
        mLog.Lines(FT::LEVEL_ERROR), ElementsAre("FUNc:FileUtil::RemoveFile: Failed to remove file folder."));
}

TEST_F(FileUtilTest, RemoveByPrefixTakesFoldersOnly)
{
    mDir.Write("parent/temp_a/temp_b/file", "");
    mDir.Write("parent/deep/temp_c/file", "");
    mDir.Write("parent/temp_file", "");
    mDir.Write("parent/other/file", "");
    mDir.Write("parent/my_temp_d/file", "");
    mDir.MakeDir("temp_outside");
    fs::create_directory_symlink("../temp_outside", "parent/temp_link");
    FileUtil::RemoveFolderBeginWith("parent", "temp_");
    EXPECT_FALSE(mDir.Has("parent/temp_a"));
    EXPECT_FALSE(mDir.Has("parent/deep/temp_c"));
    EXPECT_TRUE(mDir.Has("parent/temp_file"));
    EXPECT_TRUE(mDir.Has("parent/temp_link"));
    EXPECT_TRUE(mDir.Has("parent/other/file"));
    EXPECT_TRUE(mDir.Has("parent/my_temp_d/file"));
    EXPECT_TRUE(mDir.Has("temp_outside"));
    FileUtil::RemoveFolderBeginWith("missing", "temp_");
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FileUtilTest, CopyFollowsTheOptions)
{
    mDir.Write("file", "new");
    mDir.Write("folder/file", "old");
    EXPECT_TRUE(FileUtil::CopyFileToFolder("file", "folder", fs::copy_options::overwrite_existing));
    EXPECT_EQ(mDir.Read("folder/file"), "new");
}

TEST_F(FileUtilTest, CopyThatFailsLogs)
{
    mDir.Write("file", "new");
    mDir.Write("folder/file", "old");
    EXPECT_FALSE(FileUtil::CopyFileToFolder("missing", "folder", fs::copy_options::none));
    EXPECT_FALSE(FileUtil::CopyFileToFolder("file", "folder", fs::copy_options::none));
    EXPECT_EQ(mDir.Read("folder/file"), "old");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:FileUtil::CopyFileToFolder: Failed to copy file missing to directory folder.",
            "FUNc:FileUtil::CopyFileToFolder: Failed to copy file file to directory folder."));
}

TEST_F(FileUtilTest, ListsEverythingBelowAFolder)
{
    mDir.Write("folder/a", "");
    mDir.Write("folder/deep/b", "");
    mDir.Write("folder/back\\slash", "");
    std::vector<std::string> files = {"kept"};
    FileUtil::GetDirFiles("folder", files);
    EXPECT_THAT(files,
        UnorderedElementsAre("kept", "folder/a", "folder/deep", "folder/deep/b", "folder/back/slash"));
}

TEST_F(FileUtilTest, ListsNothingForWhatIsNoFolder)
{
    mDir.Write("file", "");
    std::vector<std::string> files;
    FileUtil::GetDirFiles("missing", files);
    FileUtil::GetDirFiles("file", files);
    FileUtil::GetDirFiles("", files);
    EXPECT_THAT(files, IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FileUtilTest, ListDoesNotFollowLinksInACircle)
{
    mDir.MakeDir("folder");
    fs::create_directory_symlink("..", "folder/up");
    std::vector<std::string> files;
    FileUtil::GetDirFiles("folder", files);
    EXPECT_THAT(files, ElementsAre("folder/up"));
}

fs::perms PermissionsOf(const std::string& path)
{
    return fs::status(path).permissions();
}

TEST_F(FileUtilTest, ModeWithoutWriteBitsTakesAllWritingAway)
{
    mDir.Write("file", "");
    fs::permissions("file", fs::perms{0666});
    EXPECT_TRUE(FileUtil::ChangeMode("file", 292));
    EXPECT_EQ(PermissionsOf("file"), fs::perms{0444});
    EXPECT_TRUE(FileUtil::ChangeMode("file", 420));
    EXPECT_EQ(PermissionsOf("file"), fs::perms{0644});
}

TEST_F(FileUtilTest, AnyWriteBitLetsTheOwnerWriteAndNoOtherBitCounts)
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

TEST_F(FileUtilTest, ModeAbove4095OrWithoutAFileIsRefused)
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

TEST_F(FileUtilTest, ModeThatTheSystemRefusesLogs)
{
    const std::string refused = "/proc/self/status";
    if (!fs::exists(refused)) {
        GTEST_SKIP() << "needs " << refused;
    }
    EXPECT_FALSE(FileUtil::ChangeMode(refused, 420));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:FileUtil::ChangeMode: Failed to change file mode /proc/self/status."));
}

TEST_F(FileUtilTest, ModeOfADirectoryReachesEverythingInIt)
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

TEST_F(FileUtilTest, UmaskIsItsArgument)
{
    EXPECT_EQ(FileUtil::Umask(18), 18);
}

TEST_F(FileUtilTest, LoadsAFileWhole)
{
    const std::string content("a\0b\r\n\xff", 6);
    mDir.Write("file", content);
    Bytes buffer = {1};
    std::string text = "former";
    EXPECT_TRUE(FileUtil::LoadBufferFromFile("file", buffer));
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), content);
    EXPECT_TRUE(FileUtil::LoadStringFromFile("file", text));
    EXPECT_EQ(text, content);
    EXPECT_TRUE(FileUtil::LoadBufferFromNodeFile("file", buffer));
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), content + content);
}

TEST_F(FileUtilTest, EmptyFileIsTrueAndEmpty)
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

TEST_F(FileUtilTest, FileOfExactlyTheLimitIsRead)
{
    Sparse("file", LIMIT);
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

TEST_F(FileUtilTest, FileOneByteOverTheLimitIsRefused)
{
    Sparse("file", LIMIT + 1);
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
TEST_F(FileUtilTest, WhatIsNoFileIsRefusedAtOnce)
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

TEST_F(FileUtilTest, UnreadableFileIsRefused)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "root reads everything";
    }
    mDir.Write("file", "secret");
    fs::permissions("file", fs::perms::none);
    std::string text;
    EXPECT_FALSE(FileUtil::LoadStringFromFile("file", text));
}

TEST_F(FileUtilTest, EndlessDeviceEndsAtTheLimit)
{
    std::string text = "former";
    Bytes buffer;
    EXPECT_FALSE(FileUtil::LoadStringFromFile("/dev/zero", text));
    EXPECT_EQ(text, "");
    EXPECT_FALSE(FileUtil::LoadBufferFromNodeFile("/dev/zero", buffer));
    EXPECT_THAT(buffer, IsEmpty());
    EXPECT_TRUE(FileUtil::LoadBufferFromFile("/dev/zero", buffer)); // its size is 0
}

TEST_F(FileUtilTest, NullDeviceIsEmpty)
{
    std::string text = "former";
    EXPECT_TRUE(FileUtil::LoadStringFromFile("/dev/null", text));
    EXPECT_EQ(text, "");
}

TEST_F(FileUtilTest, DeviceWhoseOpeningMayHaveEffectsIsRefused)
{
    std::string text;
    EXPECT_FALSE(FileUtil::LoadStringFromFile("/dev/tty", text));
    EXPECT_FALSE(FileUtil::LoadStringFromFile("/dev/ptmx", text));
}

// The file system reports the size 0 (or, in sysfs, of a page).
TEST_F(FileUtilTest, FileOfTheKernelIsReadToItsEnd)
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

TEST_F(FileUtilTest, FileThatFailsWhileItIsReadIsFalse)
{
    std::string text = "former";
    EXPECT_FALSE(FileUtil::LoadStringFromFile("/proc/self/mem", text)); // nothing is mapped at address 0
    EXPECT_EQ(text, "");
}

TEST_F(FileUtilTest, SaveReplacesOrAppends)
{
    mDir.Write("file", "former");
    EXPECT_TRUE(FileUtil::SaveStringToFile("file", " and more", false));
    EXPECT_EQ(mDir.Read("file"), "former and more");
    EXPECT_TRUE(FileUtil::SaveStringToFile("file", "new", true));
    EXPECT_EQ(mDir.Read("file"), "new");
}

TEST_F(FileUtilTest, SaveOfTheEmptyTextIsTrueAndWritesNothing)
{
    mDir.Write("file", "former");
    EXPECT_TRUE(FileUtil::SaveStringToFile("file", "", true));
    EXPECT_EQ(mDir.Read("file"), "former");
    EXPECT_TRUE(FileUtil::SaveStringToFile("missing", "", true));
    EXPECT_FALSE(mDir.Has("missing"));
}

TEST_F(FileUtilTest, SaveMakesNoFile)
{
    EXPECT_FALSE(FileUtil::SaveStringToFile("missing", "text", true));
    EXPECT_FALSE(FileUtil::SaveStringToFile("missing", "text", false));
    EXPECT_FALSE(mDir.Has("missing"));
}

TEST_F(FileUtilTest, SaveThatCannotWriteIsFalse)
{
    EXPECT_FALSE(FileUtil::SaveStringToFile(".", "text", true));
    EXPECT_FALSE(FileUtil::SaveStringToFile(Pipe("pipe"), "text", false));
    if (fs::exists("/dev/full")) {
        EXPECT_FALSE(FileUtil::SaveStringToFile("/dev/full", "text", false));
    }
}

TEST_F(FileUtilTest, ThreadTakesTheStartOfALongName)
{
    char before[16] = {};
    char name[16] = {};
    ASSERT_EQ(pthread_getname_np(pthread_self(), before, sizeof(before)), 0);
    FileUtil::SetThreadDescription("a name of more than fifteen letters");
    ASSERT_EQ(pthread_getname_np(pthread_self(), name, sizeof(name)), 0);
    FileUtil::SetThreadDescription(before);
    EXPECT_STREQ(name, "a name of more ");
}

TEST_F(FileUtilTest, WalkEndsWithTheDetectionAtTheNextEntry)
{
    mDir.Write("d/a", "");
    StopRequest request;
    const StopScope scope(&request);
    request.Start(std::nullopt);
    request.Request();
    std::vector<std::string> files;
    EXPECT_THROW(FileUtil::GetDirFiles("d", files), DetectionStopped);
    EXPECT_THAT(files, IsEmpty());
}

TEST_F(FileUtilTest, CopyHasContentAndPermissionsAndReplacesWhatIsThere)
{
    const std::string content = std::string(20 * 1024 * 1024, 'x') + "end";
    mDir.Write("a", content);
    chmod("a", 0640);
    mDir.Write("d/a", "longer than nothing");
    EXPECT_TRUE(FileUtil::CopyFileToFolder("a", "d", fs::copy_options::overwrite_existing));
    EXPECT_EQ(mDir.Read("d/a"), content);
    EXPECT_EQ(fs::status("d/a").permissions(), fs::perms(0640));
    mDir.Write("a", "");
    EXPECT_TRUE(FileUtil::CopyFileToFolder("a", "d/", fs::copy_options::overwrite_existing));
    EXPECT_EQ(mDir.Read("d/a"), "");
}

TEST_F(FileUtilTest, CopyOntoItselfFailsAndKeepsTheFile)
{
    mDir.Write("d/a", "kept");
    EXPECT_FALSE(FileUtil::CopyFileToFolder("d/a", "d", fs::copy_options::overwrite_existing));
    EXPECT_EQ(mDir.Read("d/a"), "kept");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), SizeIs(1));
}

TEST_F(FileUtilTest, CopyEndsWithTheDetectionAndLeavesNoHalfFile)
{
    mDir.Write("a", std::string(20 * 1024 * 1024, 'x'));
    mDir.MakeDir("d");
    StopRequest request;
    const StopScope scope(&request);
    request.Start(std::nullopt);
    request.StopAtQuestion(2);
    EXPECT_THROW(FileUtil::CopyFileToFolder("a", "d", fs::copy_options::overwrite_existing), DetectionStopped);
    EXPECT_TRUE(fs::is_empty("d"));
}

} // namespace
