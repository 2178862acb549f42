#include "diagnosis/scratch/scratch.h"

#include <filesystem>

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

} // namespace
