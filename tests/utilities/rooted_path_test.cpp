#include "arborist/utilities/rooted_path.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "arborist/utilities/file_util.h"
#include "tests/support/random_cases.h"
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

TEST_F(RootedPathTest, FolderThatIsMissingIsLeftByItsName)
{
    mDir.Write("root/b", "1");
    EXPECT_EQ(Resolve("/not/captured/../../b"), "root/b");
}

TEST_F(RootedPathTest, RootMayBeALinkOrTheWorkingDirectory)
{
    mDir.Write("root/sys/value", "1");
    Link("link", "/sys");
    std::filesystem::create_symlink("root", mDir.Path("other"));
    EXPECT_EQ(RootedPath::Resolve("other", "/link/value"), "other/sys/value");
    EXPECT_EQ(RootedPath::Resolve(".", "root/link"), "./sys"); // whose root is the working directory
}

// Folders, files and links with few names, so that paths often meet them.
class RandomTree {
public:
    RandomTree(RandomCases& random, const std::string& root) : mRandom(random)
    {
        std::filesystem::create_directories(root);
        for (int entry = 0; entry < 12; ++entry) {
            const std::filesystem::path path = root + "/" + Names(3, "/", {"a", "b", "c"});
            std::error_code taken;
            std::filesystem::create_directories(path.parent_path(), taken);
            switch (taken ? 3 : mRandom.Below(3)) {
            case 0: std::filesystem::create_symlink(PathText(), path, taken); break;
            case 1: std::filesystem::create_directory(path, taken); break;
            case 2: std::ofstream(path).put('1'); break;
            default: break;
            }
        }
    }

    std::string PathText()
    {
        return (mRandom.OnceIn(2) ? "/" : "") + Names(5, mRandom.OnceIn(9) ? "//" : "/", {"a", "b", "c", "..", "."})
            + (mRandom.OnceIn(9) ? "/" : "");
    }

private:
    std::string Names(std::size_t most, const std::string& between, const std::vector<std::string>& names)
    {
        std::string text = mRandom.OneOf(names);
        for (std::size_t count = mRandom.Below(most); count > 0; --count) {
            text += between + mRandom.OneOf(names);
        }
        return text;
    }

    RandomCases& mRandom;
};

TEST_F(RootedPathTest, KernelAndStepsFindTheSame)
{
    RandomCases random(60);
    SCOPED_TRACE(random.GetSeed());
    for (int tree = 0; tree < random.GetCount(); ++tree) {
        const std::string root = "tree" + std::to_string(tree);
        RandomTree files(random, root);
        for (int asked = 0; asked < 60; ++asked) {
            const std::string path = files.PathText();
            const std::string resolved = RootedPath::ResolveStepByStep(root, path);
            EXPECT_EQ(RootedPath::Resolve(root, path), resolved) << path;
            const RootedPath::Target target(root, "/" + path);
            std::error_code error;
            EXPECT_EQ(std::filesystem::exists(target.Path(), error), std::filesystem::exists(resolved, error)) << path;
        }
        std::filesystem::remove_all(root);
    }
}

#if defined(__linux__)
TEST_F(RootedPathTest, TargetStaysInTheRootWhenAFolderIsReplacedByALink)
{
    mDir.Write("root/sys/value", "of the device");
    mDir.Write("outside/value", "of the machine");
    const RootedPath::Target target("root", "/sys/value");
    if (target.Path().rfind("/proc/self/fd/", 0) != 0) {
        GTEST_SKIP() << "this kernel resolves no path below a root";
    }
    std::filesystem::rename("root/sys", "root/old");
    std::filesystem::create_symlink(mDir.Path("outside"), "root/sys");
    std::string text;
    EXPECT_TRUE(FileUtil::LoadStringFromFile(target.Path(), text));
    EXPECT_EQ(text, "of the device");
    EXPECT_EQ(RootedPath::Target("root", "/sys/value").Path(), "");
}
#endif

TEST_F(RootedPathTest, TargetOfARelativePathIsBelowTheWorkingDirectory)
{
    mDir.Write("root/a", "of the device");
    mDir.Write("a", "here");
    for (const char* const path : {"a", "../a", "no/../a"}) {
        std::string text;
        EXPECT_TRUE(FileUtil::LoadStringFromFile(RootedPath::Target("root", path).Path(), text)) << path;
        EXPECT_EQ(text, "here") << path;
    }
}

TEST_F(RootedPathTest, TargetWithoutARootIsThePathItself)
{
    EXPECT_EQ(RootedPath::Target("", "/proc/../x").Path(), "/proc/../x");
    EXPECT_EQ(RootedPath::Target("root", "").Path(), "");
    EXPECT_EQ(RootedPath::Target("root", "/" + std::string(4095, 'x')).Path(), "");
}

TEST_F(RootedPathTest, WholeSystemMayBeTheRoot)
{
    mDir.Write("file", "");
    EXPECT_TRUE(std::filesystem::equivalent(RootedPath::Resolve("/", mDir.Path("file")), "file"));
    EXPECT_TRUE(std::filesystem::equivalent(RootedPath::Resolve("/", "/"), "/"));
}

TEST_F(RootedPathTest, WorkingDirectoryItselfIsAPathOnTheDevice)
{
    EXPECT_TRUE(std::filesystem::equivalent(RootedPath::OnDevice(mDir.Path(), "."), "."));
}

} // namespace
