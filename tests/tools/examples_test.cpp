#include <fstream>
#include <iterator>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/value.h>

#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string EXAMPLES = std::string(ARBORIST_SOURCE_DIR) + "/examples/";

// "TREE: CAUSE CAUSE" for each tree of the one result.
std::vector<std::string> Causes(const ProcessResult& result)
{
    std::vector<std::string> trees;
    const Json::Value report = ParsedJson(result.out);
    for (const Json::Value& tree : report["results"]) {
        std::string line = tree["treeId"].asString() + ":";
        for (const Json::Value& cause : tree["rootCauses"]) {
            line += " " + cause["id"].asString();
        }
        trees.push_back(line);
    }
    return trees;
}

class LaptopTest : public testing::Test {
protected:
    void SetUp() override
    {
        const auto prepared = RunProcess({EXAMPLES + "laptop/prepare.sh", ARBORIST_COMMAND, "laptop"});
        ASSERT_EQ(prepared.status, 0) << prepared.err;
    }

    static ProcessResult Detect(const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments = {"detect", "--json", "--log-level", "none", "--code-runner",
            EXAMPLES + "laptop/code-runner.sh"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        arguments.emplace_back("laptop");
        return RunArborist(arguments);
    }

    TempDir mDir;
};

TEST_F(LaptopTest, HasTheFaultsThatItWasRecordedWith)
{
    const auto result = Detect();
    EXPECT_THAT(Causes(result), ElementsAre("LAPTOP_POWER: BATTERY_WORN CHARGE_LOST",
        "LAPTOP_STORAGE: FLASH_LIFE_USED STORAGE_HOT READ_RETRIES",
        "LAPTOP_MEMORY: MODULE_B1_BAD PROGRAMS_KILLED MEMORY_TOO_SMALL SWAPS_OFTEN",
        "LAPTOP_DISPLAY: BACKLIGHT_DARK PIXELS_DEAD WRONG_RESOLUTION PANEL_UNEVEN PANEL_WORN_OUT", "LAPTOP_INPUT:",
        "LAPTOP_RADIO:"));
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(result.status, 0);
}

TEST_F(LaptopTest, ExplanationsTellHowManyDatabasesHit)
{
    const std::string text = RunArborist({"explain", "laptop"}).out;
    for (const char* line : {"rule panel_uneven: hits_reached, hits in 1 of 2 databases (PANEL_HALVES), 1 needed\n",
             "rule panel_worn_out: hits_reached, hits in 2 of 2 databases (PANEL_HALVES), 2 needed\n"}) {
        EXPECT_THAT(text, testing::HasSubstr(line));
    }
}

TEST_F(LaptopTest, ExplanationsTellWeightsPeaksScalingAndWhereThresholdsComeFrom)
{
    const std::string text = RunArborist({"explain", "laptop"}).out;
    for (const char* line : {"this version only: 4 rows; reached 3 by id 932001001 of 3 rows on one day\n",
             "2 rows; reached 105 of 100 by weight\n", "test DIMM = B1 (string): 2 of 3 rows pass\n",
             "LIFE = \"0x0b 0x02\" from /sys/block/mmcblk0/device/life_time\n", "scaled from 1 day to 30: seen 1 to seen 1\n", "swaps = 120, scaled from 4\n",
             "swap 5120 > 4000 (int, dynamic most_swap): holds\n", "kills 3 >= 3 (int, static): holds\n",
             "mode 1024x768 != 1920x1080 (string, systemParam resolution): holds\n"}) {
        EXPECT_THAT(text, testing::HasSubstr(line));
    }
}

TEST_F(LaptopTest, AsOfAnotherMomentTheEventsDontCount)
{
    EXPECT_THAT(Causes(Detect({"--now", "2025-01-01 00:00:00"})), ElementsAre("LAPTOP_POWER: BATTERY_WORN",
        "LAPTOP_STORAGE: STORAGE_HOT", "LAPTOP_MEMORY:", "LAPTOP_DISPLAY: PIXELS_DEAD PANEL_UNEVEN PANEL_WORN_OUT",
        "LAPTOP_INPUT:", "LAPTOP_RADIO:"));
}

TEST_F(LaptopTest, TheKeyboardIsFineOnlyBecauseItWasRepaired)
{
    mDir.Write("laptop/programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db", "");
    EXPECT_THAT(Causes(Detect()), testing::Contains("LAPTOP_INPUT: KEYS_BOUNCE"));
}

TEST_F(LaptopTest, ThresholdsFollowTheMemorySize)
{
    auto json = mDir.Read("laptop/bundle.json");
    json.replace(json.find("\"RamSize\": \"8\""), 14, "\"RamSize\": \"32\"");
    mDir.Write("laptop/bundle.json", json);
    EXPECT_THAT(Causes(Detect()),
        testing::Contains("LAPTOP_MEMORY: MODULE_B1_BAD PROGRAMS_KILLED SWAPS_OFTEN"));
}

TEST_F(LaptopTest, QueriesKnowItsCodes)
{
    EXPECT_EQ(RunArborist({"query", "laptop", "KEYBOARD_TEST"}).out, "laptop: KEYBOARD_TEST\n"
                                                                    "  would run    yes\n"
                                                                    "  description  DESC_KEYBOARD_DEAD\n"
                                                                    "  suggestion   SUGGEST_KEYBOARD_DEAD\n"
                                                                    "  repair       REPAIR_KEYBOARD\n");
}

class LinuxHostTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(RunProcess({"cp", "-r", EXAMPLES + "linux-host", "host"}).status, 0); }

    /// Runs the rule set on files that the test writes below "root" instead of this machine's.
    ProcessResult DetectRecorded() const
    {
        mDir.Write("host/bundle.json", BundleJson(R"(, "settings": {"DeviceRootDir": "root"})"));
        auto json = mDir.Read("host/bundle.json");
        json.replace(json.find("\"Tag\""), 5, "\"LinuxHost\"");
        mDir.Write("host/bundle.json", json);
        return RunArborist({"detect", "--json", "--log-level", "none", "host"});
    }

    void File(const std::string& path, const std::string& content) const { mDir.Write("host/root" + path, content); }

    TempDir mDir;
};

