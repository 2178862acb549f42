#include <filesystem>
#include <regex>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/pattern.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char LAPTOP[] = ARBORIST_SOURCE_DIR "/examples/laptop/rules";

class RulesCommand : public testing::Test {
protected:
    // A rule set "a", and one "b" with another threshold.
    void SetUp() override
    {
        Write("a", "3");
        Write("b", "5");
    }

    void Write(const std::string& folder, const std::string& threshold) const
    {
        mDir.Write(folder + "/FaultTrees.xml", TreeXml("Tag").Tree("T", Or({Basic("E")})).Text());
        mDir.Write(folder + "/FaultTreeRules.xml",
            RuleXml("Tag").EventRule("E", {Single("r")})
                .Rule(AlarmRuleXml("r", {AlarmIdXml("7", "9", {TimeXml("duration", "30", threshold)})})).Text());
    }

    static ProcessResult Rules(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), "rules");
        return RunArborist(arguments);
    }

    TempDir mDir;
};

TEST_F(RulesCommand, ListsWithThePlaceOfEachItem)
{
    const auto result = Rules({"list", "a"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, MatchesPattern("Tag\n"
        "  trees: 1\n    T \\(2 events\\)  FaultTrees.xml:[0-9]+\n"
        "  events: 2\n    T \\(intermediate\\)  FaultTrees.xml:[0-9]+\n"
        "    E \\(basic\\) <- r  FaultTrees.xml:[0-9]+\n"
        "  rules: 1\n    r \\(alarm\\) -> E  FaultTreeRules.xml:[0-9]+\n"));
}

TEST_F(RulesCommand, DiffersLikeDiff)
{
    const auto equal = Rules({"diff", "a", "a"});
    EXPECT_EQ(equal.status, 0);
    EXPECT_EQ(equal.out, "no differences\n");
    const auto different = Rules({"diff", "a", "b"});
    EXPECT_EQ(different.status, 1);
    EXPECT_THAT(different.out, testing::StartsWith("~ rule r, alarm item 1, duration, threshold: \"3\" -> \"5\"  a/FaultTreeRules"));
    EXPECT_THAT(different.out, EndsWith("\n1 difference\n"));
    const auto unreadable = Rules({"diff", "a", "nowhere"});
    EXPECT_EQ(unreadable.status, 3);
    EXPECT_EQ(unreadable.err, "arborist: nowhere/FaultTrees.xml: there is no such file\n");
    EXPECT_EQ(Rules({"diff", "a"}).status, 2);
}

TEST_F(RulesCommand, ShowsARuleAndSaysWhenNothingHasTheName)
{
    const auto rule = Rules({"show", "a", "r"});
    EXPECT_EQ(rule.status, 0);
    EXPECT_THAT(rule.out, HasSubstr("\n  alarm item 1, ids: 7 to 9"));
    EXPECT_THAT(rule.out, HasSubstr("\n  decides event E  FaultTreeRules.xml:"));
    const auto unknown = Rules({"show", "a", "R"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.out, "");
    EXPECT_EQ(unknown.err, "arborist: a: no tree, event, rule, shared data, database or repair is named \"R\"; did you mean \"r\"?\n");
}

TEST_F(RulesCommand, TellsWhatADeviceCanReport)
{
    mDir.Write("device.json", R"([{"Product": "P", "scenes": [2]}, {"scenes": [1]}])");
    const auto result = Rules({"reach", "a", "--device", "device.json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, MatchesPattern(
        "product P, platform any, device type any, scenes 2\n  T: 0 of 1 root cause\n    cannot  E  FaultTrees.xml:[0-9]+\n"
        "      rule r: detectScene \"1\" does not contain \"2\"  FaultTreeRules.xml:[0-9]+\n"
        "product any, platform any, device type any, scenes 1\n  T: 1 of 1 root cause\n"
        "    can     E  FaultTrees.xml:[0-9]+\n"));
    mDir.Write("device.json", "[1]");
    EXPECT_EQ(Rules({"reach", "a", "--device", "device.json"}).status, 2);
    EXPECT_EQ(Rules({"reach", "a"}).status, 2);
}

TEST_F(RulesCommand, MakesARuleSetThatPassesAllThatLooksAtIt)
{
    const auto made = Rules({"new", "heat"});
    EXPECT_EQ(made.status, 0) << made.err;
    EXPECT_THAT(made.out, HasSubstr("heat/rules/heat.test.json\n"));
    EXPECT_EQ(RunArborist({"lint", "heat/rules", "--fail-level", "info"}).out, "no findings\n");
    EXPECT_EQ(RunArborist({"bundle", "verify", "heat", "--strict"}).status, 0);
    const auto detected = RunArborist({"detect", "heat", "--strict"});
    EXPECT_EQ(detected.status, 0) << detected.err;
    EXPECT_THAT(detected.out, HasSubstr("1. FAN_STUCK"));
    const auto tested = RunArborist({"test", "heat"});
    EXPECT_EQ(tested.status, 0) << tested.out;
    EXPECT_THAT(tested.out, HasSubstr("5 cases: 5 passed"));
}

TEST_F(RulesCommand, MakesNoRuleSetWhereSomethingIs)
{
    mDir.Write("full/note.txt", "");
    const auto refused = Rules({"new", "full"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.err, "arborist: full: is not empty; nothing was written\n");
    EXPECT_FALSE(mDir.Has("full/bundle.json"));
    EXPECT_THAT(Rules({"new", "full/note.txt"}).err, HasSubstr("full/note.txt: can't be created"));
    mDir.MakeDir("empty");
    EXPECT_EQ(Rules({"new", "empty"}).status, 0);
}

/// Exports the trees of a folder, and imports them into another with the same rule file.
void ExportAndImport(const std::string& from, const std::string& tag, const std::string& to)
{
    const auto exported = RunArborist({"graph", from, "--tree-tag", tag, "--format", "openpsa", "--output", "model.xml"});
    EXPECT_EQ(exported.status, 0) << exported.err;
    std::filesystem::create_directory(to);
    const auto imported = RunArborist({"rules", "import", "model.xml", "--tag", tag, "--output", to});
    EXPECT_EQ(imported.status, 0) << imported.err;
    std::filesystem::copy_file(from + "/FaultTreeRules.xml", to + "/FaultTreeRules.xml");
}

// The exchange format has no versions and types of trees, and of events only ids and names.
TEST_F(RulesCommand, ImportsWhatGraphExports)
{
    const std::string examples = ARBORIST_SOURCE_DIR "/examples/";
    for (const auto& [example, tag] : {std::pair("laptop", "Laptop"), std::pair("linux-host", "LinuxHost")}) {
        const std::string once = std::string(example) + "-once";
        const std::string twice = std::string(example) + "-twice";
        ExportAndImport(examples + example + "/rules", tag, once);
        const Json::Value diff = ParsedJson(Rules({"diff", "--json", examples + example + "/rules", once}).out);
        for (const Json::Value& change : diff["changes"]) {
            EXPECT_THAT(change["key"].asString(),
                testing::AnyOf("version of the tree file", "type", "UserDefined", "DetectMode")) << change.toStyledString();
        }
        ExportAndImport(once, tag, twice);
        EXPECT_EQ(Rules({"diff", once, twice}).out, "no differences\n");
    }
}

TEST_F(RulesCommand, ImportsTheIdsOfGatesThatGraphHadToNameApart)
{
    const std::string trees = TreeXml("Tag").Tree("T", Or({Intermediate("G", And({Basic("A"), Basic("B")})),
        Intermediate("H", And({Intermediate("G", Or({Basic("A")})), Basic("C")}))})).Text();
    mDir.Write("a/FaultTrees.xml", trees);
    ExportAndImport("a", "Tag", "again");
    const Json::Value diff = ParsedJson(Rules({"diff", "--json", "a", "again"}).out);
    for (const Json::Value& change : diff["changes"]) {
        EXPECT_THAT(change["key"].asString(), testing::AnyOf("version of the tree file", "type")) << change.toStyledString();
    }
}

TEST_F(RulesCommand, ImportsToStandardOutputAndTellsWhatItLeavesOut)
{
    mDir.Write("model.xml", "<opsa-mef><define-fault-tree name=\"T\"><define-gate name=\"G\"><basic-event name=\"A\"/>"
        "</define-gate></define-fault-tree><model-data><define-basic-event name=\"A\"><float value=\"0.1\"/>"
        "</define-basic-event></model-data></opsa-mef>");
    const auto result = Rules({"import", "model.xml"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("\n  <Imported>\n    <tree id=\"T\" version=\"1\" type=\"imported\">\n"));
    EXPECT_EQ(result.err, "arborist: model.xml: the probabilities of 1 definition is left out: a tree file has none\n");
    const auto kept = Rules({"import", "model.xml", "--output", "a"});
    EXPECT_EQ(kept.status, 2);
    EXPECT_THAT(kept.err, EndsWith("arborist: a/FaultTrees.xml: is there already\n"));
    mDir.Write("model.xml", "<opsa-mef>\n<x/></opsa-mef>");
    const auto refused = Rules({"import", "model.xml"});
    EXPECT_EQ(refused.status, 4);
    EXPECT_THAT(refused.err, testing::StartsWith("arborist: model.xml:2: \"x\" can't be imported"));
    EXPECT_EQ(Rules({"import", "model.xml", "--tag", "a b"}).status, 2);
}

TEST_F(RulesCommand, ImportsAsJsonOfTheSchema)
{
    const auto importAs = [](const std::string& name, std::vector<std::string> arguments) {
        const auto result = Rules([&arguments] {
            arguments.insert(arguments.begin(), {"import", "model.xml", "--json"});
            return arguments;
        }());
        const Json::Value schema = ParsedJson(PageOfDocs("rules.schema.json"));
        Json::Value part = schema["$defs"][name];
        part["$defs"] = schema["$defs"];
        const Json::Value line = ParsedJson(result.out);
        EXPECT_THAT(Violations(part, line), IsEmpty());
        EXPECT_EQ(line["file"].asString(), "model.xml");
        const std::string message = line["error"]["message"].asString();
        EXPECT_EQ(result.err, message.empty() ? "" : "arborist: " + message + "\n");
        return line;
    };
    EXPECT_EQ(importAs("importFailure", {})["error"]["code"].asString(), "bad_model");
    mDir.Write("model.xml", "<opsa-mef><define-fault-tree name=\"T\"><define-gate name=\"G\"><basic-event name=\"A\"/>"
        "</define-gate></define-fault-tree><model-data><define-basic-event name=\"A\"/></model-data></opsa-mef>");
    EXPECT_EQ(importAs("import", {})["text"].asString(), Rules({"import", "model.xml"}).out);
    mDir.MakeDir("new");
    EXPECT_EQ(importAs("import", {"--output", "new"})["output"].asString(), "new/FaultTrees.xml");
    EXPECT_EQ(importAs("importFailure", {"--output", "new"})["error"]["code"].asString(), "not_written");
}

TEST_F(RulesCommand, ShowsForeignNamesOnOneLine)
{
    mDir.Write("a/FaultTrees.xml", TreeXml("Tag").Tree("T", Or({Basic("A\x1b[31m\nB")})).Text());
    EXPECT_THAT(Rules({"list", "a"}).out, HasSubstr("A\\x1B[31m\\x0AB (basic)"));
}

// The lines of the indented block that begins with `first`; "..." stands for lines that are left out.
std::vector<std::string> ExampleOfPage(const std::string& first)
{
    const std::string page = PageOfDocs("rules.md");
    std::istringstream lines(page.substr(page.find("\n    " + first) + 1));
    std::vector<std::string> example;
    for (std::string line; std::getline(lines, line) && line.rfind("    ", 0) == 0;) {
        if (line.find("...") == std::string::npos) {
            example.push_back(line.substr(4) + "\n");
        }
    }
    return example;
}

TEST_F(RulesCommand, PrintsWhatItsPageShowsOfTheLaptop)
{
    const std::string listed = Rules({"list", LAPTOP}).out;
    const auto list = ExampleOfPage("Laptop\n");
    EXPECT_EQ(list.size(), 5U);
    for (const std::string& line : list) {
        EXPECT_THAT(listed, HasSubstr(line));
    }
    mDir.Write("device.json", R"({"Product": "LT-14", "Platform": "x86", "DeviceType": "tablet", "scenes": [1]})");
    const std::string reached = Rules({"reach", LAPTOP, "--device", "device.json"}).out;
    const auto reach = ExampleOfPage("product LT-14");
    EXPECT_EQ(reach.size(), 5U);
    for (const std::string& line : reach) {
        EXPECT_THAT(reached, HasSubstr(line));
    }
    // The page shows how the laptop differs from one with another limit and another event.
    std::filesystem::copy(LAPTOP, "old");
    std::filesystem::copy(LAPTOP, "new");
    mDir.Write("new/FaultTrees.xml", std::regex_replace(mDir.Read("old/FaultTrees.xml"),
        std::regex("<Basic-Event><ID>BATTERY_WORN"), "<Basic-Event><ID>FUSE_BLOWN</ID></Basic-Event>$&"));
    mDir.Write("new/FaultTreeRules.xml", std::regex_replace(mDir.Read("old/FaultTreeRules.xml"),
        std::regex("<lt><id>percent</id><value>60"), "<lt><id>percent</id><value>70"));
    const std::string differs = Rules({"diff", "old", "new"}).out;
    const auto diff = ExampleOfPage("~ rule battery_wear");
    EXPECT_EQ(diff.size(), 3U);
    for (const std::string& line : diff) {
        EXPECT_THAT(differs, HasSubstr(line));
    }
}

TEST_F(RulesCommand, TellsAFailureAsJson)
{
    const std::vector<std::vector<std::string>> commands{{"list", "nowhere"}, {"stats", "nowhere"}, {"show", "nowhere", "E"},
        {"diff", "a", "nowhere"}, {"reach", "a", "--device", "nowhere.json"}};
    const Json::Value schema = ParsedJson(PageOfDocs("rules.schema.json"));
    for (std::vector<std::string> command : commands) {
        command.emplace_back("--json");
        const auto result = Rules(command);
        const Json::Value failure = ParsedJson(result.out);
        EXPECT_EQ(failure["schema"].asString(), "arborist.rules." + command.front() + ".1");
        EXPECT_EQ(failure["error"]["code"].asString(), command.front() == "reach" ? "bad_device" : "rule_file_missing");
        EXPECT_EQ(result.err, "arborist: " + failure["error"]["message"].asString() + "\n");
        EXPECT_THAT(Violations(schema["$defs"]["failure"], failure), IsEmpty());
    }
}

TEST_F(RulesCommand, PrintsJsonOfTheSchema)
{
    mDir.Write("device.json", R"({"Product": "P", "scenes": [2]})");
    const Json::Value schema = ParsedJson(PageOfDocs("rules.schema.json"));
    const std::vector<std::vector<std::string>> commands{{"list", LAPTOP}, {"stats", LAPTOP}, {"show", LAPTOP, "BATTERY_WORN"},
        {"show", LAPTOP, "REPAIR_BATTERY"},
        {"show", LAPTOP, "nowhere"}, {"diff", LAPTOP, LAPTOP}, {"diff", "a", "b"}, {"diff", "a", LAPTOP},
        {"reach", LAPTOP, "--device", "device.json"}};
    for (std::vector<std::string> command : commands) {
        command.emplace_back("--json");
        const std::string name = command.front();
        Json::Value one = schema["$defs"][name];
        one["$defs"] = schema["$defs"];
        EXPECT_THAT(Violations(one, ParsedJson(Rules(command).out)), IsEmpty()) << testing::PrintToString(command);
    }
}

TEST_F(RulesCommand, PrintsASchemaForATagOrForOneFile)
{
    EXPECT_THAT(Rules({"schema", "--tag", "Tag"}).out, HasSubstr("Tag"));
    EXPECT_THAT(Rules({"schema", "--tag", "Tag", "a"}).out, HasSubstr("Tag"));
    const auto trees = Rules({"schema", "--relax-ng", "trees"});
    const auto rules = Rules({"schema", "--relax-ng", "rules"});
    EXPECT_THAT(trees.out, HasSubstr("<grammar"));
    EXPECT_NE(trees.out, rules.out);
    EXPECT_EQ(Rules({"schema"}).status, 2);
    EXPECT_EQ(Rules({"schema", "--tag", "Tag", "nowhere"}).out, "");
}

TEST_F(RulesCommand, TakesTheNameOfAnElementForATag)
{
    mDir.Write("model.xml", "<opsa-mef><define-fault-tree name=\"F\"><define-gate name=\"G\"><basic-event name=\"A\"/>"
        "</define-gate></define-fault-tree><model-data><define-basic-event name=\"A\"/></model-data></opsa-mef>");
    for (const char* const tag : {"Tag", "_t", "a-b.c_9"}) {
        EXPECT_THAT(Rules({"import", "model.xml", "--tag", tag}).out, HasSubstr(tag));
    }
    for (const char* const tag : {"", "9a", "-a", "a b", "a<b"}) {
        EXPECT_EQ(Rules({"import", "model.xml", "--tag", tag}).status, 2) << tag;
    }
}

} // namespace
