#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/value.h>
#include <tinyxml2.h>

#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace fs = std::filesystem;

const std::string EXAMPLES = std::string(ARBORIST_SOURCE_DIR) + "/examples/";

std::vector<std::string> CaseFilesBelow(const std::string& folder)
{
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.size() > 10 && name.substr(name.size() - 10) == ".test.json") {
            files.push_back(entry.path().string());
        }
    }
    return files;
}

std::string ContentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The nth block of docs/cases.md that begins with this word, from 0.
std::string BlockOfPage(const std::string& word, int number)
{
    const std::string page = PageOfDocs("cases.md");
    const std::string fence = "\n```" + word + "\n";
    std::size_t start = page.find(fence);
    for (; number > 0; --number) {
        start = page.find(fence, start + 1);
    }
    start += fence.size();
    return page.substr(start, page.find("```\n", start) - start);
}

class TestCommand : public testing::Test {
protected:
    void SetUp() override { WriteHotBundle(mDir, "b"); }

    void Write(const std::string& name, const std::string& more, const std::string& causes = "\"HOT\"")
    {
        mDir.Write("b/rules/" + name, R"({"scene": 1, "files": {"temperature": 80}, "expect": {"causes": {"T": [)" + causes
            + "]}}" + more + "}");
    }

    TempDir mDir;
};

TEST_F(TestCommand, TellsEachCaseAndTheirNumber)
{
    Write("a.test.json", "");
    Write("b.test.json", "", "");
    const auto result = RunArborist({"test", "b"});
    EXPECT_EQ(result.out, "PASS b/rules/a.test.json: a\n"
                          "FAIL b/rules/b.test.json:1: b\n"
                          "  root causes of T\n"
                          "    + HOT  (TRUE, rule hot: condition_met)\n"
                          "2 cases: 1 passed, 1 failed\n");
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(RunArborist({"test", "b", "--filter", "a"}).status, 0);
}

TEST_F(TestCommand, LeavesNothingBehindAndItsInputsAlone)
{
    Write("a.test.json", ", \"events\": [{\"time\": \"-1d\", \"event\": 7}], \"repairs\": {\"R1\": \"-1d\"}");
    Write("b.test.json", ", \"tag\": \"Other\"");
    mDir.MakeDir("scratch");
    const auto before = StateOf("b");
    ProcessSetup setup;
    setup.environment["TMPDIR"] = mDir.Path("scratch");
    EXPECT_EQ(RunArborist({"test", "b"}, setup).status, 3);
    RunArborist({"test", "--record", "b"}, setup);
    EXPECT_TRUE(fs::is_empty("scratch"));
    EXPECT_EQ(StateOf("b"), before);
}

TEST_F(TestCommand, NoCaseIsAFailure)
{
    const auto result = RunArborist({"test", "b"});
    EXPECT_EQ(result.out, "no cases\n");
    EXPECT_EQ(result.status, 1);
    Write("a.test.json", "");
    EXPECT_EQ(RunArborist({"test", "b", "--filter", "none"}).status, 1);
}

