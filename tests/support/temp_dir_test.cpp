#include "tests/support/temp_dir.h"

#include <filesystem>

#include <gtest/gtest.h>

namespace {

TEST(TempDirTest, IsTheCurrentDirectoryAndGoesWithAllThatIsInIt)
{
    const auto before = std::filesystem::current_path();
    std::string path;
    {
        const TempDir dir;
        path = dir.Path();
        EXPECT_EQ(std::filesystem::current_path().generic_string(), path);
        dir.Write("a/b/file", "content");
        EXPECT_EQ(dir.Read("a/b/file"), "content");
        EXPECT_TRUE(dir.Has("a/b"));
        EXPECT_FALSE(dir.Has("a/c"));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(std::filesystem::current_path(), before);
}

} // namespace
