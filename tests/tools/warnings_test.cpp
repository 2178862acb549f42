#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"
#include "tools/arborist/detection/shared_data.h"
#include "tools/arborist/detection/warning_list.h"

namespace {

using command::WarningList;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr char LOG[] = "b/programdata/Comms/Lumbra/workDir/0/log.db";
constexpr std::int64_t NOW = 1700000000;
const std::string ALL_ATTRIBUTES =
    R"(, "device": {"CpuName": "c", "RamSize": "8", "Resolution": "r", "BatteryCapacity": "5"})";

Xml Alarm(const std::string& beginFlag = "0")
{
    return AlarmRuleXml("alarm", {AlarmIdXml("5", "5", {Xml("BeginFlag").Attr("value", beginFlag),
        TimeXml("duration", "30", "1")})});
}

// A bean "EVENTS" whose derived table has the events of the number 5.
Xml Events(const std::string& column = "LOST")
{
    return Xml("thresholdsOrLumbraData").Attr("name", "EVENTS")
        .Child(Xml("retrieveLumbraData").Child(Xml("alarmId").Attr("Eventid_Min", "5").Attr("Eventid_Max", "5")
            .Child(ParamsXml({ParamXml("1", column, "int")}))));
}

Xml Command(const std::string& sql)
{
    const auto some = ConditionXml({SingleLogicXml(Xml("ge").Attr("type", "static").TextChild("id", "n")
        .TextChild("value", "1"))});
    return CommandRuleXml("command")
        .Child(Xml("referenceCommonPart").TextChild("commonPartName", "EVENTS"))
        .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int")})))
        .Child(AnalysisMethodXml("", {Xml("sql").Text(sql), TimeXml("duration", "30", "0"), some}));
}

class WarningsTest : public testing::Test {
protected:
    // A bundle with one tree, one event and that rule.
    void WriteBundle(const Xml& rule, const std::string& ruleName, const std::vector<Xml>& commonPart = {},
        const std::string& json = "")
    {
        RuleXml rules("Tag");
        rules.EventRule("E", {Single(ruleName)}).Rule(rule);
        if (!commonPart.empty()) {
            rules.CommonPart(commonPart);
        }
        mDir.Write("b/bundle.json", BundleJson(", \"now\": " + std::to_string(NOW) + json));
        mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Version("1").Tree("T", Or({Basic("E")})).Text());
        mDir.Write("b/rules/FaultTreeRules.xml", rules.Text());
    }

