#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/value.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

constexpr std::int64_t NOW = 1716206400; // 2024-05-20 12:00:00 in UTC
constexpr std::int64_t DAY = 86400;
const std::string EXAMPLES = std::string(ARBORIST_SOURCE_DIR) + "/examples/";

class RecordCase : public testing::Test {
protected:
    // Records a bundle into its rule set, and runs the case.
    void ExpectReplay(const std::string& bundle, const std::vector<std::string>& options = {})
    {
        const std::string file = bundle + "/rules/recorded.test.json";
        std::vector<std::string> arguments = {"test", "--record", bundle, "--output", file};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const auto recorded = RunArborist(arguments);
        EXPECT_EQ(recorded.status, 0) << recorded.err;
        EXPECT_THAT(recorded.out, IsEmpty());
        const auto result = RunArborist({"test", file});
        EXPECT_EQ(result.status, 0) << result.out << result.err;
        mCase = ParsedJson(mDir.Read(file));
        EXPECT_THAT(Violations(ParsedJson(PageOfDocs("case.schema.json")), mCase), IsEmpty());
    }

    static std::string RefusalOf(const std::string& bundle)
    {
        const auto result = RunArborist({"test", "--record", bundle});
        EXPECT_EQ(result.status, 4);
        EXPECT_THAT(result.out, IsEmpty());
        return result.err;
    }

    TempDir mDir;
    Json::Value mCase;
};

TEST_F(RecordCase, OfTheLaptopAnswersLikeTheLaptop)
{
    PrepareLaptop("laptop");
    ExpectReplay("laptop", {"--code-runner", LaptopCodeRunner()});
    EXPECT_EQ(mCase["expect"]["causes"]["LAPTOP_MEMORY"].size(), 4U);
    EXPECT_EQ(mCase["answers"]["pixel_test"], true);
    EXPECT_EQ(mCase["databases"]["/data/panel/panel_b.zip/panel_b.db"]["zones"]["rows"][1][1].asDouble(), 5.5);
    EXPECT_EQ(mCase["repairs"]["REPAIR_KEYBOARD"], "2024-05-03 09:00:00");
    // Neither the row of March, before every window, nor the bounces, before the repair.
    EXPECT_EQ(mCase["events"].size(), 24U);
    ExpectReplay("laptop", {"--now", "2025-01-01 00:00:00"});
    ExpectReplay("laptop", {"--as-of", "2024-05-14 00:00:00"});
}

TEST_F(RecordCase, LinksOfTheDeviceDoNotLeadToDatabasesOfThisMachine)
{
    PrepareLaptop("laptop");
    const std::string panel = "laptop/device/data/panel/";
    EventLogBuilder::Run(mDir.Path("panel_a.db"), "CREATE TABLE secret(a)");
    fs::create_directory(panel + "sub");
    fs::create_symlink(mDir.Path("panel_a.db"), panel + "sub/panel_a.db");
    fs::create_symlink("../../../../../" + mDir.Path("panel_a.db"), panel + "sub/panel_b.db");
    ExpectReplay("laptop");
    EXPECT_THAT(mCase["databases"].getMemberNames(),
        ElementsAre("/data/panel/panel_a.db", "/data/panel/panel_b.zip/panel_b.db"));
    EXPECT_THAT(mDir.Read("laptop/rules/recorded.test.json"), testing::Not(HasSubstr("secret")));
    fs::create_directory("laptop/device/moved");
    fs::rename(panel + "panel_a.db", "laptop/device/moved/panel_a.db");
    fs::create_symlink("/moved/panel_a.db", panel + "panel_a.db");
    ExpectReplay("laptop");
    EXPECT_TRUE(mCase["databases"].isMember("/data/panel/panel_a.db"));
}

TEST_F(RecordCase, HasOnlyTheDatabasesThatTheRulesAskedFor)
{
    PrepareLaptop("laptop");
    fs::copy("laptop/device/data/panel/panel_a.db", "laptop/device/data/panel/other.db");
    mDir.Write("laptop/device/data/panel/readme.txt", "\xFF");
    ExpectReplay("laptop");
    EXPECT_THAT(mCase["databases"].getMemberNames(),
        ElementsAre("/data/panel/panel_a.db", "/data/panel/panel_b.zip/panel_b.db"));
}

