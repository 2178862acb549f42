#include <filesystem>
#include <functional>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/check.h"
#include "arborist/frame/evidence_words.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::HasSubstr;

constexpr std::int64_t NOW = 1700000000; // 2023-11-14 22:13:20 in UTC
const std::string LOG = "b/programdata/Comms/Lumbra/workDir/0/log.db";

/// A bundle whose tree "T" has the basic event "E" with the rule "r", and the expected explanation.
struct ReasonCase {
    /// The word of the reason.
    const char* name;
    /// Adds the rule "r" and everything else that the rule file needs.
    std::function<void(RuleXml&)> rules;
    const char* verdict;
    /// Lines of the text, in order.
    std::vector<std::string> lines;
    /// More members of bundle.json.
    std::string more = "";
    std::function<void(const TempDir&)> files = [](const TempDir&) {};
    /// Alternatives of the event; the rule "r" unless given.
    std::vector<Xml> alternatives = {};
    std::string detectMode = "";
    /// More options of the command.
    std::vector<std::string> options = {};
};
void PrintTo(const ReasonCase& reason, std::ostream* out) { *out << reason.name; }

Xml AlarmItem(const std::vector<Xml>& parts) { return AlarmIdXml("7", "8", parts).Attr("BeginFlag", "4"); }

std::function<void(RuleXml&)> Alarm(const std::vector<Xml>& items)
{
    return [items](RuleXml& rules) { rules.Rule(AlarmRuleXml("r", items)); };
}

std::function<void(RuleXml&)> Node(const std::string& condition, const std::string& path = "node")
{
    return [=](RuleXml& rules) {
        rules.Rule(NodeRuleXml("r", {NodeInfoXml("V", path), ParamsXml({ParamXml("v", "V", "int")}),
            ConditionXml({SingleLogicXml(TestXml("gt", "v", condition))})}));
    };
}

std::function<void(RuleXml&)> Filtered(const std::string& attribute, const std::string& text)
{
    return [=](RuleXml& rules) { rules.Rule(CodeRuleXml("r", "CODE", "", "1").Attr(attribute, text)); };
}

Xml CommonPartXml()
{
    return Xml("thresholdsOrLumbraData").Attr("name", "C")
        .Child(Xml("SystemParamTable").Child(ParamsXml({ParamXml("ram", "RAM_SIZE", "string")})))
        .Child(Xml("ThresholdParamTable").Child(ParamsXml({ParamXml("limit", "LIMIT", "int")})))
        .Child(Xml("retrieveLumbraData").Child(AlarmIdXml("7", "8", {ParamsXml({ParamXml("1", "N", "int")})})));
}

Xml SourcedTest(const std::string& type, const Xml& threshold)
{
    return SingleLogicXml(Xml("gt").Attr("type", type).TextChild("id", "n").Child(threshold));
}

Xml StaticTest(const std::string& value) { return SourcedTest("static", Xml("value").Text(value)); }

std::function<void(RuleXml&)> Command(const std::string& sql, const std::vector<Xml>& conditions,
    const std::string& type = "", const Xml& reference = Xml("referenceCommonPart").TextChild("commonPartName", "C"),
    const std::vector<Xml>& more = {})
{
    return [=](RuleXml& rules) {
        std::vector<Xml> parts{Xml("sql").Text(sql)};
        parts.push_back(Xml("BeginFlag").Attr("value", "4"));
        if (!conditions.empty()) {
            parts.push_back(ConditionXml(conditions));
        }
        parts.insert(parts.end(), more.begin(), more.end());
        rules.CommonPart({CommonPartXml()}).Rule(CommandRuleXml("r").Child(reference)
            .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int")})))
            .Child(AnalysisMethodXml(type, parts)));
    };
}

Xml ReferenceDb(const std::string& name, const std::string& number)
{
    return Xml("referenceDefDB").Attr("type", "counted").TextChild("defDBName", name).TextChild("defDBNum", number);
}

