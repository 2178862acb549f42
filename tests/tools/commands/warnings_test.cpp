#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

constexpr char LOG[] = "b/programdata/Comms/Lumbra/workDir/0/log.db";
constexpr std::int64_t NOW = 1700000000;
const std::string ALL_ATTRIBUTES =
    R"(, "device": {"CpuName": "c", "RamSize": "8", "Resolution": "r", "BatteryCapacity": "5"})";

Xml Alarm(const std::string& beginFlag = "1")
{
    return AlarmRuleXml("alarm", {AlarmIdXml("5", "5", {TimeXml("duration", "30", "1")}).Attr("BeginFlag", beginFlag)});
}

// A bean "EVENTS" whose derived table has the events of the number 5.
Xml Events(const std::string& column = "LOST")
{
    return Xml("thresholdsOrLumbraData").Attr("name", "EVENTS")
        .Child(Xml("retrieveLumbraData").Child(Xml("alarmId").Attr("Eventid_Min", "5").Attr("Eventid_Max", "5")
            .Child(ParamsXml({ParamXml("1", column, "int")}))));
}

// The same with a threshold that depends on the device.
Xml Thresholds()
{
    return Events().Child(Xml("ThresholdParamTable").Child(ParamsXml({ParamXml("limit", "LIMIT", "int")})));
}

