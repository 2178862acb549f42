#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/database_rows.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ResultsCommandTest : public testing::Test {
protected:
    // The line that detect prints for a bundle.
    std::string DetectedLine(const std::string& name, std::vector<std::string> options = {})
    {
        options.insert(options.begin(), {"detect", "--json"});
        options.push_back(name);
        return RunArborist(options).out;
    }

    ProcessResult Import(std::vector<std::string> words)
    {
        words.insert(words.begin(), {"results", "import"});
        words.insert(words.end(), {"--to", "r.db"});
        return RunArborist(words);
    }

    TempDir mDir;
};

TEST_F(ResultsCommandTest, ImportsWhatDetectPrints)
{
    WriteHotBundle(mDir, "hot");
    mDir.Write("lines.jsonl", DetectedLine("hot") + DetectedLine("nowhere"));
    const auto result = Import({"lines.jsonl"});
    EXPECT_EQ(result.err, "arborist: r.db: 2 added\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(DatabaseRows("r.db", "SELECT bundle, ok, error FROM bundles"), ElementsAre("hot|1|", "nowhere|0|no_bundle"));
    EXPECT_THAT(DatabaseRows("r.db", "SELECT tree, cause, bundles FROM top_causes"), ElementsAre("T|HOT|1"));
    EXPECT_EQ(Import({"lines.jsonl"}).err, "arborist: r.db: 0 added, 2 there already\n");
}

TEST_F(ResultsCommandTest, TellsWhatItImportedAsJson)
{
    WriteHotBundle(mDir, "hot");
    const std::string hot = DetectedLine("hot"); // detected again it would be of another moment
    mDir.Write("first.jsonl", hot + DetectedLine("later"));
    WriteHotBundle(mDir, "later");
    mDir.Write("lines.jsonl", hot + DetectedLine("later") + "{}\n" + DetectedLine("cold"));
    mDir.Write("redaction.json", R"({"key": "sixteen bytes or more", "results": ["device"]})");
    Import({"first.jsonl"});
    const auto result = Import({"--json", "--skip-bad-lines", "--redact", "redaction.json", "lines.jsonl"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, R"({"schema": "arborist.results.import.1", "database": "r.db", "imported": true, "added": 1, )"
        R"("replaced": 1, "there": 1, "skipped": 1, "redacted": [{"part": "device", "values": 0}], )"
        R"("errors": [{"code": "bad_line", "message": "lines.jsonl:3: schema is missing"}]})" "\n");
    EXPECT_EQ(result.err, "arborist: lines.jsonl:3: schema is missing\n");
    const Json::Value schema = ParsedJson(PageOfDocs("results-import.schema.json"));
    EXPECT_THAT(Violations(schema, ParsedJson(result.out)), IsEmpty());
    for (const std::vector<std::string>& words : {std::vector<std::string>{"lines.jsonl"}, {"--redact", "nowhere", "lines.jsonl"}}) {
        auto failing = words;
        failing.insert(failing.begin(), "--json");
        const Json::Value failed = ParsedJson(Import(failing).out);
        EXPECT_THAT(Violations(schema, failed), IsEmpty());
        EXPECT_EQ(failed["imported"], false);
        EXPECT_EQ(failed["added"], 0);
        EXPECT_EQ(failed["errors"].size(), 1U);
    }
}

TEST_F(ResultsCommandTest, ImportsAtTheSameTimeLoseNothing)
{
    WriteHotBundle(mDir, "hot");
    const std::string line = DetectedLine("hot");
    std::string script;
    for (char shard = 'a'; shard <= 'h'; ++shard) {
        std::string renamed = line;
        renamed.insert(renamed.find("hot"), 1, shard);
        mDir.Write(std::string(1, shard), renamed);
        script += std::string("'" ARBORIST_COMMAND "' results import ") + shard + " --to r.db & ";
    }
    EXPECT_THAT(RunScript(script + "wait").err, Not(HasSubstr("locked")));
    EXPECT_THAT(DatabaseRows("r.db", "SELECT count(*) FROM bundle"), ElementsAre("8"));
}

TEST_F(ResultsCommandTest, ImportsFromStandardInput)
{
    WriteHotBundle(mDir, "hot");
    const auto result = RunScript("'" ARBORIST_COMMAND "' detect --json hot | '" ARBORIST_COMMAND "' results import - --to r.db");
    EXPECT_EQ(result.err, "arborist: r.db: 1 added\n");
}

TEST_F(ResultsCommandTest, KeepsEvidenceOfExplainedLinesIfAsked)
{
    WriteHotBundle(mDir, "hot");
    mDir.Write("lines.jsonl", DetectedLine("hot", {"--explain"}));
    EXPECT_EQ(Import({"--evidence", "lines.jsonl"}).status, 0);
    EXPECT_THAT(DatabaseRows("r.db", "SELECT event, json_extract(evidence, '$.fired') FROM evidence"), ElementsAre("HOT|1"));
}

TEST_F(ResultsCommandTest, TellsABadLineAndImportsNothing)
{
    mDir.Write("lines.jsonl", "\n{}\n");
    const auto result = Import({"lines.jsonl"});
    EXPECT_EQ(result.err, "arborist: lines.jsonl:2: schema is missing\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_FALSE(mDir.Has("r.db"));
    WriteHotBundle(mDir, "hot");
    mDir.Write("lines.jsonl", "{}\n" + DetectedLine("hot"));
    const auto skipped = Import({"--skip-bad-lines", "lines.jsonl"});
    EXPECT_EQ(skipped.err, "arborist: lines.jsonl:1: schema is missing\narborist: r.db: 1 added, 1 skipped\n");
    EXPECT_EQ(skipped.status, 0);
}

TEST_F(ResultsCommandTest, RefusesWhatIsNoDatabaseOfResults)
{
    WriteHotBundle(mDir, "hot");
    mDir.Write("lines.jsonl", DetectedLine("hot"));
    mDir.Write("r.db", std::string(1000, 'x'));
    const auto result = Import({"lines.jsonl"});
    EXPECT_THAT(result.err, HasSubstr("r.db: file is not a database"));
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(mDir.Read("r.db"), std::string(1000, 'x'));
}

TEST_F(ResultsCommandTest, TellsWhereTwoResultsDiffer)
{
    WriteHotBundle(mDir, "one");
    WriteHotBundle(mDir, "two");
    mDir.Write("before.jsonl", DetectedLine("one") + DetectedLine("two"));
    mDir.Write("two/temperature", "20\n");
    mDir.Write("after.jsonl", DetectedLine("two") + DetectedLine("one"));
    const auto same = RunArborist({"results", "diff", "--exit-code", "before.jsonl", "before.jsonl"});
    EXPECT_THAT(same.out, HasSubstr("\nroot causes: 0 new, 0 gone, 2 unchanged, 0 not comparable\n"));
    EXPECT_EQ(same.status, 0);
    const auto other = RunArborist({"results", "diff", "before.jsonl", "after.jsonl"});
    EXPECT_THAT(other.out, HasSubstr("\nroot causes: 0 new, 1 gone, 1 unchanged, 0 not comparable\n"));
    EXPECT_THAT(other.out, HasSubstr("\n  ~ T: fault -> no_fault in 1 bundle: two\n"));
    EXPECT_EQ(other.status, 0);
    EXPECT_EQ(RunArborist({"results", "diff", "--exit-code", "before.jsonl", "after.jsonl"}).status, 1);
}

TEST_F(ResultsCommandTest, ComparesWhatAPipeGives)
{
    WriteHotBundle(mDir, "hot");
    mDir.Write("lines.jsonl", DetectedLine("hot"));
    const auto result = RunScript("mkfifo pipe; cat lines.jsonl >pipe & "
        "'" ARBORIST_COMMAND "' results diff lines.jsonl pipe");
    EXPECT_THAT(result.out, HasSubstr("\nroot causes: 0 new, 0 gone, 1 unchanged, 0 not comparable\n"));
    EXPECT_EQ(result.err, "");
    const auto input = RunScript("'" ARBORIST_COMMAND "' results diff lines.jsonl /dev/stdin <lines.jsonl");
    EXPECT_EQ(input.status, 0) << input.err;
}

TEST_F(ResultsCommandTest, StandardInputCanOnlyBeOneSide)
{
    const auto result = RunArborist({"results", "diff", "-", "-"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "arborist: OLD and NEW can't both be standard input\n");
}

TEST_F(ResultsCommandTest, OfNoBundlesNeitherEngineNorVerdictsAreTold)
{
    mDir.Write("none.jsonl", "");
    const auto result = RunArborist({"results", "diff", "none.jsonl", "none.jsonl"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\n        engine not known\n"));
    EXPECT_THAT(result.out, Not(HasSubstr("verdicts in")));
}

TEST_F(ResultsCommandTest, DifferencesAreOneObjectOfJson)
{
    const Json::Value schema = ParsedJson(PageOfDocs("results-diff.schema.json"));
    const std::string examples = std::string(ARBORIST_SOURCE_DIR) + "/examples/results/";
    const auto result = RunArborist({"results", "diff", "--json", examples + "before.jsonl", examples + "after.jsonl"});
    const Json::Value diff = ParsedJson(result.out);
    EXPECT_THAT(Violations(schema, diff), IsEmpty());
    EXPECT_EQ(diff["new"].asInt() * 10 + diff["gone"].asInt(), 12);
    EXPECT_EQ(diff["causes"][0]["gone"]["examples"][1], "may/birch.zip");
    EXPECT_EQ(diff["notComparable"][0]["reason"], "failed_before");
    EXPECT_FALSE(diff["equal"].asBool());
    const auto failed = RunArborist({"results", "diff", "--json", "none.jsonl", examples + "after.jsonl"});
    EXPECT_THAT(Violations(schema, ParsedJson(failed.out)), IsEmpty());
    EXPECT_EQ(ParsedJson(failed.out)["error"]["code"], "no_results");
    EXPECT_EQ(failed.err, "arborist: none.jsonl: can't be read: No such file or directory\n");
    EXPECT_EQ(failed.status, 4);
}

TEST_F(ResultsCommandTest, LongListsOfDifferencesAreCut)
{
    std::string before;
    std::string after;
    for (int number = 10; number < 60; ++number) {
        const std::string tree = R"({"treeId": "T)" + std::to_string(number) + R"(", "version": "", "verdict": )";
        const std::string rest = R"(, "complete": true, "checks": {"total": 0, "decided": 0, "not_applicable": 0, )"
            R"("not_selected": 0, "not_checked": 0, "no_data": 0, "error": 0}, "open": [], "possibleCauses": [], )"
            R"("possibleCausesTruncated": false})";
        before += (before.empty() ? "" : ", ") + tree + R"("no_fault", "isFault": false, "rootCauses": [])" + rest;
        after += (after.empty() ? "" : ", ") + tree + R"("fault", "isFault": true, "rootCauses": [{"id": "A", "name": "", )"
            R"("userDefined": "", "faultDescription": "", "suggestions": [], "repairs": [], "cutSet": ["A"]}])" + rest;
    }
    const auto line = [](const std::string& trees) {
        return R"({"schema": "arborist.detect.1", "bundle": "b", "ok": true, "warnings": [], "results": [)" + trees + R"(], )"
            R"("error": {"code": "", "message": "", "retry": false}, "device": "", "engine": "1", "ruleSet": "", "now": "", )"
            R"("seconds": 0, "repaired": []})" "\n";
    };
    mDir.Write("before.jsonl", line(before));
    mDir.Write("after.jsonl", line(after));
    const auto result = RunArborist({"results", "diff", "before.jsonl", "after.jsonl"});
    EXPECT_THAT(result.out, HasSubstr("T39: A"));
    EXPECT_THAT(result.out, Not(HasSubstr("T40: A")));
    EXPECT_THAT(result.out, HasSubstr("\n  and 20 more, see --json\n"));
}

TEST_F(ResultsCommandTest, NeedsFilesAndATarget)
{
    EXPECT_EQ(RunArborist({"results", "import", "lines.jsonl"}).status, 2);
    EXPECT_EQ(RunArborist({"results", "import", "--to", "r.db"}).status, 2);
    EXPECT_EQ(RunArborist({"results", "diff", "before.jsonl"}).status, 2);
    EXPECT_EQ(RunArborist({"results"}).status, 2);
}

} // namespace