void WriteLog(const TempDir& dir)
{
    EventLogBuilder().Rows({{NOW - 100, 7, "1", "{\"N\":5}"}, {NOW - 200, 7, "2", "{\"N\":5}"},
        {NOW - 300, 8, "1", "{\"N\":1}"}, {NOW - 400, 8, "1", "{\"N\":9}"}}).WriteTo(dir.Path(LOG));
}

void WriteDamagedLog(const TempDir& dir)
{
    EventLogBuilder builder;
    for (int row = 1; row <= 2000; ++row) {
        builder.Row({NOW - row, 7, "1", std::string(100, 'x')});
    }
    builder.WriteTo(dir.Path(LOG));
    std::string file = dir.Read(LOG);
    dir.Write(LOG, file.replace(file.size() / 2, 4096, 4096, '\xFF'));
}

void WriteBundle(const TempDir& dir, const ReasonCase& reason)
{
    RuleXml rules("Tag");
    rules.EventRule("E", reason.alternatives.empty() ? std::vector<Xml>{Single("r")} : reason.alternatives);
    reason.rules(rules);
    dir.Write("b/bundle.json", BundleJson(", \"now\": " + std::to_string(NOW) + ", \"tz\": \"UTC0\"" + reason.more));
    dir.Write("b/rules/FaultTrees.xml",
        TreeXml("Tag").Version("3").Tree("T", Or({Basic("E", {"", "", "", reason.detectMode})})).Text());
    dir.Write("b/rules/FaultTreeRules.xml", rules.Text());
    reason.files(dir);
}

Evidence::Check CheckOfWord(const std::string& word)
{
    for (int number = 1; *Evidence::ReasonText(static_cast<Evidence::Reason>(number)) != '\0'; ++number) {
        if (word == Evidence::ReasonText(static_cast<Evidence::Reason>(number))) {
            return Evidence::CheckOf(static_cast<Evidence::Reason>(number));
        }
    }
    return Evidence::Check::NONE;
}

class ExplainedReason : public testing::TestWithParam<ReasonCase> {};

TEST_P(ExplainedReason, StandsInTextAndJsonWithWhatItRestsOn)
{
    const TempDir dir;
    WriteBundle(dir, GetParam());
    std::vector<std::string> arguments{"explain", "--log-level", "none", "b"};
    arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
    const auto text = RunArborist(arguments);
    EXPECT_EQ(text.status, 0) << text.err;
    std::string rest = text.out;
    for (const std::string& line : GetParam().lines) {
        ASSERT_THAT(rest, HasSubstr(line)) << text.out;
        rest = rest.substr(rest.find(line) + line.size());
    }
    arguments.emplace_back("--json");
    const auto json = RunArborist(arguments);
    EXPECT_THAT(json.out, HasSubstr("\"reason\": \"" + std::string(GetParam().name) + "\""));
    if (*GetParam().verdict != '\0') {
        EXPECT_THAT(json.out, HasSubstr("\"verdict\": \"" + std::string(GetParam().verdict) + "\", \"reason\": \""
            + GetParam().name + "\""));
    }
    const Evidence::Check check = CheckOfWord(GetParam().name);
    if (Evidence::IsOpen(check)) {
        EXPECT_THAT(json.out, HasSubstr("\"check\": \"" + std::string(Evidence::CheckText(check))
            + "\", \"reason\": \"" + GetParam().name + "\""));
        EXPECT_THAT(json.out, testing::Not(HasSubstr("\"verdict\": \"no_fault\"")));
    }
    static const Json::Value SCHEMA = ParsedJson(PageOfDocs("explain.schema.json"));
    EXPECT_THAT(Violations(SCHEMA, ParsedJson(json.out)), testing::IsEmpty());
}

