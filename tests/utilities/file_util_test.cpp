#include "arborist/utilities/file_util.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <pthread.h>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/frame/stopping.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/utilities/odd_files.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class FileUtilTest : public testing::Test {
protected:
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
    EXPECT_EQ(FileUtil::GetFileSize(SparseFile("large", 0x123456789)), 0x123456789U);
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
    std::vector<std::uint8_t> buffer;
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

TEST_F(FileUtilTest, RemoveDirectoryTakesALinkAndLeavesItsTarget)
{
    mDir.Write("d/a", "");
    fs::create_directory_symlink("d", "link");
    EXPECT_TRUE(FileUtil::ForceRemoveDirectory("link", true));
    EXPECT_FALSE(fs::is_symlink("link"));
    EXPECT_TRUE(mDir.Has("d/a"));
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

} // namespace
