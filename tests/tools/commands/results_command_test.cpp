#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/database_rows.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

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

TEST_F(ResultsCommandTest, NeedsFilesAndATarget)
{
    EXPECT_EQ(RunArborist({"results", "import", "lines.jsonl"}).status, 2);
    EXPECT_EQ(RunArborist({"results", "import", "--to", "r.db"}).status, 2);
    EXPECT_EQ(RunArborist({"results"}).status, 2);
}

} // namespace
