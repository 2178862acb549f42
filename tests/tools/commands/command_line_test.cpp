#include <fstream>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/exit_status.h"
#include "tests/support/pattern.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(CommandLineTest, NamesOfOtherCommandsAreArgumentsBehindTheFirst)
{
    const TempDir dir;
    for (const char* first : {"detect", "explain", "report"}) {
        EXPECT_THAT(RunArborist({first, "query"}).err, HasSubstr("query: no such folder"));
    }
}

TEST(CommandLineTest, HelpIsAResultWithTheExitStatuses)
{
    const auto help = RunArborist({"--help"});
    EXPECT_THAT(help.out, AllOf(HasSubstr("detect"), HasSubstr("query"), HasSubstr("repair"), HasSubstr("log"),
        HasSubstr("3  a rule set could not be used")));
    EXPECT_THAT(help.err, IsEmpty());
    EXPECT_EQ(help.status, 0);
    for (const auto& command : std::vector<std::vector<std::string>>{{"detect"}, {"query"}, {"repair", "record"},
             {"repair", "list"}, {"log", "import"}, {"log", "show"}}) {
        auto arguments = command;
        arguments.emplace_back("--help");
        const auto result = RunArborist(arguments);
        EXPECT_THAT(result.out, HasSubstr(command.back())) << command.back();
        EXPECT_EQ(result.status, 0) << command.back();
    }
}

TEST(CommandLineTest, WrongUseNamesTheHelpOfTheCommand)
{
    EXPECT_THAT(RunArborist({"log", "improt"}).err, testing::EndsWith("Try 'arborist log --help'.\n"));
    EXPECT_THAT(RunArborist({"log", "show"}).err, testing::EndsWith("Try 'arborist log show --help'.\n"));
}

TEST(CommandLineTest, VersionIsAResult)
{
    for (const char* option : {"--version", "-V"}) {
        const auto result = RunArborist({option});
        EXPECT_THAT(result.out, MatchesPattern("arborist [0-9]+\\.[0-9]+\\.[0-9]+\n")) << option;
        EXPECT_EQ(result.status, 0) << option;
    }
}

// The table of docs/command.md, the help and each man page have every number, and no other.
TEST(CommandLineTest, AllPagesHaveEveryExitStatus)
{
    const std::string help = RunArborist({"--help"}).out;
    const std::string page = RunArborist({"help", "detect", "--man"}).out;
    std::ifstream file(std::string(ARBORIST_SOURCE_DIR) + "/docs/command.md");
    const std::string docs{std::istreambuf_iterator<char>(file), {}};
    for (int status = 0; status <= 7; ++status) {
        const std::string number = std::to_string(status);
        const bool exists = status <= static_cast<int>(diagnosis::ExitStatus::UNDECIDED);
        EXPECT_EQ(help.find("\n  " + number + "  ") != std::string::npos, exists) << help;
        EXPECT_EQ(page.find("\n\\fB" + number + "\\fR\n") != std::string::npos, exists) << page;
        EXPECT_EQ(docs.find("\n| " + number + " | ") != std::string::npos, exists) << number;
    }
}

} // namespace