TEST_F(TestCommand, AnUnreadableFileIsToldOnStandardErrorAndTheOthersAreRun)
{
    Write("a.test.json", ", \"tags\": \"\"");
    Write("b.test.json", "");
    const auto result = RunArborist({"test", "b"});
    EXPECT_EQ(result.out, "PASS b/rules/b.test.json: b\n1 case: 1 passed\n");
    EXPECT_EQ(result.err, "arborist: b/rules/a.test.json:1:90: unknown key \"tags\"; did you mean \"tag\"?\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(RunArborist({"test", "nowhere"}).status, 4);
    EXPECT_EQ(RunArborist({"test"}).status, 2);
}

TEST_F(TestCommand, ARuleSetThatCantBeUsedIsAFailedCase)
{
    Write("a.test.json", ", \"tag\": \"Other\"");
    const auto result = RunArborist({"test", "b"});
    EXPECT_THAT(result.out, HasSubstr("FAIL b/rules/a.test.json:1: a\n  "));
    EXPECT_THAT(result.out, HasSubstr("FaultTrees.xml: no tree under the tag \"Other\"\n"));
    EXPECT_EQ(result.status, 3);
}

TEST_F(TestCommand, RecordedCasesMustBeReviewedIfAskedFor)
{
    Write("a.test.json", ", \"reviewed\": false");
    const auto result = RunArborist({"test", "b"});
    EXPECT_EQ(result.out, "PASS b/rules/a.test.json: a (recorded, not reviewed)\n1 case: 1 passed, 1 not reviewed\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(RunArborist({"test", "b", "--require-reviewed"}).status, 1);
}

TEST_F(TestCommand, JsonHasEveryCaseWithWhatDiffers)
{
    Write("a.test.json", "");
    Write("b.test.json", ", \"reviewed\": false", "\"X\"");
    mDir.Write("b/c.test.json", "[]");
    EXPECT_EQ(RunArborist({"test", "b", "--json"}).out,
        R"({"schema": "arborist.test.1", "ok": false, "total": 2, "passed": 1, "unreviewed": 1, "cases": [)"
        R"({"file": "b/rules/a.test.json", "line": 1, "name": "a", "passed": true, "reviewed": true, "differences": []}, )"
        R"({"file": "b/rules/b.test.json", "line": 1, "name": "b", "passed": false, "reviewed": false, "differences": [)"
        R"({"subject": "root causes of T", "missing": [{"text": "X", "note": ""}], )"
        R"("unexpected": [{"text": "HOT", "note": "TRUE, rule hot: condition_met"}]}]}], )"
        R"("errors": [{"code": "bad_case", "message": "b/c.test.json:1:1: must hold an object, not a list"}]})"
        "\n");
}

TEST_F(TestCommand, JunitHasASuiteForEachFile)
{
    Write("a.test.json", "");
    Write("b.test.json", "", "");
    Write("c.test.json", ", \"tag\": \"Other\"");
    RunArborist({"test", "b", "--junit", "out.xml"});
    tinyxml2::XMLDocument document;
    ASSERT_EQ(document.LoadFile("out.xml"), tinyxml2::XML_SUCCESS);
    const auto* const suites = document.RootElement();
    EXPECT_EQ(suites->IntAttribute("tests") * 100 + suites->IntAttribute("failures") * 10 + suites->IntAttribute("errors"), 311);
    std::vector<std::string> texts;
    for (const auto* suite = suites->FirstChildElement("testsuite"); suite != nullptr; suite = suite->NextSiblingElement()) {
        const auto* const one = suite->FirstChildElement("testcase");
        const auto* const child = one->FirstChildElement();
        texts.push_back(std::string(suite->Attribute("name")) + " " + one->Attribute("name") + " "
            + (child == nullptr ? "passed" : child->Name()));
    }
    EXPECT_THAT(texts, ElementsAre("b/rules/a.test.json a passed", "b/rules/b.test.json b failure", "b/rules/c.test.json c error"));
    EXPECT_EQ(RunArborist({"test", "b", "--junit", "nowhere/out.xml"}).status, 5);
}

TEST_F(TestCommand, CoverageListsWhatNoCaseHasShown)
{
    Write("a.test.json", "");
    const auto result = RunArborist({"test", "b", "--coverage"});
    EXPECT_THAT(result.out, HasSubstr("1 case: 1 passed\n"
                                      "coverage of b/rules, tag Tag: 4 of 8 outcomes, 50%\n"
                                      "  leaves 1 of 2\n"
                                      "  alternatives 1 of 2\n"
                                      "  tests 1 of 2\n"
                                      "  filters 1 of 2\n"
                                      "b/rules/FaultTreeRules.xml:"));
    EXPECT_THAT(result.out, HasSubstr(": event HOT: never false\n"));
    EXPECT_EQ(result.status, 0);
    const Json::Value report = ParsedJson(RunArborist({"test", "b", "--coverage", "--json"}).out);
    const Json::Value& coverage = report["coverage"][0];
    EXPECT_EQ(coverage["covered"].asInt() * 100 + coverage["total"].asInt(), 408);
    EXPECT_EQ(coverage["uncovered"].size(), 4U);
    EXPECT_EQ(coverage["uncovered"][3]["never"][0].asString(), "false");
}

TEST_F(TestCommand, TooLittleCoverageIsAFailure)
{
    Write("a.test.json", "");
    EXPECT_EQ(RunArborist({"test", "b", "--coverage-threshold", "50"}).status, 0);
    EXPECT_EQ(RunArborist({"test", "b", "--coverage-threshold", "51"}).status, 1);
    EXPECT_FALSE(ParsedJson(RunArborist({"test", "b", "--json", "--coverage-threshold", "51"}).out)["ok"].asBool());
    EXPECT_EQ(RunArborist({"test", "b", "--coverage-threshold", "101"}).status, 2);
}

TEST_F(TestCommand, AnotherRuleSetCanBeTried)
{
    Write("a.test.json", "");
    fs::copy("b/rules", "other");
    std::string rules = mDir.Read("other/FaultTreeRules.xml");
    rules.replace(rules.find("<value>70"), 9, "<value>90");
    mDir.Write("other/FaultTreeRules.xml", rules);
    EXPECT_EQ(RunArborist({"test", "b", "--rules", "other"}).status, 1);
    EXPECT_EQ(RunArborist({"test", "b"}).status, 0);
}

TEST(CasesPageTest, ItsExamplePassesAndFailsAsThePageSays)
{
    const TempDir dir;
    fs::create_directory("rules");
    for (const char* name : {"FaultTrees.xml", "FaultTreeRules.xml"}) {
        fs::copy(EXAMPLES + "laptop/rules/" + name, std::string("rules/") + name);
    }
    std::string text = BlockOfPage("json", 0);
    dir.Write("rules/battery.test.json", text);
    EXPECT_EQ(RunArborist({"test", "rules"}).out, BlockOfPage("text", 0));
    dir.Write("rules/battery.test.json", text.replace(text.find("2900000"), 7, "4200000"));
    EXPECT_EQ(RunArborist({"test", "rules"}).out, BlockOfPage("text", 1));
}

TEST(CasesPageTest, TheCommandsPageShowsWhatTheCommandPrints)
{
    const std::string page = PageOfDocs("command.md");
    const std::string prompt = "    $ arborist test examples/laptop/rules --filter battery\n";
    const auto start = page.find(prompt) + prompt.size();
    ProcessSetup setup;
    setup.directory = ARBORIST_SOURCE_DIR;
    std::string shown;
    std::istringstream lines(RunArborist({"test", "examples/laptop/rules", "--filter", "battery"}, setup).out);
    for (std::string line; std::getline(lines, line);) {
        shown += "    " + line + "\n";
    }
    EXPECT_EQ(page.substr(start, shown.size()), shown);
}

TEST(CasesPageTest, ItsCoverageIsThatOfTheLaptop)
{
    ProcessSetup setup;
    setup.directory = ARBORIST_SOURCE_DIR;
    const auto withoutLines = [](const std::string& text) { return std::regex_replace(text, std::regex(":[0-9]+:"), ":"); };
    EXPECT_THAT(withoutLines(RunArborist({"test", "examples/laptop", "--coverage"}, setup).out),
        EndsWith(withoutLines(BlockOfPage("text", 2))));
}

TEST(CasesPageTest, ItsTablesHaveEveryKeyOfTheSchema)
{
    const std::string page = PageOfDocs("cases.md");
    const Json::Value schema = ParsedJson(PageOfDocs("case.schema.json"));
    for (const char* part : {"case", "expect"}) {
        for (const std::string& key : schema["$defs"][part]["properties"].getMemberNames()) {
            EXPECT_THAT(page, HasSubstr("`" + key + "`")) << part;
        }
    }
}

TEST(ExampleCasesTest, AllPassAndShowNearlyEverythingInTheRules)
{
    const auto result = RunArborist({"test", EXAMPLES, "--require-reviewed", "--coverage-threshold", "99"});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
}

TEST(CaseSchemaTest, HasNoKeyThatTheReaderDoesntKnow)
{
    const TempDir dir;
    const Json::Value schema = ParsedJson(PageOfDocs("case.schema.json"));
    for (const char* part : {"case", "expect"}) {
        std::string keys;
        for (const std::string& key : schema["$defs"][part]["properties"].getMemberNames()) {
            keys += key == "cases" ? "" : (keys.empty() ? "\"" : ", \"") + key + "\": 0.5"; // of a wrong type for all of them
        }
        dir.Write("a.test.json", part == std::string("case") ? "{" + keys + "}" : "{\"scene\": 1, \"expect\": {" + keys + "}}");
        const std::string problems = RunArborist({"test", "a.test.json"}).err;
        EXPECT_THAT(problems, HasSubstr("must be"));
        EXPECT_THAT(problems, Not(HasSubstr("unknown key")));
    }
}

TEST(ExampleCasesTest, FollowTheSchema)
{
    const Json::Value schema = ParsedJson(PageOfDocs("case.schema.json"));
    const auto files = CaseFilesBelow(EXAMPLES);
    EXPECT_THAT(files, Not(IsEmpty()));
    for (const std::string& file : files) {
        EXPECT_THAT(Violations(schema, ParsedJson(ContentOf(file))), IsEmpty()) << file;
    }
}

// The words of all "causes" of the cases of one folder, each with a tree in front.
std::set<std::string> CausesInCases(const std::string& folder)
{
    std::set<std::string> causes;
    for (const std::string& file : CaseFilesBelow(folder)) {
        const Json::Value root = ParsedJson(ContentOf(file));
        for (const Json::Value& one : root["cases"]) {
            const Json::Value& trees = one["expect"]["causes"];
            for (const std::string& tree : trees.getMemberNames()) {
                for (const Json::Value& id : trees[tree]) {
                    causes.insert(id.asString());
                }
            }
        }
    }
    return causes;
}

TEST(ExampleCasesTest, ReportEveryRootCauseThatTheRulesCanReport)
{
    EXPECT_THAT(CausesInCases(EXAMPLES + "laptop"), ElementsAre("BACKLIGHT_DARK", "BATTERY_WORN", "CHARGE_LOST",
        "FLASH_LIFE_USED", "KEYBOARD_DEAD", "KEYS_BOUNCE", "MEMORY_TOO_SMALL", "MODULE_B1_BAD", "PANEL_UNEVEN",
        "PANEL_WORN_OUT", "PIXELS_DEAD", "PROGRAMS_KILLED", "READ_RETRIES", "RECEIVE_ERRORS", "SPEAKER_DEAD",
        "STORAGE_HOT", "SWAPS_OFTEN", "WRONG_RESOLUTION"));
    EXPECT_THAT(CausesInCases(EXAMPLES + "linux-host"), ElementsAre("AIO_NEAR_LIMIT", "BATTERY_LOW", "BATTERY_WORN",
        "CONNECTIONS_NEAR_LIMIT", "CONTAINER_MEMORY_FULL", "FILES_NEAR_LIMIT", "KERNEL_TAINTED", "MEMORY_BIT_ERRORS",
        "OVERCOMMIT_ALWAYS", "PID_MAX_SMALL", "PROCESSES_NEAR_LIMIT", "RECEIVE_ERRORS", "RESERVE_TOO_SMALL",
        "SWAPPINESS_HIGH", "WATCHES_TOO_FEW", "ZONE_CRITICAL", "ZONE_HOT"));
}

} // namespace
