#include <filesystem>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/database_rows.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::SizeIs;

struct Example {
    std::string command;
    std::string output;
};

// The block of a language behind `at`, which is moved behind it; empty if there is none.
std::string NextBlock(const std::string& page, const std::string& language, std::size_t& at)
{
    const std::string fence = "\n```" + language + "\n";
    const auto start = page.find(fence, at);
    if (start == std::string::npos) {
        at = page.size();
        return "";
    }
    const auto end = page.find("```\n", start + fence.size());
    at = end;
    return page.substr(start + fence.size(), end - start - fence.size());
}

std::vector<Example> ExamplesOfThePage()
{
    const std::string page = PageOfDocs("results.md");
    std::vector<Example> examples;
    for (std::size_t at = 0; at < page.size();) {
        const std::string command = NextBlock(page, "sh", at);
        const std::string output = NextBlock(page, "text", at);
        if (!command.empty()) {
            examples.push_back({command, output});
        }
    }
    return examples;
}

// The files of the page, and the command in PATH.
class ResultsPageTest : public testing::Test {
protected:
    void SetUp() override
    {
        const std::string examples = std::string(ARBORIST_SOURCE_DIR) + "/examples/results/";
        for (const char* file : {"before.jsonl", "after.jsonl"}) {
            std::filesystem::copy_file(examples + file, mDir.Path(file));
        }
        std::filesystem::copy_file(examples + "before.jsonl", mDir.Path("results.jsonl"));
        ASSERT_EQ(RunArborist({"results", "import", "results.jsonl", "--to", "results.db"}).status, 0);
        const auto folder = std::filesystem::path(ARBORIST_COMMAND).parent_path().string();
        mSetup.environment = {{"PATH", folder + ":" + std::getenv("PATH")}};
    }

    TempDir mDir;
    ProcessSetup mSetup;
};

TEST_F(ResultsPageTest, EveryQuestionHasItsAnswer)
{
    if (RunProcess({"sh", "-c", "jq --version && sqlite3 --version"}).status != 0) {
        GTEST_SKIP() << "jq or sqlite3 is not installed";
    }
    const auto examples = ExamplesOfThePage();
    EXPECT_THAT(examples, SizeIs(11)); // ten questions and a comparison
    for (const Example& example : examples) {
        const auto result = RunProcess({"sh", "-c", example.command}, mSetup);
        EXPECT_EQ(result.out, example.output) << example.command << result.err;
        EXPECT_EQ(result.status, 0) << example.command;
    }
}

TEST_F(ResultsPageTest, NamesEveryTableAndEveryColumnOfTheViews)
{
    const std::string page = PageOfDocs("results.md");
    for (const std::string& name : DatabaseRows("results.db", "SELECT name FROM sqlite_master WHERE type IN ('table', 'view')")) {
        EXPECT_NE(page.find("`" + name + "`"), std::string::npos) << name;
    }
    for (const std::string& row : DatabaseRows("results.db", "SELECT v.name, c.name FROM sqlite_master AS v,"
             " pragma_table_info(v.name) AS c WHERE v.type = 'view'")) {
        const std::string view = row.substr(0, row.find('|'));
        const auto start = page.find("\n| `" + view + "` |");
        ASSERT_NE(start, std::string::npos) << view;
        const std::string line = page.substr(start + 1, page.find('\n', start + 1) - start);
        EXPECT_NE(line.find("`" + row.substr(view.size() + 1) + "`"), std::string::npos) << row;
    }
}

} // namespace
