#include "arborist/utilities/rooted_path.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace {

class RootedPathTest : public testing::Test {
protected:
    void Link(const std::string& name, const std::string& target) const
    {
        std::filesystem::create_directories(std::filesystem::path(mDir.Path("root/" + name)).parent_path());
        std::filesystem::create_symlink(target, mDir.Path("root/" + name));
    }

    static std::string Resolve(const std::string& path) { return RootedPath::Resolve("root", path); }

    TempDir mDir;
};

TEST_F(RootedPathTest, PathWithoutLinksStandsBelowTheRoot)
{
    mDir.Write("root/sys/value", "1");
    EXPECT_EQ(Resolve("/sys/value"), "root/sys/value");
    EXPECT_EQ(Resolve("//sys/./value/"), "root/sys/value");
    EXPECT_EQ(Resolve("/no/such"), "root/no/such");
    EXPECT_EQ(Resolve("/"), "root/");
}

TEST_F(RootedPathTest, ParentElementsEndAtTheRoot)
{
    EXPECT_EQ(Resolve("/../../etc/hostname"), "root/etc/hostname");
    EXPECT_EQ(Resolve("/a/../../b"), "root/b");
    EXPECT_EQ(Resolve("/a/b..c"), "root/a/b..c");
    EXPECT_EQ(Resolve("/.."), "root/");
}

TEST_F(RootedPathTest, AbsoluteLinkStartsAgainAtTheRoot)
{
    Link("data/hostname", "/etc/hostname");
    EXPECT_EQ(Resolve("/data/hostname"), "root/etc/hostname");
    Link("machine", "/");
    EXPECT_EQ(Resolve("/machine/etc/passwd"), "root/etc/passwd");
}

TEST_F(RootedPathTest, RelativeLinkNeverClimbsAboveTheRoot)
{
    Link("sys/class/BAT0", "../devices/BAT0");
    EXPECT_EQ(Resolve("/sys/class/BAT0/charge"), "root/sys/devices/BAT0/charge");
    Link("out", "../../../../etc");
    EXPECT_EQ(Resolve("/out/passwd"), "root/etc/passwd");
    // ".." behind a link means the parent of its target.
    EXPECT_EQ(Resolve("/sys/class/BAT0/../other"), "root/sys/devices/other");
}

TEST_F(RootedPathTest, LinksToLinksAreFollowedUpToTheLimitOfTheKernel)
{
    mDir.Write("root/end", "1");
    Link("l1", "end");
    for (int link = 2; link <= 41; ++link) {
        Link("l" + std::to_string(link), "l" + std::to_string(link - 1));
    }
    EXPECT_EQ(Resolve("/l40"), "root/end");
    EXPECT_EQ(Resolve("/l41"), "");
}

TEST_F(RootedPathTest, LoopAndOverlongPathGiveNothing)
{
    Link("loop", "loop");
    EXPECT_EQ(Resolve("/loop/x"), "");
    EXPECT_EQ(Resolve("/" + std::string(4095, 'x')), "");
}

} // namespace
