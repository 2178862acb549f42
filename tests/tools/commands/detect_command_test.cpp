#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/sqlite/connection.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "arborist/arborist_version.h"
#include "diagnosis/digest/digest.h"
#include "tests/support/pattern.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class DetectCommandTest : public testing::Test {
protected:
    TempDir mDir;
};

TEST_F(DetectCommandTest, AFaultIsToldWithAllItsIds)
{
    WriteHotBundle(mDir, "b");
    const auto result = RunArborist({"detect", "b"});
    EXPECT_EQ(result.out, "b\n"
                          "  T (version 3): FAULT, 1 root cause\n"
                          "    1. HOT  Too hot\n"
                          "       description   D1\n"
                          "       suggestions   S1, S2\n"
                          "       repair        R1, operation clean, extra {\"R1\": \"{\\\"operat\\u0069on\\\": "
                          "\\\"clean\\\"}\"}\n"
                          "       user defined  {}\n"
                          "  1 tree: 1 fault\n");
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(result.status, 0);
}

TEST_F(DetectCommandTest, JsonHasExactlyTheKeysInTheirOrder)
{
    WriteHotBundle(mDir, "b");
    const auto result = RunArborist({"detect", "--json", "b", "--now", "2024-05-20 12:00:00"});
    EXPECT_EQ(WithoutSeconds(result.out),
        R"({"schema": "arborist.detect.1", "bundle": "b", "ok": true, "warnings": [], "results": [{"treeId": "T", )"
        R"("version": "3", "isFault": true, "rootCauses": [{"id": "HOT", "name": "Too hot", "userDefined": "{}", )"
        R"("faultDescription": "D1", "suggestions": ["S1", "S2"], "repairs": [{"id": "R1", )"
        R"("extra": "{\"R1\": \"{\\\"operat\\u0069on\\\": \\\"clean\\\"}\"}", "operation": "clean"}], "cutSet": ["T/HOT"]}], )"
        R"("verdict": "fault", "complete": true, "checks": {"total": 1, "decided": 1, "not_applicable": 0, )"
        R"("not_selected": 0, "not_checked": 0, "no_data": 0, "error": 0}, "open": [], "possibleCauses": [], )"
        R"("possibleCausesTruncated": false}], "error": {"code": "", "message": "", "retry": false}, "device": "", )"
        R"("engine": ")" ARBORIST_VERSION_STRING R"(", "ruleSet": "sha256:3b266238f927cd76d303c71f7a786d0ddfdf286ce9d7065872196280252e0480", )"
        R"("now": "2024-05-20 12:00:00", "seconds": 0, "repaired": []})"
        "\n");
    EXPECT_EQ(result.status, 0);
}

TEST_F(DetectCommandTest, TheLineHasTheRepairsOnRecordAtItsMoment)
{
    WriteHotBundle(mDir, "b");
    for (const auto& [repair, date] : {std::pair("R2", "2024-05-03 10:00:00"), std::pair("R1", "2024-05-01 10:00:00")}) {
        EXPECT_EQ(RunArborist({"repair", "record", "b", repair, "--now", date}).status, 0);
    }
    const auto endOf = [](const std::vector<std::string>& call) {
        std::vector<std::string> arguments{"detect", "--json"};
        arguments.insert(arguments.end(), call.begin(), call.end());
        const std::string line = RunArborist(arguments).out;
        return line.substr(line.find("\"repaired\": "));
    };
    EXPECT_EQ(endOf({"b"}), R"("repaired": [{"id": "R2", "date": "2024-05-03 10:00:00"}, {"id": "R1", "date": "2024-05-01 10:00:00"}]})"
        "\n");
    EXPECT_EQ(endOf({"b", "--as-of", "2024-05-02 10:00:00"}), R"("repaired": [{"id": "R1", "date": "2024-05-01 10:00:00"}]})" "\n");
    EXPECT_EQ(endOf({"nowhere"}), "\"repaired\": []}\n");
    mDir.Write("b/rules/FaultTrees.xml", "<");
    EXPECT_EQ(endOf({"b"}), "\"repaired\": []}\n");
}