TEST_F(RecordCase, OfDatabasesHasRealNumbersThatAreReadBackAlike)
{
    PrepareLaptop("laptop");
    EventLogBuilder::Run("laptop/device/data/panel/panel_a.db", "CREATE TABLE t (a, \"b\"\"c\" TEXT);"
        "INSERT INTO t VALUES (0.1, 'x'), (1.0, NULL), (0.1 + 0.2, ''), (1e300, '\"'), (-7, '7')");
    ExpectReplay("laptop");
    const Json::Value& table = mCase["databases"]["/data/panel/panel_a.db"]["t"];
    EXPECT_EQ(table["columns"][1], "\"b\"\"c\" TEXT");
    const std::string text = mDir.Read("laptop/rules/recorded.test.json");
    EXPECT_THAT(text, HasSubstr(R"("rows": [[0.1, "x"], [1.0, null], [0.30000000000000004, ""], [1.0e+300, "\""], [-7, "7"]])"));
}

TEST_F(RecordCase, OfADatabaseWithTooManyRowsOrABlobIsRefused)
{
    PrepareLaptop("laptop");
    const std::string file = "laptop/device/data/panel/panel_a.db";
    EventLogBuilder::Run(file, "CREATE TABLE t (a); INSERT INTO t VALUES (x'00')");
    EXPECT_THAT(RefusalOf("laptop"), HasSubstr("/data/panel/panel_a.db: a value is no text and no number [not_recorded]\n"));
    EventLogBuilder::Run(file, "DELETE FROM t; WITH RECURSIVE n(i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM n "
        "WHERE i < 10000) INSERT INTO t SELECT i FROM n");
    EXPECT_THAT(RefusalOf("laptop"), HasSubstr("/data/panel/panel_a.db: the rules asked for more rows than a case holds"));
}

TEST_F(RecordCase, HasTheRepairsThatTheRulesKnowUpToItsMoment)
{
    WriteDropsBundle(mDir, "b");
    for (const char* id : {"R", "UNKNOWN"}) {
        ASSERT_EQ(RunArborist({"repair", "record", "b", id, "--now", "2024-05-18 08:00:00"}).status, 0);
    }
    EventLogBuilder().Rows({{NOW - 4 * DAY, 1001, "", ""}}).WriteTo("b" + std::string(LOG_OF_BUNDLE));
    ExpectReplay("b");
    EXPECT_THAT(mCase["repairs"].getMemberNames(), ElementsAre("R"));
    EXPECT_TRUE(mCase["events"].empty()); // from before the repair
    ExpectReplay("b", {"--as-of", "2024-05-17 00:00:00"});
    EXPECT_TRUE(mCase["repairs"].empty());
    EXPECT_EQ(mCase["events"].size(), 1U);
}

TEST_F(RecordCase, OfTheOtherExampleIsADeviceWithoutFiles)
{
    fs::copy(EXAMPLES + "linux-host", "host", fs::copy_options::recursive);
    ExpectReplay("host");
    EXPECT_TRUE(mCase["events"].isNull());
    EXPECT_EQ(mCase["expect"]["verdicts"]["LINUX_MEMORY"], "undecided");
}

