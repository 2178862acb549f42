#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

const std::string SOURCE = std::string(ARBORIST_SOURCE_DIR) + "/";

std::string Content(const std::string& path)
{
    std::ifstream file(SOURCE + path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The README's first block of a language, or a later one.
std::string Block(const std::string& language, std::size_t before = 0)
{
    const std::string readme = Content("README.md");
    const std::string fence = "```" + language + "\n";
    auto start = readme.find(fence);
    for (; before > 0; --before) {
        start = readme.find(fence, start + 1);
    }
    EXPECT_NE(start, std::string::npos) << language;
    const auto content = start + fence.size();
    return readme.substr(content, readme.find("```\n", content) - content);
}

TEST(ReadmeTest, ItsCommandsAreProgramsOfTheRepository)
{
    std::istringstream lines(Block("sh"));
    for (std::string line; std::getline(lines, line);) {
        const std::string program = line.substr(0, line.find(' '));
        EXPECT_EQ(access((SOURCE + program).c_str(), X_OK), 0) << program;
    }
}

class ReadmeOutputTest : public testing::Test {
protected:
    void SetUp() override { PrepareLaptop("build/demo/laptop"); }

    // As scripts/demo.sh runs it.
    static std::string OutputOf(const std::string& command)
    {
        const std::string runner = SOURCE + "examples/laptop/code-runner.sh";
        return RunArborist({command, "build/demo/laptop", "--code-runner", runner, "--log-file", "log"}).out;
    }

    TempDir mDir;
};

TEST_F(ReadmeOutputTest, ItsDetectionIsWhatTheDemoPrints)
{
    EXPECT_THAT(OutputOf("detect"), testing::StartsWith(Block("text")));
}

TEST_F(ReadmeOutputTest, ItsExplanationIsWhatTheDemoPrints)
{
    const std::string block = Block("text", 1);
    const std::string gap = "  ...\n";
    const auto end = block.find(gap);
    ASSERT_NE(end, std::string::npos);
    const std::string explanation = OutputOf("explain");
    EXPECT_THAT(explanation, HasSubstr(block.substr(0, end)));
    EXPECT_THAT(explanation, HasSubstr(block.substr(end + gap.size())));
}

// What it is, how to try it, and the result.
TEST(ReadmeTest, ItsFirstScreenHasTheExplanation)
{
    const std::string readme = Content("README.md");
    const auto explained = readme.substr(0, readme.find("3 missing"));
    EXPECT_LE(std::count(explained.begin(), explained.end(), '\n'), 45);
}

TEST(ReadmeTest, TheDemoExplains)
{
    EXPECT_THAT(Content("scripts/demo.sh"), HasSubstr("\"$arborist\" explain \"$demo/laptop\""));
}

TEST(ReadmeTest, ItsCodeIsPartOfTheMinimalHost)
{
    EXPECT_THAT(Content("examples/minimal-host/main.cpp"), HasSubstr(Block("cpp")));
}

TEST(ReadmeTest, ItsBundleIsOne)
{
    const TempDir dir;
    dir.Write("b/bundle.json", Block("json"));
    const auto result = RunArborist({"repair", "list", "b"});
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(result.status, 0);
}

TEST(MinimalHostTest, TellsAFaultWithItsCauseAndNoFaultOnlyWhereDataShowsIt)
{
    const TempDir dir;
    WriteHotBundle(dir, "b");
    const auto outputInBundle = [] { return RunProcess({MINIMAL_HOST, "rules", "Tag"}, {"", {}, "b"}).out; };
    EXPECT_EQ(outputInBundle(), "T: fault\n  HOT, described by D1\n");
    dir.Write("b/temperature", "20\n");
    EXPECT_EQ(outputInBundle(), "T: no_fault\n");
    std::filesystem::remove("b/temperature");
    EXPECT_EQ(outputInBundle(), "T: undecided\n");
}

TEST(MinimalHostTest, CallsAnExampleWithoutItsDataUndecided)
{
    const TempDir dir;
    ASSERT_EQ(RunProcess({"cp", "-r", SOURCE + "examples/laptop/rules", "rules"}).status, 0);
    const auto result = RunProcess({MINIMAL_HOST, "rules", "Laptop"});
    EXPECT_THAT(result.out, HasSubstr("LAPTOP_POWER: undecided\n"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(RunProcess({MINIMAL_HOST}).status, 2);
}

TEST(MinimalHostTest, SaysThatNoTreeWasDiagnosed)
{
    const TempDir dir;
    ASSERT_EQ(RunProcess({"cp", "-r", SOURCE + "examples/laptop/rules", "rules"}).status, 0);
    const auto missing = RunProcess({MINIMAL_HOST, "nowhere", "Laptop"});
    EXPECT_EQ(missing.out, "no tree\n");
    EXPECT_THAT(missing.err, HasSubstr("not exist"));
    EXPECT_EQ(RunProcess({MINIMAL_HOST, "rules", "Laptops"}).out, "no tree\n");
    dir.Write("rules/FaultTrees.xml", "<FaultTrees>");
    EXPECT_EQ(RunProcess({MINIMAL_HOST, "rules", "Laptop"}).out, "no tree\n");
}

} // namespace
