#include "diagnosis/scratch/new_file.h"

#include <csignal>
#include <filesystem>
#include <iterator>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

TEST(NewFileDeathTest, IsGoneWhenASignalEndsTheProcess)
{
    const TempDir dir;
    dir.Write("f/old", "old");
    for (const int number : {SIGHUP, SIGINT, SIGPIPE, SIGTERM}) {
        EXPECT_EXIT({
            std::signal(number, SIG_DFL); // a test that runs in the background may have it ignored
            diagnosis::NewFile file;
            file.Make("f/old");
            dir.Write("f/" + fs::path(file.TemporaryPath()).lexically_relative("f").string(), "half");
            std::raise(number);
        }, testing::KilledBySignal(number), "");
        EXPECT_EQ(std::distance(fs::directory_iterator("f"), fs::directory_iterator()), 1);
        EXPECT_EQ(dir.Read("f/old"), "old");
    }
}

TEST(NewFile, ReplacesPlainFilesOnly)
{
    const TempDir dir;
    dir.MakeDir("folder");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const auto& [path, problem] : {std::pair("folder", "is a folder"), std::pair("pipe", "is no plain file"),
             std::pair("no/file", "can't be written: No such file or directory")}) {
        diagnosis::NewFile file;
        EXPECT_EQ(file.Make(path), problem);
    }
    diagnosis::NewFile file;
    EXPECT_EQ(file.Make("file"), std::nullopt);
    dir.Write(fs::path(file.TemporaryPath()).lexically_normal().string(), "new");
    EXPECT_EQ(file.PutInPlace(), std::nullopt);
    EXPECT_EQ(dir.Read("file"), "new");
}

TEST(NewFile, IsGoneWhereAFolderHasTakenItsPlace)
{
    const TempDir dir;
    {
        diagnosis::NewFile file;
        ASSERT_EQ(file.Make("file"), std::nullopt);
        dir.Write(fs::path(file.TemporaryPath()).lexically_normal().string(), "new");
        dir.MakeDir("file");
        EXPECT_EQ(file.PutInPlace(), "can't be put in place: Is a directory");
    }
    EXPECT_TRUE(fs::is_empty("file"));
    EXPECT_EQ(std::distance(fs::directory_iterator("."), fs::directory_iterator()), 1);
}

TEST(NewFile, FoldersAboveGoAgainUnlessTheFileIsPutInPlace)
{
    const TempDir dir;
    dir.MakeDir("there");
    {
        diagnosis::NewFile file;
        ASSERT_EQ(file.MakeWithFolders("there/new/newer/file"), std::nullopt);
        ASSERT_TRUE(dir.Has("there/new/newer"));
    }
    EXPECT_TRUE(fs::is_empty("there"));
    {
        diagnosis::NewFile file;
        ASSERT_EQ(file.MakeWithFolders("there/new/newer/file"), std::nullopt);
        dir.Write("there/new/other", "somebody else's");
    }
    EXPECT_TRUE(dir.Has("there/new/other"));
    EXPECT_FALSE(dir.Has("there/new/newer"));
    {
        diagnosis::NewFile file;
        ASSERT_EQ(file.MakeWithFolders("there/new/newer/file"), std::nullopt);
        dir.Write(fs::relative(file.TemporaryPath()).string(), "text");
        ASSERT_EQ(file.PutInPlace(), std::nullopt);
    }
    EXPECT_EQ(dir.Read("there/new/newer/file"), "text");
}

} // namespace