TEST(ExplainedWindows, TellWhetherRowsOrWeightsWereCountedAndOfOneDay)
{
    const TempDir dir;
    const auto windows = [](const char* id) {
        return AlarmIdXml(id, id, {TimeXml("duration", "1", "9"), TimeXml("daily_peak", "1", "9")});
    };
    WriteBundle(dir, {"", Alarm({windows("7"), windows("920000001"), windows("8")}), "", {}, "", [](const TempDir& in) {
        EventLogBuilder().Rows({{NOW - 100, 7, "", ""}, {NOW - 100, 920000001, "", "{\"COUNT\":5}"}})
            .WriteTo(in.Path(LOG));
    }});
    const std::string out = RunArborist({"explain", "--log-level", "none", "b"}).out;
    std::vector<std::string> reached;
    for (auto at = out.find("reached "); at != std::string::npos; at = out.find("reached ", at + 1)) {
        reached.push_back(out.substr(at, out.find(" missing", at) - at));
    }
    EXPECT_THAT(reached, testing::ElementsAre("reached 1 of 9 rows, 8", "reached 1 of 9 rows on one day, 8",
        "reached 5 of 9 by weight, 4", "reached 5 of 9 by weight on one day, 4", "reached 0 of 9, 9",
        "reached 0 of 9, 9"));
    EXPECT_THAT(RunArborist({"explain", "--json", "--log-level", "none", "b"}).out,
        AllOf(HasSubstr("\"measure\": \"weights\""), HasSubstr("\"measure\": \"daily_rows\""),
            HasSubstr("\"measure\": \"\"")));
}

std::vector<ReasonCase> CasesBeforeTheChecker()
{
    return {
        {"interaction_event", Node("5"), "", {"FALSE    └─ E  [interaction_event]"}, "", [](const TempDir&) {}, {}, "2"},
        {"no_rule_names", [](RuleXml& rules) { rules.In("EventRules", Xml("Event").TextChild("ID", "E")); }, "",
            {"E  [no_rule_names]"}},
        {"no_event_rule", [](RuleXml& rules) { rules.In("EventRules", Xml("Event").TextChild("ID", "E")); }, "",
            {"E  [no_event_rule]"}, "",
            [](const TempDir& dir) { dir.Write("b/rules/FaultTreeRules.xml", RuleXml("Tag").Text()); }},
        {"stopped", Node("5"), "", {"open: E: not_checked, stopped"}, "", [](const TempDir&) {}, {}, "",
            {"--time-limit", "0.000001"}},
        {"no_such_rule", [](RuleXml&) {}, "SKIP", {"rule r: SKIP no_such_rule"}},
        {"filtered_black_product", Filtered("blackProducts", "P1,P2"), "SKIP",
            {"rule r (code): SKIP filtered_black_product", "the device has \"P1\", the rule excludes \"P1,P2\""},
            R"(, "device": {"Product": "P1"})"},
        {"filtered_product", Filtered("production", "P1,P2"), "SKIP",
            {"rule r (code): SKIP filtered_product", "the device has \"P3\", the rule asks for \"P1,P2\""},
            R"(, "device": {"Product": "P3"})"},
        {"filtered_scene",
            [](RuleXml& rules) { rules.Rule(CodeRuleXml("r", "CODE", "", "2,3")); }, "SKIP",
            {"rule r (code): SKIP filtered_scene", "the detection's scene is 1, the rule asks for \"2,3\""}},
        {"filtered_platform", Filtered("platform", "PL1"), "SKIP",
            {"SKIP filtered_platform", "the device has \"PL2\", the rule asks for \"PL1\""},
            R"(, "device": {"Platform": "PL2"})"},
        {"filtered_device_type", Filtered("deviceType", "laptop"), "SKIP",
            {"SKIP filtered_device_type", "the device has \"phone\", the rule asks for \"laptop\""},
            R"(, "device": {"DeviceType": "phone"})"},
        {"no_gate", Node("5"), "", {"open: G: error, no_gate", "FALSE    ├─ G (no gate)"}, "",
            [](const TempDir& dir) {
                dir.Write("b/node", "3\n");
                dir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Version("3").Tree("T",
                    Or({Intermediate("G", Xml("xorGate").Child(Basic("E"))), Basic("E")})).Text());
            }},
        {"group_ended", Node("5"), "SKIP",
            {"rule r (node): FALSE node_unreadable", "and rule s: SKIP group_ended"}, "", [](const TempDir&) {},
            {Multiple({"r", "s"})}},
    };
}