TEST_F(DetectCommandTest, TheLineTakesTenThousandRepairsOfAForeignDatabase)
{
    WriteHotBundle(mDir, "b");
    EXPECT_EQ(RunArborist({"repair", "record", "b", "R", "--now", "2024-05-01 10:00:00"}).status, 0);
    diagnosis::Connection records;
    ASSERT_TRUE(records.Open("b/programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db",
        diagnosis::Connection::Mode::CREATE));
    ASSERT_TRUE(records.Execute("DROP TABLE repair_data; CREATE VIEW repair_data AS WITH RECURSIVE n(i) AS"
        " (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20000)"
        " SELECT i AS _id, 'R' || i AS repair_id, '2024-05-01 10:00:00' AS repair_date FROM n")) << records.GetError();
    EXPECT_EQ(ParsedJson(RunArborist({"detect", "--json", "b"}).out)["repaired"].size(), 10'000U);
}

TEST_F(DetectCommandTest, EqualInputsGiveEqualLinesButForTheSeconds)
{
    PrepareLaptop("laptop");
    WriteHotBundle(mDir, "b", BundleJson(R"(, "now": "2024-05-20 12:00:00")"));
    for (const std::string more : {"--json", "--tree", "--explain"}) {
        const std::string once = RunArborist({"detect", "--json", more, "laptop", "b", "nowhere"}).out;
        EXPECT_EQ(WithoutSeconds(RunArborist({"detect", "--json", more, "laptop", "b", "nowhere"}).out), WithoutSeconds(once));
        EXPECT_NE(WithoutSeconds(once), once);
    }
}

TEST_F(DetectCommandTest, ADigestIsThatOfTheTwoRuleFilesWhereverTheyLie)
{
    WriteHotBundle(mDir, "b");
    WriteHotBundle(mDir, "other");
    mDir.Write("bare/bundle.json", BundleJson(R"(, "ruleFileDir": "nowhere")"));
    const auto digestOf = [](const std::vector<std::string>& call) {
        std::vector<std::string> arguments{"detect", "--json"};
        arguments.insert(arguments.end(), call.begin(), call.end());
        return ParsedJson(RunArborist(arguments).out)["ruleSet"].asString();
    };
    const std::string digest = digestOf({"b"});
    EXPECT_EQ(digest, "sha256:" + diagnosis::Sha256HexOf({mDir.Read("b/rules/FaultTrees.xml"),
                                      mDir.Read("b/rules/FaultTreeRules.xml")}));
    EXPECT_EQ(digestOf({"other"}), digest);
    EXPECT_EQ(digestOf({"--rules", "b/rules", "bare"}), digest);
    EXPECT_EQ(digestOf({"bare"}), "");
    EXPECT_EQ(digestOf({"nowhere"}), "");
    mDir.Write("other/rules/FaultTrees.xml", mDir.Read("other/rules/FaultTrees.xml") + "<");
    EXPECT_NE(digestOf({"other"}), digest); // it is no XML, but its bytes can be read
    EXPECT_NE(digestOf({"other"}), "");
}

TEST_F(DetectCommandTest, AHealthyTreeHasAResultWithoutRootCauses)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("b/temperature", "20\n");
    EXPECT_EQ(RunArborist({"detect", "b"}).out, "b\n  T (version 3): no fault\n  1 tree: 1 no fault\n");
    EXPECT_THAT(RunArborist({"detect", "--json", "b"}).out,
        HasSubstr(R"("results": [{"treeId": "T", "version": "3", "isFault": false, "rootCauses": [], )"
        R"("verdict": "no_fault", "complete": true, "checks": {"total": 1, "decided": 1, "not_applicable": 0, )"
        R"("not_selected": 0, "not_checked": 0, "no_data": 0, "error": 0}, "open": [], "possibleCauses": [], )"
        R"("possibleCausesTruncated": false}], "error": )"));
}

TEST_F(DetectCommandTest, TreeShowsEachEventWithItsStatus)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Tree("T", Or({Basic("HOT"), Intermediate("G",
        And({Basic("HOT"), Xml("House-Event").TextChild("ID", "U")}))})).Text());
    EXPECT_THAT(RunArborist({"detect", "--tree", "b"}).out, EndsWith("    TRUE    T OR\n"
                                                                    "    TRUE      HOT\n"
                                                                    "    UNKNOWN   G AND\n"
                                                                    "    TRUE        HOT\n"
                                                                    "    UNKNOWN     U (undeveloped)\n"
                                                                    "  1 tree: 1 fault\n"));
    EXPECT_THAT(RunArborist({"detect", "--tree", "--json", "b"}).out,
        HasSubstr(R"("tree": {"id": "T", "name": "", "kind": "intermediate", "gate": "or", "status": "TRUE", )"
                  R"("observable": false, "check": "", "restsOnDefault": false, "children": [{"id": "HOT", "name": "", )"
                  R"("kind": "basic", "gate": "", "status": "TRUE", "observable": false, "check": "decided", )"
                  R"("restsOnDefault": false, "children": []}, {"id": "G")"));
}