    static ProcessResult Detect(const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments = {"detect", "b", "--log-level", "none"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunArborist(arguments);
    }

    TempDir mDir;
};

TEST_F(WarningsTest, AMissingEventLogIsToldWhenAnAlarmRuleAsksForIt)
{
    WriteBundle(Alarm(), "alarm");
    EXPECT_EQ(Detect().err, "arborist: b: warning: there is no event log: rules and tables that ask for events find "
                            "none\n");
    EXPECT_THAT(Detect({"--json"}).out, HasSubstr(R"("warnings": [{"code": "event_log_missing", "message": )"));
    EXPECT_EQ(Detect({"--strict"}).status, 4);
}

TEST_F(WarningsTest, AMissingEventLogIsToldWhenADerivedTableAsksForIt)
{
    WriteBundle(Command("select 1 as n from EVENTS"), "command", {Events()}, ALL_ATTRIBUTES);
    EXPECT_THAT(Detect().err, HasSubstr("there is no event log"));
}

TEST_F(WarningsTest, ABundleWhoseRulesAskForNoEventsNeedsNoLog)
{
    WriteHotBundle(mDir, "b");
    EXPECT_THAT(Detect().err, IsEmpty());
    EXPECT_EQ(Detect({"--strict"}).status, 0);
}

TEST_F(WarningsTest, AnEventLogThatIsNoDatabaseIsToldOnceWithTheReason)
{
    WriteBundle(Alarm(), "alarm");
    mDir.Write(LOG, std::string(2000, 'x'));
    EXPECT_EQ(Detect().err, "arborist: b: warning: the event log can't be read to its end: file is not a database\n");
    EXPECT_THAT(Detect({"--json"}).out, HasSubstr(R"("code": "event_log_unreadable")"));
}

TEST_F(WarningsTest, RowsThatTheJoinsCannotSeeAreCounted)
{
    WriteBundle(Alarm(), "alarm");
    EventLogBuilder().Rows({{NOW - 5, 5, "", ""}, {NOW - 5, 5, "", ""}, {NOW - 5, 6, "", ""}})
        .Sql("delete from event_info_flow where _ID = 1")
        .Sql("update event_info set version_id = 77 where _ID > 1").WriteTo(mDir.Path(LOG));
    EXPECT_EQ(Detect().err,
        "arborist: b: warning: 1 of 3 rows of the event log can't be seen by alarm rules: no time stands under the "
        "same key\n"
        "arborist: b: warning: 2 of 3 rows of the event log can't be seen by alarm rules: no version stands under "
        "their \"version_id\"\n");
    EXPECT_THAT(Detect({"--json"}).out, HasSubstr(R"("code": "rows_unseen")"));
}

TEST_F(WarningsTest, RowsThatDerivedTablesCannotSeeAreCountedByTheirParents)
{
    WriteBundle(Command("select count(*) as n from EVENTS"), "command", {Events()}, ALL_ATTRIBUTES);
    EventLogBuilder().Rows({{NOW - 5, 5, "", ""}, {NOW - 5, 5, "", ""}})
        .Sql("update event_info_flow set event_pid = 1").WriteTo(mDir.Path(LOG));
    EXPECT_EQ(Detect().err, "arborist: b: warning: 1 of 2 rows of the event log can't be seen by derived tables: no "
                            "time names them as its \"event_pid\"\n");
}

TEST_F(WarningsTest, AnEmptyVersionNameIsToldWhereRowsCarryVersions)
{
    WriteBundle(Alarm(), "alarm");
    EventLogBuilder().Rows({{NOW - 5, 5, "4.1", ""}, {NOW - 5, 5, "", ""}}).WriteTo(mDir.Path(LOG));
    EXPECT_THAT(Detect().err, StartsWith("arborist: b: warning: 1 of 2 rows of the event log carry a version, and the "
                                         "setting \"VersionName\" is empty"));
    EXPECT_THAT(Detect({"--json"}).out, HasSubstr(R"("code": "version_name_empty")"));
    WriteBundle(Alarm(), "alarm", {}, R"(, "settings": {"VersionName": "4.1"})");
    EXPECT_THAT(Detect().err, IsEmpty());
}

TEST_F(WarningsTest, AnExtraThatIsNoJsonObjectIsCounted)
{
    const auto tested = AlarmRuleXml("alarm", {AlarmIdXml("5", "5", {TimeXml("duration", "30", "1"),
        ParamsXml({ParamXml("p", "DROP", "int")}), ConditionXml({SingleLogicXml(TestXml("gt", "p", "70"))})})
        .Attr("type", "ParamEventId")});
    WriteBundle(tested, "alarm");
    EventLogBuilder().Rows({{NOW - 5, 5, "", "[1]"}, {NOW - 5, 5, "", "{\"DROP\": }"}, {NOW - 5, 5, "", ""},
        {NOW - 5, 5, "", "{\"DROP\": 1}"}}).WriteTo(mDir.Path(LOG));
    EXPECT_EQ(Detect().err,
        "arborist: b: warning: 2 of 4 rows of the event log have an \"extra\" that is no JSON object\n");
    EXPECT_THAT(Detect({"--json"}).out, HasSubstr(R"("code": "bad_extra")"));
    EXPECT_EQ(Detect({"--strict"}).status, 4);
}

TEST_F(WarningsTest, EmptyAttributesAreToldWhereTheRuleSetHasThresholds)
{
    WriteBundle(Command("select count(*) as n from EVENTS"), "command", {Events()},
        R"(, "device": {"CpuName": "c", "Resolution": "r"})");
    EventLogBuilder().Row({NOW - 5, 5, "", ""}).WriteTo(mDir.Path(LOG));
    EXPECT_THAT(Detect().err, StartsWith("arborist: b: warning: the device has no \"RamSize\", \"BatteryCapacity\": "
                                         "the rule set's thresholds for this device are not set"));
    EXPECT_THAT(Detect({"--json"}).out, HasSubstr(R"("code": "attribute_empty")"));
}

TEST_F(WarningsTest, FailedSqlIsToldWithItsRuleAndIsTheRuleSetsFault)
{
    WriteBundle(Command("select n from NOWHERE"), "command", {Events()}, ALL_ATTRIBUTES);
    EventLogBuilder().Row({NOW - 5, 5, "", ""}).WriteTo(mDir.Path(LOG));
    EXPECT_EQ(Detect().err, "arborist: b: warning: SQL of the rule \"command\" on \"JankEventDb.db\" failed: no such "
                            "table: NOWHERE\n");
    EXPECT_THAT(Detect({"--json"}).out, HasSubstr(R"("code": "sql_failed")"));
    EXPECT_EQ(Detect().status, 0);
    EXPECT_EQ(Detect({"--strict"}).status, 3);
}

TEST_F(WarningsTest, FailedSqlOfTheSharedDataIsTold)
{
    WriteBundle(Command("select 1 as n from EVENTS"), "command", {Events("DROP")}, ALL_ATTRIBUTES);
    EventLogBuilder().Row({NOW - 5, 5, "", ""}).WriteTo(mDir.Path(LOG));
    EXPECT_THAT(Detect().err, HasSubstr("warning: SQL before the rules ran failed: near \"DROP\": syntax error\n"));
}

TEST_F(WarningsTest, AnEmptyFolderForCopiesIsToldWhenThereIsSomethingToCopy)
{
    const auto table = Xml("defDBTable").Attr("name", "D")
        .Child(Xml("dbPaths").Child(
            Xml("dbPath").Attr("decompression", "true").Attr("type", "folder").Attr("value", "found")))
        .Child(Xml("dbName").Attr("name", ".*\\.db"));
    WriteBundle(Command("select 1 as n from EVENTS"), "command", {table});
    EXPECT_THAT(Detect().err, Not(HasSubstr("AppDatabaseDir")));
    mDir.Write("b/found/a.db", "x");
    EXPECT_THAT(Detect().err, HasSubstr("warning: the setting \"AppDatabaseDir\" is empty: databases that the rule set "
                                        "names are not copied"));
    EXPECT_THAT(Detect({"--json"}).out, HasSubstr(R"("code": "app_database_dir_empty")"));
}

TEST_F(WarningsTest, UnreadableNodeFilesAreToldInOneLine)
{
    WriteHotBundle(mDir, "b");
    std::filesystem::remove("b/temperature");
    EXPECT_EQ(Detect().err, "arborist: b: warning: a node file can't be read: \"temperature\"\n");
    EXPECT_THAT(Detect({"--json"}).out, HasSubstr(R"("code": "node_unreadable")"));
    EXPECT_EQ(Detect({"--strict"}).status, 4);
}

TEST_F(WarningsTest, StrictTakesTheMostSeriousOfWarningsAndFaults)
{
    WriteCodeBundle(mDir, "b", {"info"});
    EXPECT_EQ(Detect({"--strict"}).status, 4);
    WriteHotBundle(mDir, "b");
    EXPECT_EQ(Detect({"--strict", "--fail-on-fault"}).status, 1);
    mDir.Write("b/rules/FaultTreeRules.xml", RuleXml("Other").Text());
    EXPECT_EQ(Detect({"--strict"}).status, 3);
}

TEST(WarningListTest, TellsEachWarningOnceWithItsCount)
{
    WarningList list;
    list.Add("a", "one");
    list.Add("b", "two");
    list.Add("a", "one");
    std::vector<std::string> told;
    for (const auto& warning : list.Told()) {
        told.push_back(warning.code + ": " + warning.message);
    }
    EXPECT_THAT(told, ElementsAre("a: one (2 times)", "b: two"));
}

TEST(WarningListTest, KeepsALimitedNumberOfEachCodeAndCountsTheRest)
{
    WarningList list;
    for (std::size_t i = 0; i < WarningList::LARGEST_NUMBER + 7; ++i) {
        list.Add("a", std::to_string(i));
    }
    const auto told = list.Told();
    EXPECT_EQ(told.size(), WarningList::LARGEST_NUMBER + 1);
    EXPECT_EQ(told.back().message, "and 7 more of this kind");
}

TEST_F(WarningsTest, ThresholdsOfAnotherTagOrInACommentAreNone)
{
    const auto path = mDir.Write("rules.xml", RuleXml("Tag").CommonPart({Events()}).Text());
    EXPECT_TRUE(command::HasThresholds(path, "Tag"));
    EXPECT_FALSE(command::HasThresholds(path, "Ta"));
    EXPECT_FALSE(command::HasThresholds(path, "Other"));
    EXPECT_FALSE(command::HasThresholds(mDir.Path("nowhere"), "Tag"));
    mDir.Write("rules.xml", "<RuleCommonPart><Tag><!-- <thresholdsOrLumbraData/> --></Tag></RuleCommonPart>");
    EXPECT_FALSE(command::HasThresholds(path, "Tag"));
}

} // namespace
