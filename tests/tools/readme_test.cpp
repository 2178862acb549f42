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

// What stands in the README's first block of a language.
std::string Block(const std::string& language)
{
    const std::string readme = Content("README.md");
    const std::string fence = "```" + language + "\n";
    const auto start = readme.find(fence);
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

TEST(ReadmeTest, ItsOutputIsWhatTheDemoPrints)
{
    const TempDir dir;
    const std::string laptop = SOURCE + "examples/laptop/";
    ASSERT_EQ(RunProcess({laptop + "prepare.sh", ARBORIST_COMMAND, "build/demo/laptop"}).status, 0);
    const auto result = RunArborist({"detect", "build/demo/laptop", "--code-runner", laptop + "code-runner.sh",
        "--log-file", "log"});
    EXPECT_THAT(result.out, testing::StartsWith(Block("text")));
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

TEST(MinimalHostTest, TellsTheRootCausesOfAnExample)
{
    const TempDir dir;
    ASSERT_EQ(RunProcess({"cp", "-r", SOURCE + "examples/laptop/rules", "rules"}).status, 0);
    const auto result = RunProcess({MINIMAL_HOST, "rules", "Laptop"});
    EXPECT_THAT(result.out, HasSubstr("LAPTOP_RADIO: no fault\n"));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(RunProcess({MINIMAL_HOST, "nowhere", "Laptop"}).err, HasSubstr("not exist"));
    EXPECT_EQ(RunProcess({MINIMAL_HOST}).status, 2);
}

} // namespace
