#include <filesystem>

#include <gmock/gmock.h>

#include "tests/support/pattern.h"
#include "tests/tools/commands/warnings_fixture.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

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

TEST_F(WarningsTest, AMistakeInTheRuleSetIsToldWithItsPlaceWhereverResultsAre)
{
    WriteBundle(Alarm(), "alarms");
    const std::string json = "{\"code\": \"no_such_rule\", \"message\": \"the event \\\"E\\\" asks for the rule "
        "\\\"alarms\\\", which is not there; did you mean \\\"alarm\\\"?\", \"id\": \"A303\", \"rule\": \"\", \"event\": \"E\", "
        "\"file\": \"rules/FaultTreeRules.xml\", \"line\": 3}";
    mDir.Write("list", "b\nb\nb\n");
    const std::string lines = RunArborist({"detect", "--batch", "list", "--jobs", "1"}).out;
    EXPECT_THAT(lines, MatchesPattern("([^\n]*no_such_rule[^\n]*\n){3}"));
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
