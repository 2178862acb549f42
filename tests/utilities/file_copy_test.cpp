#include "arborist/utilities/file_util.h"

#include <filesystem>
#include <string>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/frame/stopping.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::SizeIs;

class FileCopyTest : public testing::Test {
protected:
    TempDir mDir;
    LogCapture mLog;
};

TEST_F(FileCopyTest, CopyFollowsTheOptions)
{
    mDir.Write("file", "new");
    mDir.Write("folder/file", "old");
    EXPECT_TRUE(FileUtil::CopyFileToFolder("file", "folder", fs::copy_options::overwrite_existing));
    EXPECT_EQ(mDir.Read("folder/file"), "new");
}

TEST_F(FileCopyTest, CopyThatFailsLogs)
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

TEST_F(FileCopyTest, CopyHasContentAndPermissionsAndReplacesWhatIsThere)
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

TEST_F(FileCopyTest, ContentThatIsOpenElsewhereIsCopiedUnderTheNameOfItsSource)
{
    mDir.Write("opened", "content");
    mDir.Write("d/a", "longer than the new content");
    EXPECT_TRUE(FileUtil::CopyContentToFolder("opened", "somewhere/a", "d"));
    EXPECT_EQ(mDir.Read("d/a"), "content");
    EXPECT_FALSE(FileUtil::CopyContentToFolder("d", "somewhere/a", "d"));
    EXPECT_FALSE(FileUtil::CopyContentToFolder("", "somewhere/a", "d"));
    EXPECT_EQ(mDir.Read("d/a"), "content");
    EXPECT_THAT(mLog.Lines(), testing::Each("FUNc:FileUtil::CopyFileToFolder: Failed to copy file somewhere/a to directory d."));
}

TEST_F(FileCopyTest, CopyOntoItselfFailsAndKeepsTheFile)
{
    mDir.Write("d/a", "kept");
    EXPECT_FALSE(FileUtil::CopyFileToFolder("d/a", "d", fs::copy_options::overwrite_existing));
    EXPECT_EQ(mDir.Read("d/a"), "kept");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), SizeIs(1));
}

TEST_F(FileCopyTest, CopyEndsWithTheDetectionAndLeavesNoHalfFile)
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

TEST_F(FileCopyTest, CopyIntoWhatIsNoFolderFollowsTheOptions)
{
    mDir.Write("a", "new");
    mDir.Write("b", "old");
    EXPECT_TRUE(FileUtil::CopyFileToFolder("a", "b", fs::copy_options::overwrite_existing));
    EXPECT_EQ(mDir.Read("b"), "new");
    EXPECT_FALSE(FileUtil::CopyFileToFolder("a", "no/b", fs::copy_options::overwrite_existing));
}

} // namespace
