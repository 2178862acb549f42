#include <algorithm>
#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

class DiskWaitTest : public testing::Test {
protected:
    // How often the command does something that may wait for the disk, by the counter's letter.
    std::size_t CallsOf(char letter, const std::vector<std::string>& arguments, const std::string& input = "") const
    {
        const ProcessSetup setup{.input = input, .environment = {{"LD_PRELOAD", SYNC_COUNTER},
            {"SYNC_COUNT_FILE", mDir.Path("waits")}, {"ASAN_OPTIONS", "verify_asan_link_order=0"},
            {"TMPDIR", mDir.MakeDir("tmp")}}};
        mDir.Write("waits", "");
        EXPECT_EQ(RunArborist(arguments, setup).status, 0);
        EXPECT_TRUE(std::filesystem::is_empty("tmp"));
        const std::string calls = mDir.Read("waits");
        return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), letter));
    }

    std::size_t WaitsOf(const std::vector<std::string>& arguments) const { return CallsOf('s', arguments); }

    TempDir mDir;
};

TEST_F(DiskWaitTest, ADetectionOfABundleNeverWaitsForTheDisk)
{
    PrepareLaptop("laptop");
    EXPECT_EQ(WaitsOf({"detect", "laptop"}), 0U);
    mDir.Write("laptop/programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db", "");
    EXPECT_EQ(WaitsOf({"detect", "laptop"}), 0U);
}

// Removing a folder waits where a disk is busy.
TEST_F(DiskWaitTest, MoreBundlesRemoveNoMoreFolders)
{
    WriteDropsBundle(mDir, "b");
    const std::vector<std::string> batch = {"detect", "--batch", "-", "--jobs", "1"};
    const std::size_t ofOne = CallsOf('d', batch, "b\n");
    EXPECT_GT(ofOne, 0U);
    EXPECT_EQ(CallsOf('d', batch, "b\nb\nb\nb\n"), ofOne);
    EXPECT_EQ(CallsOf('d', {"detect", "b", "b", "b", "b"}), CallsOf('d', {"detect", "b", "b"}));
}

TEST_F(DiskWaitTest, ARepairThatIsRecordedIsOnTheDisk)
{
    WriteDropsBundle(mDir, "b");
    EXPECT_GT(WaitsOf({"repair", "record", "b", "R"}), 0U);
}

} // namespace