TEST_F(RecordCase, OfThisMachineIsPossible)
{
    fs::copy(EXAMPLES + "linux-host", "host", fs::copy_options::recursive);
    const auto result = RunArborist({"test", "--record", "host", "--live"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_FALSE(ParsedJson(result.out)["files"]["/proc/loadavg"].isNull());
}

TEST_F(RecordCase, IsMarkedAsNotReviewed)
{
    WriteHotBundle(mDir, "b");
    ExpectReplay("b");
    EXPECT_EQ(mCase["reviewed"], false);
    EXPECT_EQ(mCase["name"], "recorded from b");
    EXPECT_EQ(mCase["note"], "recorded, not reviewed: what is expected is what the rules answered");
    EXPECT_EQ(mCase["files"]["temperature"], "80\n");
    EXPECT_EQ(RunArborist({"test", "b", "--require-reviewed"}).status, 1);
}

TEST_F(RecordCase, HasOnlyTheRowsThatTheRulesAskedFor)
{
    WriteDropsBundle(mDir, "b");
    EventLogBuilder().Rows({{NOW - 8 * DAY, 1001, "", ""}, {NOW - DAY, 1001, "", "{\"A\": 1}"}, {NOW - DAY, 1002, "", ""},
        {NOW - 2 * DAY, 1001, "v", "no json"}, {NOW - 3 * DAY, 1001, "", ""}, {NOW + DAY, 1001, "", ""}}).WriteTo("b" + std::string(LOG_OF_BUNDLE));
    ExpectReplay("b");
    EXPECT_EQ(mCase["events"].size(), 4U);
    EXPECT_EQ(mCase["events"][0]["time"], "2024-05-19 12:00:00");
    EXPECT_EQ(mCase["events"][0]["extra"]["A"], 1);
    EXPECT_EQ(mCase["events"][1]["extra"], "no json");
    EXPECT_EQ(mCase["events"][1]["version"], "v");
    EXPECT_EQ(mCase["expect"]["causes"]["T"][0], "DROPS");
}

TEST_F(RecordCase, WithMoreThanTenThousandRowsIsRefused)
{
    WriteDropsBundle(mDir, "b");
    const std::string rows = "WITH RECURSIVE n(i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM n WHERE i < 10001) ";
    EventLogBuilder().Sql(rows + "INSERT INTO event_info SELECT i, 1001, '', NULL FROM n")
        .Sql(rows + "INSERT INTO event_info_flow SELECT i, i, " + std::to_string(NOW - DAY) + " FROM n")
        .WriteTo("b" + std::string(LOG_OF_BUNDLE));
    EXPECT_THAT(RefusalOf("b"), HasSubstr("the rules asked for 10001 rows of the event log, and a case holds at most 10000; "
                                          "take a part of the log (arborist log slice) [not_recorded]\n"));
}

TEST_F(RecordCase, OfBytesThatAreNoTextIsRefused)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("b/temperature", "80\xFF");
    EXPECT_THAT(RefusalOf("b"), HasSubstr("temperature: holds bytes that are no text, which a case can't hold [not_recorded]\n"));
}

TEST_F(RecordCase, OfADamagedLogIsRefusedAsTheCaseAnswersOtherwise)
{
    WriteDropsBundle(mDir, "b");
    mDir.Write("b" + std::string(LOG_OF_BUNDLE), "no database at all, and longer than a header of one hundred bytes "
        "................................................................................");
    const auto result = RunArborist({"test", "--record", "b"});
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.status, 4);
}

TEST_F(RecordCase, OfAZipNeedsTheFolderOfTheRules)
{
    WriteHotBundle(mDir, "b");
    ASSERT_EQ(RunArborist({"bundle", "pack", "b", "--output", "b.zip"}).status, 0);
    EXPECT_THAT(RefusalOf("b.zip"), HasSubstr("b.zip: is a zip, and a case names the folder of its rule set; give the folder with --rules [not_recorded]\n"));
    const auto result = RunArborist({"test", "--record", "b.zip", "--rules", "b/rules", "--output", "z.test.json"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(ParsedJson(mDir.Read("z.test.json"))["rules"], "b/rules");
    EXPECT_EQ(RunArborist({"test", "z.test.json"}).status, 0);
}

TEST_F(RecordCase, OfABundleThatCantBeDiagnosedSaysWhy)
{
    EXPECT_THAT(RefusalOf("nowhere"), HasSubstr("nowhere: no such folder"));
    WriteHotBundle(mDir, "b");
    mDir.Write("b/rules/FaultTrees.xml", "<");
    EXPECT_EQ(RunArborist({"test", "--record", "b"}).status, 3);
}

TEST_F(RecordCase, IsAskedForAlone)
{
    WriteHotBundle(mDir, "b");
    EXPECT_EQ(RunArborist({"test", "b", "--record", "b"}).status, 2);
    EXPECT_EQ(RunArborist({"test", "b", "--now", "5"}).status, 2);
    EXPECT_EQ(RunArborist({"test", "b", "--output", "x.test.json"}).status, 2);
    const auto result = RunArborist({"test", "--record", "b", "--output", "x.json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("does not end in .test.json: x.json"));
    EXPECT_EQ(RunArborist({"test", "--record", "b", "--output", "no/x.test.json"}).status, 5);
}

} // namespace