TEST_F(LinuxHostTest, RunsOnThisMachine)
{
    const auto result = RunArborist({"detect", "--json", "--tree", "--log-level", "none", "host"});
    const Json::Value report = ParsedJson(result.out);
    EXPECT_TRUE(report["ok"].asBool());
    for (const Json::Value& warning : report["warnings"]) {
        EXPECT_EQ(warning["code"], "node_unreadable"); // no machine has all of the files
    }
    EXPECT_EQ(report["results"].size(), 3U);
    EXPECT_EQ(result.status, 0);
}

TEST_F(LinuxHostTest, HasAtLeastFifteenBasicEvents)
{
    const auto result = RunArborist({"detect", "--json", "--tree", "--log-level", "none", "host"});
    std::size_t basicEvents = 0;
    const std::string word = "\"kind\": \"basic\"";
    for (auto at = result.out.find(word); at != std::string::npos; at = result.out.find(word, at + 1)) {
        ++basicEvents;
    }
    EXPECT_GE(basicEvents, 15U);
}

TEST_F(LinuxHostTest, MissingFilesDontFire)
{
    EXPECT_THAT(Causes(DetectRecorded()), ElementsAre("LINUX_MEMORY:", "LINUX_LIMITS:", "LINUX_HARDWARE:"));
}

TEST_F(LinuxHostTest, FilesWithFaultsFire)
{
    File("/sys/fs/cgroup/memory.current", "950\n");
    File("/sys/fs/cgroup/memory.max", "1000\n");
    File("/proc/sys/vm/swappiness", "180\n");
    File("/proc/sys/vm/min_free_kbytes", "1024\n");
    File("/proc/sys/vm/overcommit_memory", "1\n");
    File("/proc/sys/vm/dirty_ratio", "60\n");
    File("/proc/sys/fs/file-nr", "990\t0\t1000\n");
    File("/proc/sys/fs/file-max", "1000\n");
    File("/proc/loadavg", "9.50 1.00 0.50 1/97 23545\n");
    File("/sys/class/thermal/thermal_zone0/temp", "90000\n");
    File("/sys/class/power_supply/BAT0/capacity", "7\n");
    File("/sys/class/power_supply/BAT0/charge_full", "2900000\n");
    File("/sys/class/power_supply/BAT0/charge_full_design", "5000000\n");
    EXPECT_THAT(Causes(DetectRecorded()),
        ElementsAre("LINUX_MEMORY: CONTAINER_MEMORY_FULL RESERVE_TOO_SMALL OVERCOMMIT_ALWAYS",
            "LINUX_LIMITS: FILES_NEAR_LIMIT", "LINUX_HARDWARE: ZONE_HOT BATTERY_WORN"));
}

TEST_F(LinuxHostTest, AControlGroupWithoutLimitDoesNotFire)
{
    File("/sys/fs/cgroup/memory.current", "950\n");
    File("/sys/fs/cgroup/memory.max", "max\n");
    EXPECT_THAT(Causes(DetectRecorded()), testing::Contains("LINUX_MEMORY:"));
}

} // namespace
