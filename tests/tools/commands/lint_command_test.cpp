#include <filesystem>

#include <gmock/gmock.h>
#include <json/value.h>
#include <tinyxml2.h>

#include "tests/support/case_name.h"
#include "tests/support/event_log_builder.h"
#include "tests/tools/commands/lint_fixture.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

using LintCommand = LintFixture;

TEST_F(LintCommand, ShowsPlaceLineHelpAndWhatHappensAtRunTime)
{
    const auto result = Lint({"rules"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
        "rules/FaultTreeRules.xml:12: error A401: rule without a scene\n"
        "  the rule \"r\" names no scene\n"
        " 12 |         <codeRule name=\"r\"><detectInfo id=\"C\"/></codeRule>\n"
        "    |          ^^^^^^^^\n"
        "   = help: name its scenes in \"detectScene\"\n"
        "   = note: at run time the rule is rejected in every detection: other filters let all in when they are empty,\n"
        "           this one none\n\n"
        "1 error\n");
    Mend();
    EXPECT_EQ(Lint({"rules"}).out, "no findings\n");
    EXPECT_EQ(Lint({"rules"}).status, 0);
}

TEST_F(LintCommand, ShowsNoCaretIfTheTextIsSeveralTimesInItsLine)
{
    const std::string rule = "<codeRule name=\"r\"><detectInfo id=\"C\"/></codeRule>";
    Write(RuleFile(" detectScene=\"1\"", rule + rule));
    EXPECT_THAT(Lint({"rules", "--only", "A401"}).out, AllOf(HasSubstr("\n 11 | " + rule + rule), Not(HasSubstr("^"))));
    EXPECT_FALSE(ParsedJson(Lint({"rules", "--only", "A401", "--json"}).out)["findings"][0].isMember("column"));
}

TEST_F(LintCommand, ReportsToEditorsInOneLineEach)
{
    EXPECT_EQ(Lint({"rules", "--format", "short"}).out,
        "rules/FaultTreeRules.xml:12:10: error: the rule \"r\" names no scene [A401]\n");
}

TEST_F(LintCommand, AnnotatesForGithub)
{
    EXPECT_EQ(Lint({"rules", "--format", "github"}).out,
        "::error file=rules/FaultTreeRules.xml,line=12,col=10,endColumn=18,title=A401 rule without a scene::the rule "
        "\"r\" names no scene; name its scenes in \"detectScene\"\n");
}

TEST_F(LintCommand, GivesAllThatItKnowsAsJson)
{
    const Json::Value run = ParsedJson(Lint({"rules", "--json"}).out);
    EXPECT_EQ(run["files"].size(), 2U);
    EXPECT_EQ(run["errors"].asInt(), 1);
    const Json::Value& finding = run["findings"][0];
    EXPECT_EQ(finding["id"].asString(), "A401");
    EXPECT_EQ(finding["severity"].asString(), "error");
    EXPECT_EQ(finding["line"].asInt(), 12);
    EXPECT_EQ(finding["column"].asInt(), 10);
    EXPECT_EQ(finding["element"].asString(), "RuleList/Laptop/rule/codeRule[r]");
    EXPECT_EQ(finding["fix"].asString(), "none");
}

TEST_F(LintCommand, KeepsFingerprintsWhenLinesMove)
{
    const auto fingerprint = [this] { return ParsedJson(Lint({"rules", "--json"}).out)["findings"][0]["fingerprint"]; };
    const Json::Value before = fingerprint();
    Write("\n\n<!-- moved -->\n" + RuleFile());
    EXPECT_EQ(fingerprint(), before);
    EXPECT_EQ(ParsedJson(Lint({"rules", "--format", "gitlab"}).out)[0]["fingerprint"], before);
}

TEST_F(LintCommand, TellsEqualFindingsApart)
{
    const std::string twice = "<codeRule detectScene=\"1\"><detectInfo id=\"D\"/></codeRule>\n";
    Write(RuleFile(" detectScene=\"1\"", twice + twice));
    const Json::Value findings = ParsedJson(Lint({"rules", "--only", "A404", "--format", "gitlab"}).out);
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_NE(findings[0]["fingerprint"], findings[1]["fingerprint"]);
}

struct FormatCase {
    const char* name;
    const char* format;
};
void PrintTo(const FormatCase& formatCase, std::ostream* out) { *out << formatCase.name; }
class LintFormat : public LintCommand, public testing::WithParamInterface<FormatCase> {};

TEST_P(LintFormat, IsValidWithFindingsAndWithout)
{
    for (const bool isMended : {false, true}) {
        if (isMended) {
            Mend();
        }
        const auto result = Lint({"rules", "--format", GetParam().format});
        EXPECT_EQ(result.status, isMended ? 0 : 1);
        EXPECT_THAT(result.err, IsEmpty());
        if (std::string(GetParam().format) == "junit") {
            tinyxml2::XMLDocument document;
            ASSERT_EQ(document.Parse(result.out.c_str()), tinyxml2::XML_SUCCESS);
            EXPECT_EQ(document.RootElement()->IntAttribute("failures"), isMended ? 0 : 1);
            EXPECT_EQ(document.RootElement()->IntAttribute("tests"), 2);
        } else {
            EXPECT_FALSE(ParsedJson(result.out).isNull());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Table, LintFormat, testing::Values(FormatCase{"Json", "json"}, FormatCase{"Gitlab", "gitlab"},
    FormatCase{"Sarif", "sarif"}, FormatCase{"Junit", "junit"}), CaseName());

TEST_F(LintCommand, WritesSarifWithItsRulesAndStableFingerprints)
{
    const Json::Value sarif = ParsedJson(Lint({"rules", "--format", "sarif"}).out);
    EXPECT_EQ(sarif["version"].asString(), "2.1.0");
    const Json::Value& run = sarif["runs"][0];
    EXPECT_EQ(run["tool"]["driver"]["rules"][0]["id"].asString(), "A401");
    const Json::Value& result = run["results"][0];
    EXPECT_EQ(result["ruleId"].asString(), "A401");
    EXPECT_EQ(result["level"].asString(), "error");
    const Json::Value& place = result["locations"][0]["physicalLocation"];
    EXPECT_EQ(place["artifactLocation"]["uri"].asString(), "rules/FaultTreeRules.xml");
    EXPECT_EQ(place["region"]["startLine"].asInt(), 12);
    EXPECT_EQ(result["partialFingerprints"]["arboristLint/v1"].asString().size(), 16U);
}

TEST_F(LintCommand, LeavesOutAndPicksChecks)
{
    EXPECT_EQ(Lint({"rules", "--disable", "A401"}).status, 0);
    EXPECT_EQ(Lint({"rules", "--disable", "A303,A401"}).status, 0);
    EXPECT_EQ(Lint({"rules", "--only", "A303"}).status, 0);
    // An option takes one value, and leaves the arguments behind it alone.
    EXPECT_EQ(Lint({"--disable", "A303,A401", "rules"}).status, 0);
    EXPECT_EQ(Lint({"--disable", "A303", "--disable", "A401", "--tag", "Laptop", "rules"}).status, 0);
    const auto unknown = Lint({"rules", "--only", "A40"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, "arborist: no such check: A40; did you mean \"A401\"?\n");
}

TEST_F(LintCommand, FailsFromTheGivenLevelOn)
{
    Write(RuleFile(" detectScene=\"1\" detectscene=\"1\""));
    EXPECT_EQ(Lint({"rules"}).status, 0);
    EXPECT_EQ(Lint({"rules", "--fail-level", "warning"}).status, 1);
    EXPECT_EQ(Lint({"rules", "--fail-level", "warning", "--disable", "A104"}).status, 0);
    EXPECT_EQ(Lint({"rules", "--fail-level", "fatal"}).status, 2);
}

TEST_F(LintCommand, LooksAtAllFilesWhenOneCanNotBeRead)
{
    fs::copy("rules", "broken", fs::copy_options::recursive);
    mDir.Write("broken/FaultTrees.xml", "<a>\n<b></a>");
    const auto result = Lint({"broken", "rules", "missing"});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.out, HasSubstr("broken/FaultTrees.xml:2: error A101: file missing or not well-formed\n"
                                      "  FaultTrees.xml is no well-formed XML: mismatched element\n"));
    EXPECT_THAT(result.out, HasSubstr("broken/FaultTreeRules.xml:12: error A401"));
    EXPECT_THAT(result.out, HasSubstr("rules/FaultTreeRules.xml:12: error A401"));
    EXPECT_THAT(result.out, HasSubstr("missing/FaultTrees.xml: error A101: file missing or not well-formed\n"
                                      "  FaultTrees.xml can't be used: there is no"));
}

TEST_F(LintCommand, ACommentSuppressesWhatTheElementBehindItHolds)
{
    Write(RuleFile("", "<!-- arborist-disable A401: the host picks the scene -->"));
    EXPECT_EQ(Lint({"rules"}).out, "no findings\n");
    Write("<!-- arborist-disable A303, A401 -->" + RuleFile());
    EXPECT_THAT(Lint({"rules"}).out, AllOf(HasSubstr(":1: info A001: suppression without use\n"
                                                   "  the comment suppresses \"A303\", which finds nothing"),
                                         Not(HasSubstr("error A401"))));
    Write(RuleFile(" detectScene=\"1\"", "<!-- arborist-disable A999 -->"));
    EXPECT_THAT(Lint({"rules"}).out, HasSubstr("the comment suppresses \"A999\", which is no check"));
    // A suppression of a check that did not run is no finding.
    Write(RuleFile("", "<!-- arborist-disable A401 -->"));
    EXPECT_EQ(Lint({"rules", "--disable", "A401"}).out, "no findings\n");
}

struct FailureCase {
    const char* name;
    std::vector<std::string> options;
    std::string code;
};

void PrintTo(const FailureCase& failure, std::ostream* out) { *out << failure.code; }

class LintFailure : public LintCommand, public testing::WithParamInterface<FailureCase> {};

TEST_P(LintFailure, IsAnObjectWithTheErrorWhereJsonIsAskedFor)
{
    mDir.Write("broken.txt", "{");
    std::vector<std::string> options = GetParam().options;
    const auto text = Lint(options);
    EXPECT_EQ(text.status, 2);
    EXPECT_EQ(text.out, "");
    options.insert(options.end(), {"--format", "json"});
    const auto json = Lint(options);
    EXPECT_EQ(json.status, 2);
    EXPECT_EQ(json.err, text.err);
    const Json::Value object = ParsedJson(json.out);
    EXPECT_EQ(object.getMemberNames(), std::vector<std::string>{"error"});
    EXPECT_EQ(object["error"]["code"].asString(), GetParam().code);
    EXPECT_EQ("arborist: " + object["error"]["message"].asString() + "\n", json.err);
}

INSTANTIATE_TEST_SUITE_P(Each, LintFailure,
    testing::ValuesIn(std::vector<FailureCase>{
        {"NoConfig", {"rules", "--config", "none.json"}, "bad_config"},
        {"CheckThatIsNone", {"rules", "--only", "A4"}, "unknown_check"},
        {"NoCheckToExplain", {"--explain", "A4"}, "unknown_check"},
        {"NoDevice", {"rules", "--device", "broken.txt"}, "bad_device"},
        {"NoBaseline", {"rules", "--baseline", "none.txt"}, "bad_baseline"},
        {"NoFolderForABaseline", {"rules", "--write-baseline", "none/lint.txt"}, "not_written"},
        {"NoLog", {"rules", "--log", "none.db"}, "no_log"},
    }),
    CaseName());

TEST_F(LintCommand, ABaselineHoldsWhatIsKnown)
{
    EXPECT_EQ(Lint({"rules", "--write-baseline", "known/lint.txt"}).status, 2);
    EXPECT_EQ(Lint({"rules", "--write-baseline", "lint.txt"}).status, 0);
    EXPECT_THAT(mDir.Read("lint.txt"),
        HasSubstr("\nA401\trules/FaultTreeRules.xml\tRuleList/Laptop/rule/codeRule[r]\t1\n"));
    Write("\n" + RuleFile());
    const auto known = Lint({"rules", "--baseline", "lint.txt"});
    EXPECT_EQ(known.status, 0);
    EXPECT_EQ(known.out, "no findings, 1 in the baseline\n");
    // A second finding about the same element is new.
    Write(RuleFile("", "<codeRule name=\"r\"><detectInfo id=\"D\"/></codeRule>"));
    EXPECT_EQ(Lint({"rules", "--baseline", "lint.txt", "--only", "A401"}).status, 1);
    mDir.Write("lint.txt", "A401 rules\n");
    EXPECT_EQ(Lint({"rules", "--baseline", "lint.txt"}).status, 2);
    EXPECT_EQ(Lint({"rules", "--baseline", "none.txt"}).status, 2);
}

TEST_F(LintCommand, WritesABaselineAgainWithItsCommentsAndTellsNoneOfIt)
{
    const std::string again = "<codeRule detectScene=\"1\"><detectInfo id=\"D\"/></codeRule>\n";
    Write(RuleFile("", again));
    ASSERT_EQ(Lint({"rules", "--write-baseline", "lint.txt"}).out, "no findings, 2 in the baseline\n");
    std::string known = mDir.Read("lint.txt");
    const std::string first = known.substr(known.find("A401"), known.find('\n', known.find("A401")) - known.find("A401") + 1);
    known.insert(known.find("A404"), "# Is given a name by the host.\n");
    known.insert(known.find("A401"), "# Meant.\n");
    mDir.Write("lint.txt", known);
    Mend();
    EXPECT_EQ(Lint({"rules", "--write-baseline", "lint.txt"}).status, 0);
    EXPECT_EQ(mDir.Read("lint.txt").find("A40"), std::string::npos);
    mDir.Write("lint.txt", known);
    Write(RuleFile());
    EXPECT_EQ(Lint({"rules", "--write-baseline", "lint.txt"}).status, 0);
    EXPECT_THAT(mDir.Read("lint.txt"), EndsWith("number.\n# Meant.\n" + first));
    // A file of another kind is no baseline to be written again.
    EXPECT_EQ(Lint({"rules", "--write-baseline", "rules/FaultTreeRules.xml"}).status, 2);
    EXPECT_EQ(mDir.Read("rules/FaultTreeRules.xml"), RuleFile());
}

TEST_F(LintCommand, TakesItsOptionsFromAConfiguration)
{
    mDir.Write("config/lint.json", "{\"disable\": [\"A401\"], \"failLevel\": \"warning\", \"baseline\": \"known.txt\"}");
    mDir.Write("config/known.txt", "");
    EXPECT_EQ(Lint({"rules", "--config", "config/lint.json"}).out, "no findings\n");
    ASSERT_EQ(Lint({"rules", "--write-baseline", "config/known.txt"}).status, 0);
    mDir.Write("config/lint.json", "{\"baseline\": \"known.txt\"}");
    EXPECT_EQ(Lint({"rules", "--config", "config/lint.json"}).status, 0);
    EXPECT_EQ(Lint({"rules", "--config", "config/lint.json", "--no-baseline"}).status, 1);
    mDir.Write("config/lint.json", "{\"disabel\": []}");
    const auto unknown = Lint({"rules", "--config", "config/lint.json"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, "arborist: config/lint.json: unknown key \"disabel\"; did you mean \"disable\"?\n");
}

TEST_F(LintCommand, ReadsAnEditorsFileFromStandardInput)
{
    const ProcessSetup mended{.input = RuleFile(" detectScene=\"1\"")};
    EXPECT_EQ(Lint({"-", "--stdin-filename", "rules/FaultTreeRules.xml", "--format", "short"}, mended).out, "");
    const ProcessSetup renamed{.input = RuleFile().replace(RuleFile().find("<ID>E"), 5, "<ID>F")};
    EXPECT_THAT(Lint({"-", "--stdin-filename", "rules/FaultTreeRules.xml", "--format", "short"}, renamed).out,
        HasSubstr("rules/FaultTrees.xml:7:28: warning: no entry of \"EventRules\" is for the event \"E\" [A301]\n"));
    // Linted alone, checks that need the other file don't run.
    EXPECT_EQ(Lint({"-", "--format", "short"}, renamed).out,
        "-:12:10: error: the rule \"r\" names no scene [A401]\n");
}

TEST_F(LintCommand, ReadsFilesWithAPrefixAndOneTagAlone)
{
    fs::rename("rules/FaultTrees.xml", "rules/P_FaultTrees.xml");
    fs::rename("rules/FaultTreeRules.xml", "rules/P_FaultTreeRules.xml");
    EXPECT_EQ(Lint({"rules"}).status, 3);
    EXPECT_EQ(Lint({"rules", "--prefix", "P"}).status, 1);
    EXPECT_THAT(Lint({"rules", "--prefix", "P", "--tag", "laptop"}).out,
        HasSubstr("A102: tag or section that is not there\n  the tree file has no section \"laptop\"\n"));
}

TEST_F(LintCommand, ListsAndExplainsChecks)
{
    EXPECT_THAT(Lint({"--list"}).out, HasSubstr("\nA303  error    rule name that no rule has\n"));
    const auto explained = Lint({"--explain", "A401"});
    EXPECT_THAT(explained.out, StartsWith("A401 (error): rule without a scene\n\n"));
    EXPECT_THAT(explained.out, HasSubstr("\nBad, FaultTreeRules.xml:\n\n    <FaultTreeRules>\n"));
    EXPECT_THAT(explained.out, HasSubstr("<codeRule name=\"r\" detectScene=\"1\">"));
    EXPECT_EQ(Lint({"--explain", "A4"}).status, 2);
    EXPECT_EQ(Lint({}).status, 2);
}

TEST_F(LintCommand, ShowsNoControlCharactersOfAFile)
{
    Write(RuleFile("", "<codeRule name=\"\x1b[31m\"><detectInfo id=\"D\"/></codeRule>"));
    EXPECT_THAT(Lint({"rules"}).out, AllOf(HasSubstr("\\x1B[31m"), Not(HasSubstr("\x1b"))));
}

TEST_F(LintCommand, LooksForTheEventsOfRulesInALog)
{
    EventLogBuilder().Row({1700000000, 1001, "", ""}).WriteTo(mDir.Path("log.db"));
    const std::string rule = "<alarmRule name=\"a\" detectScene=\"1\"><alarmId Eventid_Max=\"1001\"/>"
                             "<alarmId Eventid_Min=\"1002\" Eventid_Max=\"1009\"/></alarmRule>";
    Write(RuleFile(" detectScene=\"1\"", rule));
    EXPECT_EQ(Lint({"rules", "--only", "A515"}).out, "no findings\n");
    EXPECT_THAT(Lint({"rules", "--only", "A515", "--log", "log.db", "--format", "short"}).out,
        AllOf(HasSubstr("info: the log has no row of the events 1002 to 1009, which the rule \"a\" counts [A515]\n"),
            Not(HasSubstr("1001"))));
    EXPECT_EQ(Lint({"rules", "--log", "none.db"}).status, 2);
}

TEST_F(LintCommand, TellsWhatAWideRangeHoldsOfALog)
{
    EventLogBuilder().Rows({{1700000000, 999, "", ""}, {1700000000, 1001, "", ""}, {1700000000, 1001, "", ""},
        {1700000000, 4000, "", ""}, {1700000000, 4001, "", ""}}).WriteTo(mDir.Path("log.db"));
    Write(RuleFile(" detectScene=\"1\"", "<alarmRule name=\"a\" detectScene=\"1\"><alarmId Eventid_Min=\"1000\" "
                                         "Eventid_Max=\"4000\"><time type=\"latest\" period=\"1\" threshold=\"1\"/>"
                                         "</alarmId></alarmRule>"));
    const std::vector<std::string> wide = {"rules", "--only", "A512", "--json"};
    EXPECT_EQ(ParsedJson(Lint(wide).out)["findings"][0]["help"].asString(), "name the ids that are logged");
    EXPECT_EQ(ParsedJson(Lint({"rules", "--only", "A512", "--json", "--log", "log.db"}).out)["findings"][0]["help"].asString(),
        "name the ids that are logged: the log has 3 rows of 2 of them; a detection looks at up to 3 rows, and if it has to ask "
        "for each id by itself, it needs 3001 scans of 5 rows");
}

TEST_F(LintCommand, LooksForNodeFilesBelowTheRootOfADevice)
{
    mDir.Write("device/sys/capacity", "80");
    const std::string rule = "<nodeRule name=\"n\" detectScene=\"1\"><nodeInfo param=\"a\" path=\"/sys/capacity\"/>"
                             "<nodeInfo param=\"b\" path=\"/sys/capactiy\"/></nodeRule>";
    Write(RuleFile(" detectScene=\"1\"", rule));
    EXPECT_EQ(Lint({"rules", "--only", "A714"}).out, "no findings\n");
    EXPECT_THAT(Lint({"rules", "--only", "A714", "--device-root", "device", "--format", "short"}).out,
        AllOf(HasSubstr("warning: the device has no file \"/sys/capactiy\", which the rule \"n\" reads [A714]\n"),
            Not(HasSubstr("capacity\""))));
}

} // namespace