struct BadBundleCase {
    const char* name;
    /// Files to write over those of a good bundle; an empty text removes the file.
    std::vector<std::pair<std::string, std::string>> files;
    const char* code;
    const char* message;
    int status;
};
void PrintTo(const BadBundleCase& badCase, std::ostream* out) { *out << badCase.name; }
class BadBundle : public testing::TestWithParam<BadBundleCase> {};

TEST_P(BadBundle, IsNamedWithItsReasonAndTheNextBundleGoesOn)
{
    const TempDir dir;
    WriteHotBundle(dir, "bad");
    WriteHotBundle(dir, "good");
    for (const auto& [file, content] : GetParam().files) {
        if (content.empty()) {
            std::filesystem::remove(file);
        } else {
            dir.Write(file, content);
        }
    }
    const auto text = RunArborist({"detect", "bad", "good"});
    EXPECT_THAT(text.out, AllOf(StartsWith("bad\n  NOT DIAGNOSED\ngood\n"), HasSubstr("FAULT")));
    EXPECT_EQ(text.err, "arborist: bad: " + std::string(GetParam().message) + " [" + GetParam().code + "]\n");
    EXPECT_EQ(text.status, GetParam().status);

    const auto json = RunArborist({"detect", "--json", "bad", "good"});
    EXPECT_THAT(json.out, StartsWith(R"({"schema": "arborist.detect.1", "bundle": "bad", "ok": false, "warnings": [], )"
        R"("results": [], "error": {"code": ")" + std::string(GetParam().code) + R"(", "message": ")"));
    EXPECT_THAT(json.out, HasSubstr(R"(, "retry": false}, "device": "", "engine": ")" ARBORIST_VERSION_STRING R"(", "ruleSet": ")"));
    EXPECT_THAT(json.out, HasSubstr("\n{\"schema\": \"arborist.detect.1\", \"bundle\": \"good\", \"ok\": true"));
    EXPECT_THAT(json.err, IsEmpty());
    EXPECT_EQ(json.status, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(Table, BadBundle, testing::Values(
    BadBundleCase{"NoBundleJson", {{"bad/bundle.json", ""}}, "no_bundle_json",
        "bad/bundle.json: no such file; a bundle is a folder or a zip with a bundle.json", 4},
    BadBundleCase{"BadJson", {{"bad/bundle.json", "{\"treeTag\": }"}}, "bad_json",
        "bad/bundle.json: line 1, column 13: Syntax error: value, object or array expected.", 4},
    BadBundleCase{"TextBehindTheJson", {{"bad/bundle.json", "{} {}"}}, "bad_json",
        "bad/bundle.json: line 1, column 4: Extra non-whitespace after JSON value.", 4},
    BadBundleCase{"KeyTwice", {{"bad/bundle.json", R"({"treeTag": "a", "treeTag": "b"})"}}, "bad_json",
        "bad/bundle.json: line 1, column 18: Duplicate key: 'treeTag'", 4},
    BadBundleCase{"NoObject", {{"bad/bundle.json", "[]"}}, "bad_bundle",
        "bad/bundle.json: must hold an object, not a list", 4},
    BadBundleCase{"WrongTypes", {{"bad/bundle.json", R"({"treeTag": 5, "detectScene": "1", "device": []})"}},
        "bad_bundle", "bad/bundle.json: \"detectScene\" must be a number, not a text; \"treeTag\" must be a text, not a "
        "number; \"device\" must be an object, not a list", 4},
    BadBundleCase{"RuleFileMissing", {{"bad/rules/FaultTreeRules.xml", ""}}, "rule_file_missing",
        "rules/FaultTreeRules.xml: no such file", 3},
    BadBundleCase{"TreeFileMissing", {{"bad/rules/FaultTrees.xml", ""}}, "rule_file_missing",
        "rules/FaultTrees.xml: no such file", 3},
    BadBundleCase{"BothFilesMissing", {{"bad/rules/FaultTrees.xml", ""}, {"bad/rules/FaultTreeRules.xml", ""}},
        "rule_file_missing", "rules/FaultTrees.xml: no such file; rules/FaultTreeRules.xml: no such file", 3},
    BadBundleCase{"NoTreeUnderTheTag", {{"bad/bundle.json", R"({"detectScene": 1, "treeTag": "Other"})"}}, "no_tree",
        "rules/FaultTrees.xml: no tree under the tag \"Other\"", 3},
    BadBundleCase{"NoTreeUnderAMistypedTag", {{"bad/bundle.json", R"({"detectScene": 1, "treeTag": "tag"})"}},
        "no_tree", "rules/FaultTrees.xml: no tree under the tag \"tag\"; did you mean \"Tag\"?", 3}),
    CaseName());

TEST_F(DetectCommandTest, AMalformedRuleFileIsNamedWithItsLine)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("b/rules/FaultTrees.xml", "<a>\n  <b>\n</a>\n");
    const auto result = RunArborist({"detect", "--log-level", "none", "b"});
    EXPECT_THAT(result.err, StartsWith("arborist: b: rules/FaultTrees.xml:2: "));
    EXPECT_THAT(result.err, EndsWith(" [rule_file_malformed]\n"));
    EXPECT_EQ(result.status, 3);
}

TEST_F(DetectCommandTest, APatternThatIsNoRegularExpressionIsNamedWithItsEntry)
{
    WriteHotBundle(mDir, "bad", BundleJson(R"(, "settings": {"AppDatabaseDir": "databases"})"));
    WriteHotBundle(mDir, "good");
    const auto entry = [](const std::string& name, const std::string& pattern) {
        return Xml("defDBTable").Attr("name", name)
            .Child(Xml("dbPaths").Child(
                Xml("dbPath").Attr("decompression", "true").Attr("type", "folder").Attr("value", "found")))
            .Child(Xml("dbName").Attr("name", pattern));
    };
    mDir.Write("bad/found/a.db", "x");
    mDir.Write("bad/rules/FaultTreeRules.xml",
        RuleXml("Tag").CommonPart({entry("FINE", ".*\\.db"), entry("BROKEN", "[a<\"")}).Text());
    const auto result = RunArborist({"detect", "--log-level", "none", "bad", "good"});
    EXPECT_THAT(result.err, HasSubstr("\narborist: bad: rules/FaultTreeRules.xml: the dbName pattern \"[a<\"\" of the "
        "defDBTable \"BROKEN\" is no regular expression: "));
    EXPECT_THAT(result.err, HasSubstr("arborist: bad: warning: rules/FaultTreeRules.xml:3: the pattern of the databases "
        "\"BROKEN\" is no regular expression; put a backslash before a sign that means itself [A817]\n"));
    EXPECT_THAT(result.err, EndsWith(" [bad_pattern]\n"));
    EXPECT_THAT(result.out, AllOf(StartsWith("bad\n  NOT DIAGNOSED\ngood\n"), HasSubstr("FAULT")));
    EXPECT_EQ(result.status, 3);
    const auto verified = RunArborist({"bundle", "verify", "bad"});
    EXPECT_THAT(verified.out, HasSubstr("broken            rules/FaultTreeRules.xml: the dbName pattern \"[a<\"\""));
    EXPECT_EQ(verified.status, 3);
}

TEST_F(DetectCommandTest, AFolderThatIsNoneIsNamed)
{
    mDir.Write("file", "x");
    const auto result = RunArborist({"detect", "nowhere", "file"});
    EXPECT_EQ(result.err, "arborist: nowhere: no such folder or zip [no_bundle]\n"
                          "arborist: file: is neither a folder nor a zip [no_bundle]\n");
    EXPECT_EQ(result.status, 4);
}

TEST_F(DetectCommandTest, TheMostSeriousStatusOfAllBundlesCounts)
{
    WriteHotBundle(mDir, "fault");
    WriteHotBundle(mDir, "ruleless");
    std::filesystem::remove_all("ruleless/rules");
    EXPECT_EQ(RunArborist({"detect", "fault"}).status, 0);
    EXPECT_EQ(RunArborist({"detect", "--fail-on-fault", "fault"}).status, 1);
    EXPECT_EQ(RunArborist({"detect", "--fail-on-fault", "ruleless", "fault"}).status, 3);
    EXPECT_EQ(RunArborist({"detect", "--fail-on-fault", "nowhere", "ruleless", "fault"}).status, 4);
    mDir.Write("fault/temperature", "1");
    EXPECT_EQ(RunArborist({"detect", "--fail-on-fault", "fault"}).status, 0);
}

TEST_F(DetectCommandTest, AnUnknownKeyIsAWarningWithTheNearestKey)
{
    WriteHotBundle(mDir, "b", BundleJson(R"(, "ruleFilDir": "x", "device": {"Produkt": "P"}, "zzzzzz": 1)"));
    const auto text = RunArborist({"detect", "b"});
    EXPECT_EQ(text.err,
        "arborist: b: warning: b/bundle.json: unknown key \"device.Produkt\"; did you mean \"Product\"?\n"
        "arborist: b: warning: b/bundle.json: unknown key \"ruleFilDir\"; did you mean \"ruleFileDir\"?\n"
        "arborist: b: warning: b/bundle.json: unknown key \"zzzzzz\"\n");
    EXPECT_THAT(text.out, HasSubstr("FAULT"));
    EXPECT_THAT(RunArborist({"detect", "--json", "b"}).out, HasSubstr(R"("ok": true, "warnings": [{"code": "unknown_key", )"
        R"("message": "b/bundle.json: unknown key \"device.Produkt\"; did you mean \"Product\"?", "id": "", "rule": "", "event": "", "file": "", "line": 0})"));
    EXPECT_EQ(text.status, 0);
}

TEST_F(DetectCommandTest, ARuleFileWithoutRulesOfTheTagIsAWarning)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("b/rules/FaultTreeRules.xml", RuleXml("Other").Text());
    const auto result = RunArborist({"detect", "b"});
    EXPECT_EQ(result.err, "arborist: b: warning: rules/FaultTreeRules.xml:1: no rule under the tree tag [A102]\n"
        "arborist: b: warning: rules/FaultTreeRules.xml:1: the rule file has no section \"EventRules\" [A102]\n");
    EXPECT_THAT(result.out, HasSubstr("no fault"));
}

TEST_F(DetectCommandTest, RuleFilesHaveTheGivenFolderAndPrefix)
{
    WriteHotBundle(mDir, "b", BundleJson(R"(, "ruleFileDir": "other/", "ruleFilePrefix": "P")"));
    mDir.MakeDir("b/other");
    std::filesystem::rename("b/rules/FaultTrees.xml", "b/other/P_FaultTrees.xml");
    std::filesystem::rename("b/rules/FaultTreeRules.xml", "b/other/P_FaultTreeRules.xml");
    EXPECT_THAT(RunArborist({"detect", "b"}).out, HasSubstr("FAULT"));
}

TEST_F(DetectCommandTest, AbsoluteNodePathsLieBelowTheDeviceRootOfTheirOwnBundle)
{
    const auto path = mDir.Path("temperature");
    const auto isHot = ConditionXml({SingleLogicXml(TestXml("gt", "t", "70"))});
    const auto rules = RuleXml("Tag").EventRule("HOT", {Single("hot")}).Rule(NodeRuleXml("hot",
        {NodeInfoXml("T", path), ParamsXml({ParamXml("t", "T", "int")}), isHot})).Text();
    WriteHotBundle(mDir, "captured", BundleJson(R"(, "settings": {"DeviceRootDir": "root"})"));
    WriteHotBundle(mDir, "live");
    mDir.Write("captured/rules/FaultTreeRules.xml", rules);
    mDir.Write("live/rules/FaultTreeRules.xml", rules);
    mDir.Write("captured/root" + path, "90");
    mDir.Write("temperature", "20");
    EXPECT_THAT(RunArborist({"detect", "captured", "live", "captured"}).out,
        MatchesPattern("captured\n.*FAULT(.|\n)*live\n.*no fault, UNDECIDED(.|\n)*captured\n.*FAULT(.|\n)*"));
}

TEST_F(DetectCommandTest, StandardOutputHasResultsOnlyWhateverTheLogLevel)
{
    WriteHotBundle(mDir, "b");
    const auto quiet = RunArborist({"detect", "--json", "b"});
    const auto loud = RunArborist({"detect", "--json", "--log-level", "trace", "b"});
    EXPECT_EQ(WithoutTimes(loud.out), WithoutTimes(quiet.out));
    EXPECT_THAT(quiet.err, IsEmpty());
    EXPECT_THAT(loud.err, HasSubstr("[[WARN] ]:FUNc:RuleEngine::RunRules: check error true HOT:Too hot\n"));
    EXPECT_THAT(RunArborist({"detect", "--log-level", "error", "b"}).err, IsEmpty());
    EXPECT_THAT(RunArborist({"detect", "--log-level", "warn", "b"}).err,
        AllOf(HasSubstr("check error true"), Not(HasSubstr("[INFO]"))));
}

TEST_F(DetectCommandTest, TheLogFileTakesTheWholeLogInTheStartingDirectory)
{
    WriteHotBundle(mDir, "b");
    const auto result = RunArborist({"detect", "--log-file", "log", "b"});
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_THAT(mDir.Read("log"), AllOf(HasSubstr("[[DEBUG] ]:FUNc:"), HasSubstr("[[WARN] ]:FUNc:RuleEngine::RunRules")));
    const auto both = RunArborist({"detect", "--log-file", "log", "--log-level", "warn", "b"});
    EXPECT_THAT(both.err, HasSubstr("check error true"));
}

TEST_F(DetectCommandTest, ALogFileThatCannotBeWrittenIsWrongUse)
{
    WriteHotBundle(mDir, "b");
    const auto result = RunArborist({"detect", "--log-file", "no/such/folder/log", "b"});
    EXPECT_EQ(result.err, "arborist: no/such/folder/log: can't be written: No such file or directory\n");
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.status, 2);
}

TEST_F(DetectCommandTest, ALogThatCannotBeWrittenToItsEndIsToldOnce)
{
    WriteHotBundle(mDir, "b");
    const std::string told = "arborist: /dev/full: can't be written: No space left on device\n";
    const auto single = RunArborist({"detect", "--log-file", "/dev/full", "b"});
    EXPECT_THAT(single.out, HasSubstr("1. HOT"));
    EXPECT_EQ(single.err, told);
    EXPECT_EQ(single.status, 5);
    // The workers write the lines.
    const auto batch = RunArborist({"detect", "--log-file", "/dev/full", "--batch", "-", "--jobs", "2"},
        {.input = "b\nb\nb\n"});
    EXPECT_EQ(std::count(batch.out.begin(), batch.out.end(), '\n'), 3);
    EXPECT_THAT(batch.err, AllOf(HasSubstr(" 3 with faults, 0 not diagnosed\n"), EndsWith("\n" + told)));
    EXPECT_EQ(batch.status, 5);
}

TEST_F(DetectCommandTest, ResultsThatCannotBeWrittenAreAnInternalError)
{
    WriteHotBundle(mDir, "b");
    const auto result = RunScript("'" ARBORIST_COMMAND "' detect b > /dev/full");
    EXPECT_EQ(result.err, "arborist: standard output could not be written\n");
    EXPECT_EQ(result.status, 5);
}

TEST_F(DetectCommandTest, TextsOfStrangersDoNotSteerTheTerminal)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("b/rules/FaultTrees.xml",
        TreeXml("Tag").Tree("T\x1b[31m", Or({Basic("HOT", {"a\nb\xff", "", "", ""})})).Text());
    EXPECT_THAT(RunArborist({"detect", "b"}).out, AllOf(HasSubstr("T\\x1B[31m"), HasSubstr("a\\x0Ab\\xFF\n")));
    EXPECT_THAT(RunArborist({"detect", "--json", "b"}).out,
        AllOf(HasSubstr("T\\u001b[31m"), HasSubstr("a\\nb\xEF\xBF\xBD\"")));
}

TEST_F(DetectCommandTest, AMomentThatTheZoneLacksIsTold)
{
    WriteHotBundle(mDir, "b", BundleJson(R"(, "tz": "CET-1CEST,M3.5.0,M10.5.0/3", "now": "2024-03-31 02:30:00")"));
    const auto result = RunArborist({"detect", "b"});
    EXPECT_THAT(result.err, HasSubstr("the moment \"2024-03-31 02:30:00\" does not exist in the time zone CET-1CEST"));
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(RunArborist({"detect", "--tz", "UTC", "b"}).status, 0);
    EXPECT_EQ(RunArborist({"detect", "--now", "1711800000", "b"}).status, 0);
}

} // namespace
