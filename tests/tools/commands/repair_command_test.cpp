#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr char RECORDS[] = "programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db";

class RepairCommandTest : public testing::Test {
protected:
    RepairCommandTest() { mDir.Write("b/bundle.json", BundleJson()); }

    TempDir mDir;
};

TEST_F(RepairCommandTest, ARecordIsMadeReplacedAndListed)
{
    EXPECT_THAT(RunArborist({"repair", "list", "b"}).out, IsEmpty());
    EXPECT_EQ(RunArborist({"repair", "record", "b", "R1", "--now", "2024-05-01 10:00:00"}).out,
        "2024-05-01 10:00:00  R1\n");
    EXPECT_EQ(RunArborist({"repair", "record", "b", "R2", "--now", "1714550400", "--tz", "UTC"}).out,
        "2024-05-01 08:00:00  R2\n");
    EXPECT_EQ(RunArborist({"repair", "record", "b", "R1", "--now", "2024-06-01 10:00:00"}).status, 0);
    const auto list = RunArborist({"repair", "list", "b"});
    EXPECT_EQ(list.out, "2024-06-01 10:00:00  R1\n2024-05-01 08:00:00  R2\n");
    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(RunArborist({"repair", "list", "--json", "b"}).out,
        HasSubstr("{\"id\": \"R1\", \"date\": \"2024-06-01 10:00:00\"}\n{\"id\": \"R2\""));
    EXPECT_TRUE(mDir.Has(std::string("b/") + RECORDS));
}

TEST_F(RepairCommandTest, AnIdThatNoEventNamesIsAWarningWithTheNearest)
{
    mDir.Write("rules/FaultTrees.xml",
        TreeXml("Tag").Tree("T", Or({Basic("E", {"", "", R"({"Repairid": "CLEAN"})", ""}), Basic("F")})).Text());
    mDir.Write("rules/FaultTreeRules.xml", RuleXml("Tag").FaultDescription("E", {"REPAIR_A"})
        .Repair("E", {{"REPAIR_FAN", ""},
            {"REPAIR_B", R"({"REPAIR_B": "{\"operat\\u0069on\": \"replace\"}"})"}}).Text());
    const auto warning = [](const std::string& id) {
        const auto result = RunArborist({"repair", "record", "b", id, "--rules", "rules", "--now", "5"});
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.out, testing::EndsWith("  " + id + "\n"));
        return result.err;
    };
    for (const char* known : {"REPAIR_FAN", "REPAIR_B_replace", "CLEAN"}) {
        EXPECT_THAT(warning(known), IsEmpty()) << known;
    }
    const std::string start = "arborist: b: warning: no event of the rule set names the repair ";
    EXPECT_EQ(warning("REPAIR_FAM"), start + "\"REPAIR_FAM\"; did you mean \"REPAIR_FAN\"?\n");
    EXPECT_EQ(warning("REPAIR_B"), start + "\"REPAIR_B\"; did you mean \"REPAIR_B_replace\"?\n");
    EXPECT_EQ(warning("LUBRICATE"), start + "\"LUBRICATE\"\n");
}

TEST_F(RepairCommandTest, ARecordOfTheRealTimeIsTaken)
{
    const auto result = RunArborist({"repair", "record", "b", "R1"});
    EXPECT_THAT(result.out, testing::EndsWith("  R1\n"));
    EXPECT_EQ(result.status, 0);
}

TEST_F(RepairCommandTest, ARecordThatCannotBeMadeIsTold)
{
    mDir.Write("b/programdata", "a file where a folder must be");
    const auto result = RunArborist({"repair", "record", "b", "R1", "--log-level", "none"});
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(result.err, HasSubstr("the repair was not recorded; the library's log tells why [repair_not_recorded]"));
    EXPECT_EQ(result.status, 4);
}

TEST_F(RepairCommandTest, RecordsThatAreNoDatabaseAreTold)
{
    mDir.Write(std::string("b/") + RECORDS, "this is no database, and long enough to be seen as none by its header");
    const auto result = RunArborist({"repair", "list", "b"});
    EXPECT_THAT(result.err, HasSubstr("file is not a database [bad_repair_records]"));
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(RunArborist({"repair", "record", "b", "R1", "--log-level", "none"}).status, 4);
}

TEST_F(RepairCommandTest, ABundleThatIsNoneIsTold)
{
    EXPECT_EQ(RunArborist({"repair", "list", "nowhere"}).err, "arborist: nowhere: no such folder or zip [no_bundle]\n");
    EXPECT_EQ(RunArborist({"repair", "record", "b", ""}).status, 2);
}

} // namespace