std::vector<ReasonCase> AlarmCases()
{
    const Xml test = ConditionXml({SingleLogicXml(TestXml("ge", "p", "5"))});
    const Xml params = ParamsXml({ParamXml("p", "N", "int")});
    return {
        {"no_items", Alarm({}), "FALSE", {"rule r (alarm): FALSE no_items"}},
        {"no_ids", Alarm({AlarmIdXml("7", "0", {TimeXml("latest", "1", "1")})}), "FALSE",
            {"rule r (alarm): FALSE no_ids", "ids 7-0: no_ids"}},
        {"window_absent", Alarm({AlarmItem({})}), "FALSE",
            {"rule r (alarm): FALSE window_absent", "ids 7-8, duration: window_absent",
                "ids 7-8, daily_peak: window_absent", "ids 7-8, latest: window_absent"}},
        {"window_empty", Alarm({AlarmItem({TimeXml("latest", "0", "0")})}), "FALSE",
            {"FALSE window_empty", "ids 7-8, latest: window_empty"}},
        {"window_short", Alarm({AlarmItem({TimeXml("latest", "1", "3")})}), "FALSE",
            {"FALSE window_short",
                "ids 7-8, latest since 2023-11-13 22:13:20 (period of 1 day), of which the log covers less than a day: 4 rows; reached 2 by id 7 of 3 rows, "
                    "1 missing"},
            "", WriteLog},
        {"window_reached",
            Alarm({AlarmIdXml("7", "8", {TimeXml("latest", "1", "1"), params, test}).Attr("BeginFlag", "2")
                .Attr("type", "param_eventid")}), "TRUE",
            {"rule r (alarm): TRUE window_reached",
                "ids 7-8, latest since 2023-11-13 22:13:20 (period of 1 day), this version only, "
                "of which the log covers less than a day: 2 rows, 1 of another version; reached 1 by id 7 of 1 row",
                "test N >= 5 (int): 1 of 1 row passes",
                "Root cause E", "T / E", "rule r: window_reached, ids 7-8, latest since"},
            R"(, "settings": {"VersionName": "1", "ProgramDataDir": "programdata"})", WriteLog},
        {"log_unavailable", Alarm({AlarmItem({TimeXml("latest", "1", "3")})}), "FALSE",
            {"FALSE log_unavailable", "ids 7-8, latest since 2023-11-13 22:13:20 (period of 1 day): log_unavailable"}},
        {"log_damaged", Alarm({AlarmItem({TimeXml("latest", "1", "9999")})}), "",
            {"UNDECIDED: 1 of 1 check open (1 no_data)", "open: E, rule r: no_data, log_damaged"}, "", WriteDamagedLog},
        {"negative_weight",
            Alarm({AlarmIdXml("920000001", "920000001", {TimeXml("latest", "1", "1")}).Attr("BeginFlag", "4")}), "",
            {"FAULT, 1 root cause, 1 of 1 check open (1 no_data)", "open: E, rule r: no_data, negative_weight, taken as TRUE"},
            "",
            [](const TempDir& dir) {
                EventLogBuilder().Rows({{NOW - 100, 920000001, "", "{\"COUNT\":5}"},
                    {NOW - 200, 920000001, "", "{\"COUNT\":-2}"}}).WriteTo(dir.Path(LOG));
            }},
        {"rows_unseen", Alarm({AlarmItem({TimeXml("latest", "1", "5")})}), "",
            {"UNDECIDED: 1 of 1 check open (1 no_data)", "open: E, rule r: no_data, rows_unseen"}, "",
            [](const TempDir& dir) {
                EventLogBuilder().Rows({{NOW - 100, 7, "", ""}, {NOW - 90, 7, "", ""}})
                    .Sql("update event_info set version_id = 99 where _ID = 2").WriteTo(dir.Path(LOG));
            }},
        {"version_unknown",
            Alarm({AlarmIdXml("7", "8", {TimeXml("latest", "1", "1")}).Attr("BeginFlag", "2")}), "",
            {"UNDECIDED: 1 of 1 check open (1 no_data)", "open: E, rule r: no_data, version_unknown"}, "", WriteLog},
        {"rows_after_now", Alarm({AlarmItem({TimeXml("latest", "1", "2")})}), "",
            {"FAULT, 1 root cause, 1 of 1 check open (1 no_data)",
                "open: E, rule r: no_data, rows_after_now, taken as TRUE"}, "",
            [](const TempDir& dir) {
                EventLogBuilder().Rows({{NOW - 10, 7, "", ""}, {NOW + 10, 7, "", ""}}).WriteTo(dir.Path(LOG));
            }},
        {"repair_unreadable",
            [](RuleXml& rules) {
                rules.Rule(AlarmRuleXml("r", {AlarmItem({TimeXml("latest", "1", "1")})})).Repair("E", {{"it's", ""}});
            },
            "", {"FAULT, 1 root cause, 1 of 1 check open (1 no_data)",
                "open: E, rule r: no_data, repair_unreadable (it's), taken as TRUE",
                "(period of 1 day; can't be read: it's), of which the log covers", "also repair_unreadable"},
            "", WriteLog},
        {"no_condition", Alarm({AlarmItem({TimeXml("latest", "1", "3")}).Attr("type", "param_eventid")}), "FALSE",
            {"FALSE no_condition", "ids 7-8, latest since"}, "", WriteLog},
    };
}