// Databases below "found".
Xml Databases()
{
    return Xml("defDBTable").Attr("name", "D")
        .Child(Xml("dbPaths").Child(
            Xml("dbPath").Attr("decompression", "true").Attr("type", "folder").Attr("value", "found")))
        .Child(Xml("dbName").Attr("name", ".*\\.db"));
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
public:
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

    // An alarm rule "r" with one time.
    void WriteTimedBundle(const std::string& type, const std::string& period)
    {
        WriteBundle(AlarmRuleXml("r", {AlarmIdXml("5", "5", {TimeXml(type, period, "1")})}), "r");
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

// Once for the bundle, however many rules and windows pass rows over.
TEST_F(WarningsTest, AVersionNameThatTheLogLacksIsToldOnceWhereRulesPassRowsOver)
{
    const auto rows = std::vector<LoggedRow>{{NOW - 5, 5, "4.1", ""}, {NOW - 5, 5, "", ""}, {NOW - 5, 6, "4.2", ""}};
    const auto detect = [&](const char* first, const char* last, const char* setting) {
        WriteBundle(AlarmRuleXml("alarm", {AlarmIdXml(first, last,
            {TimeXml("latest", "30", "9"), TimeXml("duration", "30", "9")})}), "alarm", {}, setting);
        EventLogBuilder().Rows(rows).WriteTo(mDir.Path(LOG));
        return Detect().err;
    };
    EXPECT_EQ(detect("5", "6", R"(, "settings": {"VersionName": "5.0"})"),
        "arborist: b: warning: 2 of 3 rows of the event log carry a version, and none of them is the setting "
        "\"VersionName\", \"5.0\": rules that count from the last update on pass them over\n");
    EXPECT_THAT(Detect({"--json"}).out, testing::AllOf(HasSubstr(R"("code": "version_name_unknown")"),
        HasSubstr(R"("verdict": "no_fault")")));
    EXPECT_THAT(detect("5", "6", R"(, "settings": {"VersionName": "4.2"})"), IsEmpty());
    EXPECT_THAT(detect("7", "7", R"(, "settings": {"VersionName": "5.0"})"), IsEmpty()) << "no row was passed over";
}

TEST_F(WarningsTest, AMemberThatIsAListIsNamed)
{
    const auto tested = AlarmRuleXml("alarm", {AlarmIdXml("5", "5", {TimeXml("duration", "30", "1"),
        ParamsXml({ParamXml("p", "DROP", "int")}), ConditionXml({SingleLogicXml(TestXml("gt", "p", "70"))})})
        .Attr("type", "param_eventid")});
    WriteBundle(tested, "alarm");
    EventLogBuilder().Rows({{NOW - 5, 5, "", R"({"DROP": [80]})"}, {NOW - 5, 5, "", R"({"DROP": [90]})"}})
        .WriteTo(mDir.Path(LOG));
    EXPECT_EQ(Detect().err, "arborist: b: warning: the member \"DROP\" of an \"extra\" in the event log can't be used: "
        "it is no text and no number\n");
    EXPECT_THAT(Detect({"--json"}).out, testing::AllOf(HasSubstr(R"("code": "bad_extra")"),
        HasSubstr(R"("verdict": "undecided")"), HasSubstr(R"("reason": "no_value")")));
}

TEST_F(WarningsTest, AnExtraThatIsNoJsonObjectIsCounted)
{
    const auto tested = AlarmRuleXml("alarm", {AlarmIdXml("5", "5", {TimeXml("duration", "30", "1"),
        ParamsXml({ParamXml("p", "DROP", "int")}), ConditionXml({SingleLogicXml(TestXml("gt", "p", "70"))})})
        .Attr("type", "param_eventid")});
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
    WriteBundle(Command("select count(*) as n from EVENTS"), "command", {Thresholds()},
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
    EXPECT_EQ(Detect().err, "arborist: b: warning: rules/FaultTreeRules.xml:9: SQL of the rule \"command\" on "
                            "\"JankEventDb.db\" failed: no such table: NOWHERE [A625]\n");
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
    WriteBundle(Command("select 1 as n from EVENTS"), "command", {Databases()});
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

/// One warning and its expected output in every place.
struct WarningCase {
    const char* code;
    std::function<void(WarningsTest&)> prepare;
    const char* message;
    int strictStatus;
    std::vector<std::string> more = {};
};
void PrintTo(const WarningCase& warning, std::ostream* out) { *out << warning.code; }
class EachWarning : public WarningsTest, public testing::WithParamInterface<WarningCase> {};

TEST_P(EachWarning, StandsInJsonAndOnStandardErrorAndCountsUnderStrict)
{
    const WarningCase& warning = GetParam();
    warning.prepare(*this);
    std::vector<std::string> more = warning.more;
    const auto text = Detect(more);
    EXPECT_EQ(text.status, 0);
    EXPECT_THAT(text.err, testing::AllOf(HasSubstr("arborist: b: warning: "), HasSubstr(warning.message)));
    EXPECT_THAT(text.out, Not(HasSubstr(warning.message)));
    more.emplace_back("--json");
    const auto json = Detect(more);
    EXPECT_THAT(json.out, HasSubstr("{\"code\": \"" + std::string(warning.code) + "\", \"message\": \""));
    EXPECT_THAT(json.err, IsEmpty());
    EXPECT_EQ(json.status, 0);
    more.emplace_back("--strict");
    EXPECT_EQ(Detect(more).status, warning.strictStatus);
}

void WriteLog(const WarningsTest& test, const std::vector<LoggedRow>& rows, const std::string& sql = "")
{
    EventLogBuilder builder;
    builder.Rows(rows);
    (sql.empty() ? builder : builder.Sql(sql)).WriteTo(test.mDir.Path(LOG));
}

const LoggedRow ROW{NOW - 5, 5, "", ""};

// The sum of a node file and 1.
Xml FormulaRule()
{
    return NodeRuleXml("formula", {NodeInfoXml("A", "current"),
        ParamsXml({ParamXml("a", "A", "int"), ParamXml("s", "S", "int")}),
        Xml("logicExpression").Attr("type", "double").Attr("ret", "S").Attr("express", "A+1"),
        ConditionXml({SingleLogicXml(TestXml("gt", "s", "70"))})});
}

std::vector<WarningCase> Warnings()
{
    return {
        {"unknown_key", [](auto& test) { WriteHotBundle(test.mDir, "b", BundleJson(R"(, "detectScen": 1)")); },
            "b/bundle.json: unknown key \"detectScen\"", 4},
        {"rules_outside",
            [](auto& test) {
                WriteHotBundle(test.mDir, "b", BundleJson(R"(, "ruleFileDir": "../rules")"));
                std::filesystem::rename("b/rules", "rules");
            },
            "the rules in \"../rules\" are not inside the bundle", 4},
        {"no_rules",
            [](auto& test) {
                WriteHotBundle(test.mDir, "b");
                test.mDir.Write("b/rules/FaultTreeRules.xml", RuleXml("Other").Text());
            },
            "no rule under the tree tag", 3},
        {"causes_left_out",
            [](auto& test) {
                WriteHotBundle(test.mDir, "b");
                const auto gate = Or(std::vector<Xml>(317, Basic("HOT")));
                test.mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Version("1").Tree("T",
                    And({Intermediate("G", gate), Intermediate("H", gate)})).Text());
            },
            "the tree \"T\" has 100489 root causes: the first 100000 are listed", 4},
        {"true_without_cause",
            [](auto& test) {
                WriteHotBundle(test.mDir, "b");
                test.mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Version("1").Tree("T", And({})).Text());
            },
            "the top event of the tree \"T\" is TRUE, and no cut set explains it", 3},
        {"sql_failed",
            [](auto& test) {
                test.WriteBundle(Command("select n from NOWHERE"), "command", {Events()}, ALL_ATTRIBUTES);
                WriteLog(test, {ROW});
            },
            "SQL of the rule \"command\" on \"JankEventDb.db\" failed: no such table: NOWHERE", 3},
        {"database_unavailable",
            [](auto& test) {
                test.WriteBundle(Command("select 1 as n"), "command", {Events()}, ALL_ATTRIBUTES);
                WriteLog(test, {ROW});
                test.mDir.MakeDir("b/programdata/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db");
            },
            "the derived database can't be opened", 4},
        {"event_log_missing", [](auto& test) { test.WriteBundle(Alarm(), "alarm"); }, "there is no event log", 4},
        {"event_log_unreadable",
            [](auto& test) {
                test.WriteBundle(Alarm(), "alarm");
                test.mDir.Write(LOG, std::string(2000, 'x'));
            },
            "the event log can't be read to its end: file is not a database", 4},
        {"rows_unseen",
            [](auto& test) {
                test.WriteBundle(Alarm(), "alarm");
                WriteLog(test, {ROW, ROW}, "delete from event_info_flow where _ID = 1");
            },
            "1 of 2 rows of the event log can't be seen by alarm rules", 4},
        {"events_after_now",
            [](auto& test) {
                test.WriteBundle(Alarm(), "alarm");
                WriteLog(test, {{NOW, 5, "", ""}, {NOW + 1, 5, "", ""}});
            },
            "1 of 2 rows of the event log are later than now, and count; --as-of hides them", 4},
        {"repair_history_lost",
            [](auto& test) {
                WriteDropsBundle(test.mDir, "b");
                RunArborist({"repair", "record", "b", "R", "--now", "2024-05-20 11:00:00", "--tz", "UTC"});
            },
            "the repair \"R\" was recorded later, at 2024-05-20 11:00:00: it counts as not recorded, and an earlier date "
            "of it is not kept",
            4, {"--as-of", "2024-05-20 10:00:00", "--tz", "UTC"}},
        {"version_name_empty",
            [](auto& test) {
                test.WriteBundle(Alarm(), "alarm");
                WriteLog(test, {{NOW - 5, 5, "4.1", ""}});
            },
            "1 of 1 row of the event log carry a version, and the setting \"VersionName\" is empty", 4},
        {"version_name_unknown",
            [](auto& test) {
                test.WriteBundle(Alarm(), "alarm", {}, R"(, "settings": {"VersionName": "5"})");
                WriteLog(test, {{NOW - 5, 5, "4.1", ""}});
            },
            "1 of 1 row of the event log carry a version, and none of them is the setting \"VersionName\", \"5\"", 4},
        {"bad_extra",
            [](auto& test) {
                test.WriteBundle(AlarmRuleXml("alarm", {AlarmIdXml("5", "5", {TimeXml("duration", "30", "1"),
                    ParamsXml({ParamXml("p", "DROP", "int")}), ConditionXml({SingleLogicXml(TestXml("gt", "p", "70"))})})
                    .Attr("type", "param_eventid")}), "alarm");
                WriteLog(test, {{NOW - 5, 5, "", "[1]"}});
            },
            "1 of 1 row of the event log have an \"extra\" that is no JSON object", 4},
        {"attribute_empty",
            [](auto& test) {
                test.WriteBundle(Command("select count(*) as n from EVENTS"), "command", {Thresholds()},
                    R"(, "device": {"CpuName": "c", "Resolution": "r"})");
                WriteLog(test, {ROW});
            },
            "the device has no \"RamSize\", \"BatteryCapacity\": the rule set's thresholds for this device are not set",
            4},
        {"app_database_dir_empty",
            [](auto& test) {
                test.WriteBundle(Command("select 1 as n from EVENTS"), "command", {Databases()});
                test.mDir.Write("b/found/a.db", "x");
            },
            "the setting \"AppDatabaseDir\" is empty", 4},
        {"node_unreadable",
            [](auto& test) {
                WriteHotBundle(test.mDir, "b");
                std::filesystem::remove("b/temperature");
            },
            "a node file can't be read: \"temperature\"", 4},
        {"negative_value",
            [](auto& test) {
                test.WriteBundle(FormulaRule(), "formula");
                test.mDir.Write("b/current", " -5\n");
            },
            "formulas take the \"-\" of a negative value for an operator: \"current\"", 4},
        {"zone_differs", [](auto& test) { WriteHotBundle(test.mDir, "b", BundleJson(R"(, "tz": "Europe/Berlin")")); },
            "local times are those of UTC, and the bundle was recorded in Europe/Berlin", 4, {"--tz", "UTC"}},
        {"stopped", [](auto& test) { WriteHotBundle(test.mDir, "b"); },
            "the detection was stopped: 1 of 1 tree is not decided", 4, {"--time-limit", "0.000001"}},
        {"no_code_runner", [](auto& test) { WriteCodeBundle(test.mDir, "b", {"info"}); },
            "the code rule \"ruleC1\" has no recorded answer, and no --code-runner was given", 4},
        {"bad_number", [](auto& test) {
                test.WriteTimedBundle("duration", "a month");
                WriteLog(test, {ROW});
            },
            "rules/FaultTreeRules.xml:6: a time of the rule \"r\" has the period \"a month\", which is no number: 30 days "
            "are taken; write the number of days, from 1 to 24855 [A410]",
            3},
        {"unknown_name", [](auto& test) {
                test.WriteTimedBundle("durations", "30");
                WriteLog(test, {ROW});
            },
            "rules/FaultTreeRules.xml:6: a time of the rule \"r\" has the unknown type \"durations\"", 3},
        {"duplicate",
            [](auto& test) {
                WriteHotBundle(test.mDir, "b");
                test.mDir.Write("b/rules/FaultTrees.xml",
                    TreeXml("Tag").Version("1").Tree("T", Or({Basic("HOT"), Basic("HOT")})).Text());
            },
            "rules/FaultTrees.xml:3: the event \"HOT\" is already in this tree", 3},
        {"dropped",
            [](auto& test) {
                WriteHotBundle(test.mDir, "b");
                test.mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Version("1").Tree("T", Or({Basic("HOT")}))
                    .Element(Xml("Tree").Attr("id", "U").Attr("type", "t").Child(Intermediate("U", Or({Basic("HOT")})))).Text());
            },
            "rules/FaultTrees.xml:4: the tree \"U\" has no \"version\"", 3},
        {"no_such_rule", [](auto& test) { test.WriteBundle(Alarm(), "alarms"); },
            "rules/FaultTreeRules.xml:3: the event \"E\" asks for the rule \"alarms\", which is not there; did you mean "
            "\"alarm\"? [A303]",
            3},
        {"unused_rule", [](auto& test) { test.WriteBundle(Alarm(), "alarms"); },
            "rules/FaultTreeRules.xml:6: no event asks for the rule \"alarm\" [A309]", 3},
        {"rule_set_error",
            [](auto& test) { test.WriteBundle(CodeRuleXml("r", "CODE", "info", ""), "r"); },
            "rules/FaultTreeRules.xml:6: the rule \"r\" names no scene", 3},
        {"code_runner",
            [](auto& test) {
                WriteCodeBundle(test.mDir, "b", {"info"});
                std::filesystem::permissions(
                    test.mDir.Write("runner", "#!/bin/sh\nexit 2\n"), std::filesystem::perms::owner_all);
            },
            "asked about \"info\": exit status 2", 4, {"--code-runner", "./runner"}},
    };
}

INSTANTIATE_TEST_SUITE_P(Table, EachWarning, testing::ValuesIn(Warnings()), [](const auto& warning) {
    return std::string(warning.param.code);
});

TEST_F(WarningsTest, AMistakeInTheRuleSetIsToldWithItsPlaceWhereverResultsAre)
{
    WriteBundle(Alarm(), "alarms");
    const std::string json = "{\"code\": \"no_such_rule\", \"message\": \"the event \\\"E\\\" asks for the rule "
        "\\\"alarms\\\", which is not there; did you mean \\\"alarm\\\"?\", \"id\": \"A303\", \"rule\": \"\", \"event\": \"E\", "
        "\"file\": \"rules/FaultTreeRules.xml\", \"line\": 3}";
    mDir.Write("list", "b\nb\nb\n");
    const std::string lines = RunArborist({"detect", "--batch", "list", "--jobs", "1"}).out;
    EXPECT_THAT(lines, MatchesRegex("([^\n]*no_such_rule[^\n]*\n){3}"));
    EXPECT_THAT(lines, HasSubstr(json));
    EXPECT_THAT(RunArborist({"explain", "--json", "b"}).out, HasSubstr(json));
    EXPECT_THAT(RunArborist({"report", "b"}).out, HasSubstr("<li>rules/FaultTreeRules.xml:3: the event &quot;E&quot; asks "
        "for the rule &quot;alarms&quot;, which is not there; did you mean &quot;alarm&quot;? "
        "<span class=\"quiet\">[no_such_rule, A303]</span></li>"));
    const auto verified = RunArborist({"bundle", "verify", "b"});
    EXPECT_THAT(verified.out, HasSubstr("\n  warning           rules/FaultTreeRules.xml:3: the event \"E\" asks for the rule "
        "\"alarms\", which is not there; did you mean \"alarm\"? [no_such_rule, A303]\n"));
    EXPECT_EQ(verified.status, 0);
    WriteLog(*this, {ROW});
    EXPECT_EQ(RunArborist({"bundle", "verify", "--strict", "b"}).status, 3);
}

// Codes of the page's table of warnings.
TEST(WarningsPageTest, ListsEveryCodeThatHasATest)
{
    std::ifstream file(std::string(ARBORIST_SOURCE_DIR) + "/docs/command.md", std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::istringstream rows(page.substr(page.find("| Warning code |")));
    std::set<std::string> listed;
    for (std::string row; std::getline(rows, row) && !row.empty() && row.front() == '|';) {
        const auto start = row.find('`');
        if (start != std::string::npos) {
            listed.insert(row.substr(start + 1, row.find('`', start + 1) - start - 1));
        }
    }
    std::set<std::string> tested{"zip_link", "not_swept"}; // see zip_bundle_test.cpp and sweep_command_test.cpp
    for (const WarningCase& warning : Warnings()) {
        tested.insert(warning.code);
    }
    EXPECT_EQ(listed, tested);
}

// A table of events without thresholds depends on no attribute.
TEST_F(WarningsTest, EmptyAttributesAreNothingToARuleSetWithoutThresholds)
{
    WriteBundle(Command("select count(*) as n from EVENTS"), "command", {Events()});
    WriteLog(*this, {ROW});
    EXPECT_THAT(Detect().err, IsEmpty());
}

TEST_F(WarningsTest, APositiveNodeAndANegativeOneWithoutAFormulaAreNothing)
{
    WriteBundle(FormulaRule(), "formula");
    mDir.Write("b/current", "5\n");
    EXPECT_EQ(Detect().err, "");
    WriteHotBundle(mDir, "b");
    mDir.Write("b/temperature", "-5\n");
    EXPECT_EQ(Detect().err, "");
    WriteHotBundle(mDir, "b", BundleJson(R"(, "tz": "UTC")"));
    EXPECT_EQ(Detect({"--tz", "UTC"}).err, "");
}

TEST_F(WarningsTest, EmptyAttributesAreToldWhereRulesAreFilteredByThem)
{
    const auto writeFiltered = [this](const std::string& json) {
        WriteBundle(NodeRuleXml("r", {NodeInfoXml("T", "temperature"), ParamsXml({ParamXml("t", "T", "int")}),
            ConditionXml({SingleLogicXml(TestXml("gt", "t", "70"))})}).Attr("blackProducts", "P").Attr("platform", "x86"),
            "r", {}, json);
        mDir.Write("b/temperature", "60\n");
    };
    writeFiltered("");
    const std::string message = ": rules for some values of it run as if they were for this device, and rules with a black "
                                "list don't\n";
    EXPECT_EQ(Detect().err, "arborist: b: warning: the device has no \"Platform\"" + message
            + "arborist: b: warning: the device has no \"Product\"" + message);
    EXPECT_THAT(Detect({"--json"}).out, HasSubstr(R"({"code": "attribute_empty", "message": "the device has no \"Platform\":)"));
    EXPECT_EQ(Detect({"--strict"}).status, 4);
    writeFiltered(R"(, "device": {"Product": "Q", "Platform": "x86"})");
    EXPECT_EQ(Detect().err, "");
}

TEST_F(WarningsTest, ARowThatAQuoteKeepsOutOfADerivedTableLeavesItsCheckOpen)
{
    WriteBundle(Command("select count(*) as n from EVENTS"), "command", {Events()}, ALL_ATTRIBUTES);
    WriteLog(*this, {{NOW - 5, 5, "", R"({"LOST": "it's"})"}});
    EXPECT_THAT(Detect({"--json"}).out, HasSubstr("\"reason\": \"table_incomplete\""));
}

TEST_F(WarningsTest, TwoOfTheEventLogAreToldTogether)
{
    WriteBundle(Alarm(), "alarm");
    WriteLog(*this, {{NOW - 5, 5, "4.1", ""}, ROW}, "update event_info set version_id = 77 where _ID = 2");
    EXPECT_THAT(Detect({"--json"}).out, testing::AllOf(HasSubstr("rows_unseen"), HasSubstr("version_name_empty")));
}

} // namespace
