#include "tests/tools/command_bundle.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/support/xml_builder.h"
#include "tests/tools/input_guard.h"

namespace {

std::vector<std::string> ValuesOf(const std::map<std::string, std::string>& environment)
{
    std::vector<std::string> values;
    for (const auto& [name, value] : environment) {
        values.push_back(value);
    }
    return values;
}

// The values that follow each key, of characters of `kind` and with one of `needed`, replaced by `value`.
std::string Replaced(
    const std::string& lines, std::string_view key, const char* kind, const char* needed, const char* value)
{
    std::string same;
    std::size_t copied = 0;
    for (std::size_t at = lines.find(key); at != std::string::npos; at = lines.find(key, copied)) {
        const std::size_t start = at + key.size();
        const std::size_t end = std::min(lines.size(), lines.find_first_not_of(kind, start));
        const std::string found = lines.substr(start, end - start);
        same += lines.substr(copied, start - copied);
        same += found.find_first_of(needed) == std::string::npos ? found : value;
        copied = end;
    }
    return same + lines.substr(copied);
}

} // namespace

ProcessResult RunArborist(std::vector<std::string> arguments, const ProcessSetup& setup)
{
    const InputGuard inputs(arguments, ValuesOf(setup.environment));
    arguments.insert(arguments.begin(), ARBORIST_COMMAND);
    return RunProcess(arguments, setup);
}

ProcessResult RunArboristOnTerminal(std::vector<std::string> arguments, const ProcessSetup& setup)
{
    const InputGuard inputs(arguments, ValuesOf(setup.environment));
    arguments.insert(arguments.begin(), ARBORIST_COMMAND);
    return RunOnTerminal(arguments, setup);
}

ProcessResult RunScript(const std::string& script, const ProcessSetup& setup)
{
    const InputGuard inputs({script}, ValuesOf(setup.environment));
    return RunProcess({"sh", "-c", script}, setup);
}

std::string WithoutSeconds(const std::string& lines)
{
    // Moments of evidence are whole seconds, and stay.
    return Replaced(lines, "\"seconds\": ", "0123456789.", ".", "0");
}

std::string WithoutTimes(const std::string& lines)
{
    return Replaced(WithoutSeconds(lines), "\"now\": \"", "0123456789-: ", "-", "");
}

std::string BundleJson(const std::string& more)
{
    return R"({"detectScene": 1, "treeTag": "Tag")" + more + "}";
}

void WriteHotBundle(const TempDir& dir, const std::string& name, const std::string& json)
{
    const std::string extra = R"({"R1": "{\"operat\u0069on\": \"clean\"}"})";
    const auto isHot = ConditionXml({SingleLogicXml(TestXml("gt", "t", "70"))});
    const auto rule = NodeRuleXml("hot",
        {NodeInfoXml("T", "temperature"), ParamsXml({ParamXml("t", "T", "int")}), isHot});
    dir.Write(name + "/bundle.json", json);
    dir.Write(name + "/temperature", "80\n");
    dir.Write(name + "/rules/FaultTrees.xml",
        TreeXml("Tag").Version("3").Tree("T", Or({Basic("HOT", {"Too hot", "", "{}", ""})})).Text());
    dir.Write(name + "/rules/FaultTreeRules.xml", RuleXml("Tag").EventRule("HOT", {Single("hot")}).Rule(rule)
        .FaultDescription("HOT", {"D1", "D2"}).Solution("HOT", {"S1", "S2"}).Repair("HOT", {{"R1", extra}}).Text());
}