std::vector<ReasonCase> CommandCases()
{
    const Xml limit = SourcedTest("dynamic", Xml("commonPartParamId").Text("limit"));
    return {
        {"no_common_part", Command("select 1", {}, "", Xml("referenceCommonPart").TextChild("commonPartName", "D")),
            "FALSE", {"rule r (command): FALSE no_common_part", "the rule names \"D\""}, "", WriteLog},
        {"not_sql",
            [](RuleXml& rules) {
                rules.CommonPart({CommonPartXml()}).Rule(CommandRuleXml("r")
                    .Child(Xml("referenceCommonPart").TextChild("commonPartName", "C"))
                    .Child(Xml("AnalysisMethod").Attr("type", "LUA")));
            },
            "FALSE", {"FALSE not_sql", "the rule names \"LUA\""}, "", WriteLog},
        {"no_such_database", Command("select 1", {}, "defDBSql", ReferenceDb("D", "1")), "FALSE",
            {"FALSE no_such_database", "the rule names \"D\""}, "", WriteLog},
        {"database_unavailable", Command("select 1 as n", {StaticTest("5")}), "FALSE",
            {"FALSE database_unavailable", "derived database: database can't be opened", "select 1 as n"}, "",
            [](const TempDir& dir) {
                dir.MakeDir("b/programdata/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db");
            }},
        {"row_count", Command("select N from C", {StaticTest("5")}), "FALSE",
            {"FALSE row_count", "since 2023-10-15 22:13:20 (period of 30 days)", "JankEventDb.db: 4 rows",
                "select N from C where occurrence_time >1697408000"}, "", WriteLog},
        {"statement_failed", Command("select absent from C", {StaticTest("5")}), "FALSE",
            {"open: E, rule r: no_data, statement_failed (no such column: absent)", "FALSE statement_failed"}, "",
            WriteLog},
        {"table_incomplete", Command("select count(*) from C", {StaticTest("5")}), "",
            {"open: E, rule r: no_data, table_incomplete"}, ""},
        {"no_interval",
            Command("select 3, 0, 0 from C where rowid = 1", {StaticTest("5")}, "normalization",
                Xml("referenceCommonPart").TextChild("commonPartName", "C"),
                {Xml("normalization").Child(Xml("timeParam").Child(Xml("defineTimeProp").Attr("id", "n")))}),
            "FALSE", {"FALSE no_interval", "values are scaled between two columns, and the rule names no two"}, "",
            WriteLog},
        {"no_threshold", Command("select max(N) from C", {limit}), "FALSE",
            {"FALSE no_threshold", "n = 9", "n 9 > \"\" (int, dynamic limit): fails"}, "", WriteLog},
        {"hits_short", Command("select 1", {StaticTest("5")}, "defDBSql", ReferenceDb("D", "1")), "FALSE",
            {"FALSE hits_short", "hits in 0 of 0 databases (D), 1 needed, 1 missing"}, "",
            [](const TempDir& dir) {
                auto rules = dir.Read("b/rules/FaultTreeRules.xml");
                const auto end = rules.find("</commonPart>");
                dir.Write("b/rules/FaultTreeRules.xml",
                    rules.insert(end, Xml("defDBTable").Attr("name", "D").Attr("dbName", "x").ToText()));
            }},
        {"hits_reached", Command("select 1", {StaticTest("5")}, "defDBSql", ReferenceDb("D", "0")), "TRUE",
            {"TRUE hits_reached", "Root cause E", "rule r: hits_reached, hits in 0 of 0 databases (D), 0 needed"}, "",
            [](const TempDir& dir) {
                auto rules = dir.Read("b/rules/FaultTreeRules.xml");
                const auto end = rules.find("</commonPart>");
                dir.Write("b/rules/FaultTreeRules.xml",
                    rules.insert(end, Xml("defDBTable").Attr("name", "D").Attr("dbName", "x").ToText()));
            }},
    };
}

