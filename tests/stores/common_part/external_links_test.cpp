#include <cstdarg>
#include <filesystem>
#include <functional>
#include <memory>
#include <utility>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/stores/common_part/external_databases_fixture.h"
#include "tests/support/zip_file.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

using ExternalLinksTest = ExternalDatabasesFixture;

TEST_F(ExternalLinksTest, DirectoryIsLookedUpOnTheCapturedDevice)
{
    MakeDb("captured/data/app.db");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("captured"));
    const auto bean = TableBeanOf("B", {"/data"}, ".*\\.db");
    Run(bean);
    EXPECT_THAT(Below(bean->GetCopyDbFileList()), ElementsAre("copies/app.db"));
}

TEST_F(ExternalLinksTest, LettersAboveTheRootOfTheDeviceMakeNoArchive)
{
    MakeDb("unzipped/data/a.db");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("unzipped"));
    const auto bean = TableBeanOf("B", {"/data"}, ".*\\.db", {});
    Run(bean);
    EXPECT_THAT(Below(bean->GetCopyDbFileList()), ElementsAre("copies/a.db"));
}

TEST_F(ExternalLinksTest, PatternIsHeldAgainstThePathBelowTheRootOfTheDevice)
{
    MakeDb("device/data/a.db");
    MakeDb("device/other/b.db");
    fs::create_directory_symlink("/other", mDir.Path("device/data/link"));
    fs::create_directory_symlink(mDir.Path("device"), mDir.Path("root"));
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("root"));
    const auto onDevice = TableBeanOf("B", {"/data"}, "/data/[a-z]\\.db", {});
    Run(onDevice);
    EXPECT_THAT(Below(onDevice->GetCopyDbFileList()), ElementsAre("copies/a.db"));
    const auto behindLink = TableBeanOf("B", {"/data"}, "/other/b\\.db", {});
    Run(behindLink);
    EXPECT_THAT(Below(behindLink->GetCopyDbFileList()), ElementsAre("copies/b.db"));
}

TEST_F(ExternalLinksTest, LinksOfACapturedDeviceNeverLeadToThisMachine)
{
    MakeDb("elsewhere/a.db");
    fs::create_directories(mDir.Path("device/data"));
    fs::create_directory_symlink(mDir.Path("elsewhere"), mDir.Path("device/data/link"));
    fs::create_symlink(mDir.Path("elsewhere/a.db"), mDir.Path("device/data/b.db"));
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
    const auto bean = TableBeanOf("B", {"/data"}, ".*\\.db", {});
    Run(bean);
    EXPECT_THAT(bean->GetCopyDbFileList(), IsEmpty());
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "");
    const auto live = TableBeanOf("B", {mDir.Path("device/data")}, ".*\\.db", {});
    Run(live);
    EXPECT_THAT(Below(live->GetCopyDbFileList()), ElementsAre("copies/a.db", "copies/a.db"));
}

// Links of all kinds at every place of the way: the path in the rule set, its middle, a folder below it, a file.
TEST_F(ExternalLinksTest, LinksInTheMiddleOfAWayNeverLeadToThisMachine)
{
    const std::string outside = MakeDb("elsewhere/data/a.db");
    const std::string inside = MakeDb("device/real/data/a.db", "create table own(a)");
    WriteZip(mDir.Write("elsewhere/data/b.zip", ""), {{"b.db", outside}});
    const std::string climbing = "../../../../../../../../../.." + mDir.Path("elsewhere");
    int number = 0;
    for (const std::string& target : {mDir.Path("elsewhere"), climbing, std::string("/chain")}) {
        const std::string name = "link" + std::to_string(number++);
        fs::create_directory_symlink(target, mDir.Path("device/" + name));
        fs::create_directory_symlink(target, mDir.Path("device/real/" + name));
        fs::remove(mDir.Path("device/chain"));
        fs::create_directory_symlink(mDir.Path("elsewhere"), mDir.Path("device/chain"));
        mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
        for (const std::string& path : {"/" + name + "/data", "/real/" + name + "/data", "/" + name, "/real/" + name}) {
            const auto bean = TableBeanOf("B", {path}, ".*\\.(db|zip)", {});
            Run(bean);
            EXPECT_THAT(bean->GetCopyDbFileList(), IsEmpty()) << path << " -> " << target;
        }
        const auto below = TableBeanOf("B", {"/real"}, ".*\\.(db|zip)", {});
        Run(below);
        EXPECT_THAT(Below(below->GetCopyDbFileList()), testing::Each("copies/a.db"));
        EXPECT_EQ(mDir.Read("copies/a.db"), inside);
    }
}

// Runs something once, at the first line of the log that ends in a text.
class OnceAtALine : public FT::ILogger {
public:
    OnceAtALine(std::string end, std::function<void()> action) : mEnd(std::move(end)), mAction(std::move(action)) {}

    void Print(unsigned int, const std::string& format, va_list) override
    {
        if (mAction && format.size() >= mEnd.size() && format.compare(format.size() - mEnd.size(), mEnd.size(), mEnd) == 0) {
            std::exchange(mAction, nullptr)();
        }
    }

private:
    std::string mEnd;
    std::function<void()> mAction;
};

#if defined(__linux__)
// Each file below "sub" is listed twice, so that one follows the broken archive in whatever order a folder is read.
TEST_F(ExternalLinksTest, FolderThatIsReplacedByALinkAfterTheSearchLeadsNowhere)
{
    const std::string outside = MakeDb("elsewhere/a.db");
    WriteZip(mDir.Write("elsewhere/c.zip", ""), {{"c.db", outside}});
    const std::string inside = MakeDb("device/data/sub/a.db", "create table own(a)");
    mDir.Write("device/data/sub/b.zip", "no archive");
    WriteZip(mDir.Write("device/data/sub/c.zip", ""), {{"c.db", inside}});
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
    bool isReplaced = false;
    FT::Log::GetInstance().SetUserLogger(std::make_unique<OnceAtALine>("unZip file fail.", [this, &isReplaced] {
        fs::rename("device/data/sub", "device/data/old");
        fs::create_directory_symlink(mDir.Path("elsewhere"), mDir.Path("device/data/sub"));
        isReplaced = true;
    }));
    const auto bean = TableBeanOf("B", {"/data"}, ".*(db|zip)", {});
    Run(bean);
    ASSERT_TRUE(isReplaced);
    for (const char* copy : {"copies/a.db", "copies/c.db"}) {
        EXPECT_TRUE(!mDir.Has(copy) || mDir.Read(copy) == inside) << copy;
    }
}
#endif

TEST_F(ExternalLinksTest, LinkInTheTargetDirectoryIsReplacedAndNotFollowed)
{
    const std::string before = MakeDb("device/a.db");
    mDir.MakeDir("copies");
    fs::create_symlink(mDir.Path("device/a.db"), mDir.Path("copies/a.db"));
    EXPECT_THAT(Copy(".*\\.db", {"create table made(b)"}), ElementsAre("copies/a.db"));
    EXPECT_EQ(mDir.Read("device/a.db"), before);
    EXPECT_FALSE(fs::is_symlink(mDir.Path("copies/a.db")));
}

TEST_F(ExternalLinksTest, DanglingLinkIsNotListed)
{
    mDir.MakeDir("device");
    fs::create_symlink(mDir.Path("gone"), mDir.Path("device/a.db"));
    EXPECT_THAT(Copy(".*\\.db"), IsEmpty());
}

} // namespace
