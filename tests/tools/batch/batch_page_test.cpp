#include <filesystem>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

#include "tests/tools/batch/batch_fixture.h"

namespace {

using testing::UnorderedElementsAreArray;

// The recipes of docs/batch.md.

// The first block of a language.
std::string Recipe(const std::string& language)
{
    std::ifstream file(std::string(ARBORIST_SOURCE_DIR) + "/docs/batch.md", std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::string fence = "```" + language + "\n";
    const auto start = page.find(fence) + fence.size();
    return page.substr(start, page.find("```\n", start) - start);
}

class BatchRecipeTest : public BatchTest {
protected:
    // Forty bundles in "devices", two of them broken, and the command in PATH.
    void SetUp() override
    {
        const auto names = WriteBundles(40);
        mDir.MakeDir("devices");
        for (const std::string& name : names) {
            std::filesystem::rename(name, "devices/" + name);
            mPaths.push_back(mDir.Path("devices/" + name));
        }
        const auto folder = std::filesystem::path(ARBORIST_COMMAND).parent_path().string();
        mSetup.environment = {{"PATH", folder + ":" + std::getenv("PATH")}, {"HOME", mDir.Path()}};
    }

    std::vector<std::string> mPaths;
    ProcessSetup mSetup;
};

TEST_F(BatchRecipeTest, GnuParallelRunsAllPieces)
{
    if (RunProcess({"sh", "-c", "parallel --version | grep -q GNU"}).status != 0) {
        GTEST_SKIP() << "GNU parallel is not installed";
    }
    mDir.Write("machines.txt", ":\n");
    std::string recipe = Recipe("sh");
    recipe.replace(recipe.find("--max-args 500"), 14, "--max-args 15");
    const auto result = RunProcess({"sh", "-c", recipe}, mSetup);
    EXPECT_THAT(Outcomes(mDir.Read("results.jsonl")), UnorderedElementsAreArray(ExpectedOutcomes(mPaths))) << result.err;
    EXPECT_EQ(Lines(mDir.Read("pieces.log")).size(), 1U + 3U);
}

TEST_F(BatchRecipeTest, ASlurmArrayRunsAllTasks)
{
    mDir.Write("bundles.txt", Joined(mPaths));
    mDir.MakeDir("results");
    std::string script = Recipe("bash");
    script.replace(script.find("/200"), 4, "/3");
    mDir.Write("diagnose.sh", script);
    for (const char* task : {"1", "2", "3"}) {
        mSetup.environment["SLURM_ARRAY_TASK_COUNT"] = "1"; // as for a task that is submitted again by itself
        mSetup.environment["SLURM_ARRAY_TASK_ID"] = task;
        mSetup.environment["SLURM_CPUS_PER_TASK"] = "2";
        EXPECT_EQ(RunProcess({"bash", "diagnose.sh"}, mSetup).status, 0);
    }
    EXPECT_THAT(Outcomes(mDir.Read("results/1.jsonl") + mDir.Read("results/2.jsonl") + mDir.Read("results/3.jsonl")),
        UnorderedElementsAreArray(ExpectedOutcomes(mPaths)));
}

} // namespace