std::vector<ReasonCase> NodeCodeAndConditionCases()
{
    const auto node80 = [](const TempDir& dir) { dir.Write("b/node", "80\n"); };
    return {
        {"no_nodes", [](RuleXml& rules) { rules.Rule(NodeRuleXml("r", {})); }, "FALSE", {"FALSE no_nodes"}},
        {"node_unreadable", Node("5"), "FALSE",
            {"FALSE node_unreadable", "V can't be read from node", "V \"\" > 5 (int): fails"}},
        {"no_runner", [](RuleXml& rules) { rules.Rule(CodeRuleXml("r", "CODE")); }, "FALSE",
            {"rule r (code): FALSE no_runner"}},
        {"runner_answered",
            [](RuleXml& rules) {
                rules.Rule(CodeRuleXml("r", "CODE", "info")).FaultDescription("E", {"D1"}).Solution("E", {"S1"})
                    .Repair("E", {{"R1", ""}});
            },
            "TRUE",
            {"rule r (code): TRUE runner_answered", "the host answers for CODE: present",
                "descriptions D1; suggestions S1; repairs R1; info \"info\""},
            R"(, "codeAnswers": {"info": true})"},
        {"runner_failed", [](RuleXml& rules) { rules.Rule(CodeRuleXml("r", "CODE", "info")); }, "FALSE",
            {"open: E, rule r: no_data, runner_failed", "FALSE runner_failed"}, "",
            [](const TempDir& dir) {
                std::filesystem::permissions(dir.Write("runner", "#!/bin/sh\nexit 7\n"), std::filesystem::perms::all);
            },
            {}, "", {"--code-runner", "./runner"}},
        {"bad_number", Node("5"), "", {"open: E, rule r: error, bad_number"}, "",
            [](const TempDir& dir) { dir.Write("b/node", "none\n"); }},
        {"unknown_name",
            [](RuleXml& rules) {
                rules.Rule(NodeRuleXml("r", {NodeInfoXml("V", "node"), ParamsXml({ParamXml("w", "V", "int")}),
                    LogicExpressionXml("V+Volts", "V", "formula"), ConditionXml({SingleLogicXml(TestXml("gt", "w", "90"))})}));
            },
            "", {"open: E, rule r: error, unknown_name"}, "", node80},
        {"division_by_zero",
            [](RuleXml& rules) {
                rules.Rule(NodeRuleXml("r", {NodeInfoXml("V", "node"), ParamsXml({ParamXml("w", "V", "double")}),
                    LogicExpressionXml("V / (V-80)", "V", "formula"),
                    ConditionXml({SingleLogicXml(TestXml("gt", "w", "1"))})}));
            },
            "", {"UNDECIDED", "open: E, rule r: no_data, division_by_zero"}, "", node80},
        {"bad_formula",
            [](RuleXml& rules) {
                rules.Rule(NodeRuleXml("r", {NodeInfoXml("V", "node"), ParamsXml({ParamXml("w", "V", "int")}),
                    LogicExpressionXml("(V+1", "V", "formula"), ConditionXml({SingleLogicXml(TestXml("gt", "w", "90"))})}));
            },
            "", {"open: E, rule r: error, bad_formula"}, "", node80},
        {"no_condition",
            [](RuleXml& rules) {
                rules.Rule(NodeRuleXml("r", {NodeInfoXml("V", "node"), ParamsXml({ParamXml("v", "V", "int")})}));
            },
            "FALSE", {"FALSE no_condition", "V = 80 from node"}, "", node80},
        {"no_value", Node("5"), "FALSE", {"FALSE no_value", "V = \"\" from node", "V \"\" > 5 (int): fails"}, "",
            [](const TempDir& dir) { dir.Write("b/node", ""); }},
        {"condition_met",
            [](RuleXml& rules) {
                rules.Rule(NodeRuleXml("r", {NodeInfoXml("V", "node"),
                    ParamsXml({ParamXml("v", "V", "int"), ParamXml("w", "W", "double")}),
                    LogicExpressionXml("V-10-20", "W", "formula"),
                    ConditionXml({MultipleLogicXml({TestXml("gt", "w", "85"), TestXml("lt", "w", "95")})})}));
            },
            "TRUE",
            {"TRUE condition_met", "V = 80 from node", "W = V - (10 - 20) = 90.000000",
                "W 90.000000 > 85 (double): holds", "W 90.000000 < 95 (double): holds",
                "rule r: condition_met, W 90.000000 > 85 and W 90.000000 < 95: holds"},
            "", node80},
        {"condition_not_met", Node("90"), "FALSE", {"FALSE condition_not_met", "V 80 > 90 (int): fails"}, "", node80},
    };
}

