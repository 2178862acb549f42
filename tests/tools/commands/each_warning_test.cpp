#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/tools/commands/warnings_fixture.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

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

} // namespace
