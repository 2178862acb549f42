#include "diagnosis/scratch/scratch.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

TEST(ScratchFolder, IsRemovedWithItsObjectAndLinksAreNotFollowed)
{
    TempDir dir;
    dir.Write("kept/file", "x");
    std::string path;
    {
        diagnosis::Scratch scratch;
        ASSERT_FALSE(scratch.Make().has_value());
        path = scratch.Path();
        std::string deep = path;
        for (int i = 0; i < 40; ++i) {
            deep += "/folder";
        }
        fs::create_directories(deep);
        fs::create_directory_symlink(dir.Path("kept"), deep + "/link");
        for (int i = 0; i < 300; ++i) {
            dir.Write(fs::path(path).lexically_relative(dir.Path()).string() + "/file" + std::to_string(i), "");
        }
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
    }
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(dir.Has("kept/file"));
}

class ReusedScratchTest : public testing::Test {
protected:
    ReusedScratchTest() { setenv("TMPDIR", mDir.Path().c_str(), 1); }
    ~ReusedScratchTest() override { unsetenv("TMPDIR"); }

    TempDir mDir;
};

// The paths below a folder, in order, and a blank behind each.
std::string Listed(const std::string& folder)
{
    std::set<std::string> paths;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        paths.insert(entry.path().lexically_relative(folder));
    }
    std::string text;
    for (const std::string& path : paths) {
        text += path + " ";
    }
    return text;
}

TEST_F(ReusedScratchTest, NextFolderHasTheNamedFoldersAndNothingElse)
{
    const diagnosis::ReusedScratch reused({"a", "a/b", "c"});
    std::string first;
    ino_t number = 0;
    const auto numberOf = [](const std::string& path) {
        struct stat status = {};
        stat(path.c_str(), &status);
        return status.st_ino;
    };
    {
        diagnosis::Scratch scratch;
        ASSERT_FALSE(scratch.MakeOrReuse().has_value());
        first = scratch.Path();
        number = numberOf(first);
        EXPECT_EQ(Listed(first), "");
        fs::create_directories(scratch.Path("a/b/deeper"));
        fs::create_directories(scratch.Path("b")); // is not "a/b"
        std::ofstream(scratch.Path("a/b/file")).put('x');
        std::ofstream(scratch.Path("c")).put('x'); // no folder
        fs::create_directory_symlink("/", scratch.Path("a/link"));
    }
    diagnosis::Scratch scratch;
    ASSERT_FALSE(scratch.MakeOrReuse().has_value());
    EXPECT_EQ(Listed(scratch.Path()), "a a/b ");
    EXPECT_EQ(numberOf(scratch.Path()), number);
    EXPECT_NE(scratch.Path(), first);
    EXPECT_FALSE(fs::exists(first));
}

TEST_F(ReusedScratchTest, LinkInThePlaceOfANamedFolderIsRemoved)
{
    mDir.Write("outside/file", "x");
    const diagnosis::ReusedScratch reused({"a"});
    {
        diagnosis::Scratch scratch;
        ASSERT_FALSE(scratch.MakeOrReuse().has_value());
        fs::create_directory_symlink(mDir.Path("outside"), scratch.Path("a"));
    }
    diagnosis::Scratch scratch;
    ASSERT_FALSE(scratch.MakeOrReuse().has_value());
    EXPECT_EQ(Listed(scratch.Path()), "");
    EXPECT_TRUE(mDir.Has("outside/file"));
}

TEST_F(ReusedScratchTest, SecondFolderAtOneTimeIsAnother)
{
    {
        const diagnosis::ReusedScratch reused({});
        diagnosis::Scratch one;
        diagnosis::Scratch other;
        ASSERT_FALSE(one.MakeOrReuse().has_value());
        ASSERT_FALSE(other.MakeOrReuse().has_value());
        EXPECT_NE(one.Path(), other.Path());
    }
    EXPECT_EQ(Listed(mDir.Path()), ""); // nothing outlives it
}

TEST_F(ReusedScratchTest, FolderThatIsMadeStaysTheSame)
{
    const diagnosis::ReusedScratch reused({});
    diagnosis::Scratch scratch;
    ASSERT_FALSE(scratch.MakeOrReuse().has_value());
    const std::string path = scratch.Path();
    EXPECT_FALSE(scratch.MakeOrReuse().has_value());
    EXPECT_FALSE(scratch.Make().has_value());
    EXPECT_EQ(scratch.Path(), path);
}

TEST_F(ReusedScratchTest, FolderThatOutlivesTheReuseIsRemoved)
{
    {
        diagnosis::Scratch scratch;
        const diagnosis::ReusedScratch reused({});
        ASSERT_FALSE(scratch.MakeOrReuse().has_value());
    }
    EXPECT_EQ(Listed(mDir.Path()), "");
}

TEST_F(ReusedScratchTest, FolderIsMadeInTmpWhereTheEnvironmentNamesNone)
{
    setenv("TMPDIR", "", 1);
    diagnosis::Scratch scratch;
    EXPECT_FALSE(scratch.Make().has_value());
    EXPECT_EQ(scratch.Path().rfind(fs::canonical("/tmp").string() + "/arborist-", 0), 0U);
}

TEST_F(ReusedScratchTest, FolderThatCannotBeMadeIsTold)
{
    for (const auto& [folder, shown] : {std::pair("/proc", "/proc"), std::pair("/no/folder", "TMPDIR")}) {
        setenv("TMPDIR", folder, 1);
        const auto failure = diagnosis::Scratch().Make();
        ASSERT_TRUE(failure.has_value());
        EXPECT_EQ(failure->code, diagnosis::FailureCode::NO_SCRATCH);
        EXPECT_EQ(failure->message, "no folder for temporary files can be made in " + std::string(shown)
            + ": No such file or directory");
    }
}

TEST_F(ReusedScratchTest, OtherScratchFoldersAreRemovedAsEver)
{
    const diagnosis::ReusedScratch reused({});
    {
        diagnosis::Scratch scratch;
        ASSERT_FALSE(scratch.Make().has_value());
    }
    EXPECT_EQ(Listed(mDir.Path()), "");
}

} // namespace