void WriteCodeBundle(const TempDir& dir, const std::string& name, const std::vector<std::string>& infos,
    const std::string& json)
{
    RuleXml rules("Tag");
    std::vector<Xml> events;
    for (std::size_t i = 0; i < infos.size(); ++i) {
        const std::string id = "C" + std::to_string(i + 1);
        events.push_back(Basic(id));
        rules.EventRule(id, {Single("rule" + id)}).Rule(CodeRuleXml("rule" + id, "CODE_" + id, infos[i]));
        rules.FaultDescription(id, {"D_" + id}).Solution(id, {"S_" + id}).Repair(id, {{"R_" + id, ""}});
    }
    dir.Write(name + "/bundle.json", json);
    dir.Write(name + "/rules/FaultTrees.xml", TreeXml("Tag").Version("1").Tree("T", Or(events)).Text());
    dir.Write(name + "/rules/FaultTreeRules.xml", rules.Text());
}

void WriteDropsBundle(const TempDir& dir, const std::string& name)
{
    const auto rule = AlarmRuleXml("drops", {AlarmIdXml("1001", "1001", {TimeXml("duration", "7", "3")})});
    dir.Write(name + "/bundle.json", BundleJson(R"(, "now": "2024-05-20 12:00:00", "tz": "UTC")"));
    dir.Write(name + "/rules/FaultTrees.xml", TreeXml("Tag").Version("1").Tree("T", Or({Basic("DROPS")})).Text());
    dir.Write(name + "/rules/FaultTreeRules.xml",
        RuleXml("Tag").EventRule("DROPS", {Single("drops")}).Rule(rule).Repair("DROPS", {{"R", ""}}).Text());
}

void WriteDropsTableRules(const TempDir& dir, const std::string& name, const std::string& statement)
{
    const Xml events = Xml("thresholdsOrLumbraData").Attr("name", "DROPS_TABLE")
        .Child(Xml("retrieveLumbraData").Child(Xml("alarmId").Attr("Eventid_Min", "1001").Attr("Eventid_Max", "1001")
            .Child(ParamsXml({ParamXml("1", "LOST", "int")}))));
    const Xml three = ConditionXml({SingleLogicXml(
        Xml("ge").Attr("type", "static").TextChild("id", "n").TextChild("value", "3"))});
    const Xml rule = CommandRuleXml("r").Child(Xml("referenceCommonPart").TextChild("commonPartName", "DROPS_TABLE"))
        .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int")})))
        .Child(AnalysisMethodXml("", {Xml("sql").Text(statement), TimeXml("duration", "30", "0"), three}));
    dir.Write(name + "/rules/FaultTreeRules.xml",
        RuleXml("Tag").CommonPart({events}).EventRule("DROPS", {Single("r")}).Rule(rule).Text());
}

#ifdef _WIN32
// Windows runs no scripts: a copy of what scripts/test-windows.sh has made, and a program that answers as the script does.
void PrepareLaptop(const std::string& name)
{
    const std::filesystem::path target = std::filesystem::absolute(name);
    std::filesystem::create_directories(target.parent_path()); // a folder that is there takes no copy of another one
    std::filesystem::copy(PREPARED_LAPTOP, target, std::filesystem::copy_options::recursive);
}

std::string LaptopCodeRunner()
{
    return LAPTOP_CODE_RUNNER;
}
#else
void PrepareLaptop(const std::string& name)
{
    const auto script = std::string(ARBORIST_SOURCE_DIR) + "/examples/laptop/prepare.sh";
    const auto prepared = RunProcess({script, ARBORIST_COMMAND, name});
    EXPECT_EQ(prepared.status, 0) << prepared.err;
}

std::string LaptopCodeRunner()
{
    return std::string(ARBORIST_SOURCE_DIR) + "/examples/laptop/code-runner.sh";
}
#endif

std::map<std::string, std::string> StateOf(const std::string& folder)
{
    std::map<std::string, std::string> state;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const auto time = entry.last_write_time().time_since_epoch().count();
        std::string text = std::to_string(static_cast<int>(entry.symlink_status().type())) + " "
            + std::to_string(time) + " ";
        if (entry.is_regular_file()) {
            std::ifstream file(entry.path(), std::ios::binary);
            text.append(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        }
        state[entry.path().string()] = text;
    }
    return state;
}
