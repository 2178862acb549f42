#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

class DiskWaitTest : public testing::Test {
protected:
    // The number of times that the command waits for the disk.
    std::size_t WaitsOf(const std::vector<std::string>& arguments) const
    {
        const ProcessSetup setup{.environment = {{"LD_PRELOAD", SYNC_COUNTER}, {"SYNC_COUNT_FILE", mDir.Path("waits")},
            {"ASAN_OPTIONS", "verify_asan_link_order=0"}, {"TMPDIR", mDir.Path()}}};
        mDir.Write("waits", "");
        EXPECT_EQ(RunArborist(arguments, setup).status, 0);
        return mDir.Read("waits").size();
    }

    TempDir mDir;
};

TEST_F(DiskWaitTest, ADetectionOfABundleNeverWaitsForTheDisk)
{
    PrepareLaptop("laptop");
    EXPECT_EQ(WaitsOf({"detect", "laptop"}), 0U);
    mDir.Write("laptop/programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db", "");
    EXPECT_EQ(WaitsOf({"detect", "laptop"}), 0U);
}

TEST_F(DiskWaitTest, ARepairThatIsRecordedIsOnTheDisk)
{
    WriteDropsBundle(mDir, "b");
    EXPECT_GT(WaitsOf({"repair", "record", "b", "R"}), 0U);
}

} // namespace