std::string CaseWord(const testing::TestParamInfo<ReasonCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(BeforeTheChecker, ExplainedReason, testing::ValuesIn(CasesBeforeTheChecker()), CaseWord);
INSTANTIATE_TEST_SUITE_P(Alarm, ExplainedReason, testing::ValuesIn(AlarmCases()), CaseWord);
INSTANTIATE_TEST_SUITE_P(Command, ExplainedReason, testing::ValuesIn(CommandCases()), CaseWord);
INSTANTIATE_TEST_SUITE_P(NodeAndCode, ExplainedReason, testing::ValuesIn(NodeCodeAndConditionCases()), CaseWord);

TEST(ExplainedReasonsTest, EveryReasonHasAScenario)
{
    // Such rules, conditions or events can't come from rule files, only from records that a program creates.
    std::set<std::string> told{"no_checker", "unknown_condition", "no_event_id"};
    for (const auto& cases :
        {CasesBeforeTheChecker(), AlarmCases(), CommandCases(), NodeCodeAndConditionCases()}) {
        for (const ReasonCase& reason : cases) {
            told.insert(reason.name);
        }
    }
    using Reason = Evidence::Reason;
    // Up to the first number that has no word: reasons that are added later count, too.
    for (int reason = 1; *Evidence::ReasonText(static_cast<Reason>(reason)) != '\0'; ++reason) {
        const std::string word = Evidence::ReasonText(static_cast<Reason>(reason));
        EXPECT_EQ(told.count(word), 1U) << word;
    }
}

} // namespace
