#include <filesystem>
#include <fstream>
#include <iterator>

#include <csignal>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/exit_status.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct WrongUseCase { const char* name; std::vector<std::string> arguments; const char* message; };
void PrintTo(const WrongUseCase& useCase, std::ostream* out) { *out << useCase.name; }
class WrongUse : public testing::TestWithParam<WrongUseCase> {};

TEST_P(WrongUse, IsToldAndAnswers2)
{
    const auto result = RunArborist(GetParam().arguments);
    EXPECT_THAT(result.err, StartsWith("arborist: " + std::string(GetParam().message)));
    EXPECT_THAT(result.err, HasSubstr("--help"));
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.status, 2);
}

INSTANTIATE_TEST_SUITE_P(Table, WrongUse, testing::Values(
    WrongUseCase{"NoCommand", {}, "A subcommand is required"},
    WrongUseCase{"MistypedCommand", {"detct", "b"}, "no such command: detct; did you mean \"detect\"?"},
    WrongUseCase{"MistypedSecondWord", {"log", "improt"}, "no such command: improt; did you mean \"import\"?"},
    WrongUseCase{"UnknownCommand", {"xyzzy"}, "no such command: xyzzy\n"},
    WrongUseCase{"NoSecondWord", {"log"}, "A subcommand is required"},
    WrongUseCase{"UnknownOption", {"detect", "b", "--frobnicate"}, "no such option: --frobnicate\n"},
    WrongUseCase{"MistypedOption", {"detect", "b", "--jsn"}, "no such option: --jsn; did you mean \"--json\"?"},
    WrongUseCase{"MistypedOptionWithValue", {"log", "show", "l", "--second=1"}, "no such option: --second; did you mean \"--seconds\"?"},
    WrongUseCase{"MistypedOptionOfAll", {"--versio"}, "no such option: --versio; did you mean \"--version\"?"},
    WrongUseCase{"NoBundle", {"detect"}, "BUNDLE is required"},
    WrongUseCase{"BatchAndBundle", {"detect", "b", "--batch", "list"}, "--batch excludes BUNDLE"},
    WrongUseCase{"JobsWithoutBatch", {"detect", "b", "--jobs", "2"}, "--jobs requires --batch"},
    WrongUseCase{"NoJobs", {"detect", "--batch", "list", "--jobs", "0"}, "--jobs: "},
    WrongUseCase{"TimeoutThatIsNone", {"detect", "--batch", "list", "--timeout", "nan"},
        "--timeout: must be a number of seconds from 0 to 86400: nan"},
    WrongUseCase{"TooLongTimeout", {"bundle", "pack", "b", "-o", "p", "--code-timeout", "inf"},
        "--code-timeout: must be a number of seconds from 0.001 to 86400: inf"},
    WrongUseCase{"NoTarget", {"bundle", "pack", "b", "-o", ""}, "--output: must not be empty"},
    WrongUseCase{"BadNow", {"detect", "b", "--now", "noon"},
        "--now: is neither \"YYYY-MM-DD HH:MM:SS\" nor seconds since the epoch: noon"},
    WrongUseCase{"BadZone", {"detect", "b", "--tz", "Mars"}, "--tz: names no time zone that this machine knows: Mars"},
    WrongUseCase{"BadLogLevel", {"detect", "b", "--log-level", "loud"},
        "--log-level: loud not in {trace,debug,info,warn,error,fatal,none}"}),
    CaseName());

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

// ---- Standard streams that are closed. ----

ProcessResult RunInShell(const std::string& arguments)
{
    return RunProcess({"sh", "-c", "exec '" ARBORIST_COMMAND "' " + arguments});
}

TEST(ClosedStreams, ResultsThatGoNowhereAreAnError)
{
    const TempDir dir;
    WriteHotBundle(dir, "b");
    for (const char* command : {"--version", "--help", "help detect", "completion fish", "detect b",
             "detect b --log-file log --log-level none", "bundle pack b -o packed.zip"}) {
        const auto result = RunInShell(std::string(command) + " >&-");
        EXPECT_EQ(result.err, "arborist: standard output could not be written\n") << command;
        EXPECT_EQ(result.status, 5) << command;
    }
    EXPECT_THAT(dir.Read("log"), testing::Not(HasSubstr("HOT (")));
    EXPECT_THAT(RunArborist({"detect", "packed.zip"}).out, HasSubstr("1. HOT"));
}

// Standard output is a pipe without a reader, as after "| head -1".
ProcessResult RunForNobody(const std::string& command, const ProcessSetup& setup)
{
    return RunProcess({"sh", "-c", "mkfifo nobody; exec 3<>nobody; exec >nobody; exec 3>&-; rm nobody; exec '"
        ARBORIST_COMMAND "' " + command}, setup);
}

TEST(ClosedStreams, AReaderWhoLeavesEndsTheCommandInSilence)
{
    const TempDir dir;
    dir.MakeDir("tmp");
    WriteHotBundle(dir, "b");
    dir.Write("list", "b\nb\nb\n");
    for (const char* command : {"--version", "--help", "help detect", "completion fish", "detect b --log-level none",
             "detect --json b b --log-level none", "detect --batch list --log-level none",
             "detect --batch list --ordered --log-level none", "explain b --log-level none",
             "graph b --log-level none"}) {
        const ProcessSetup setup{.environment = {{"TMPDIR", dir.Path("tmp")}}};
        std::signal(SIGPIPE, SIG_DFL);
        const auto result = RunForNobody(command, setup);
        EXPECT_EQ(result.err, "") << command;
        EXPECT_EQ(result.status, 128 + SIGPIPE) << command;
        EXPECT_TRUE(std::filesystem::is_empty("tmp")) << command;
        // If the signal is ignored, the failure is reported instead.
        std::signal(SIGPIPE, SIG_IGN);
        const auto told = RunForNobody(command, setup);
        std::signal(SIGPIPE, SIG_DFL);
        EXPECT_EQ(told.err, "arborist: standard output could not be written\n") << command;
        EXPECT_EQ(told.status, 5) << command;
        EXPECT_TRUE(std::filesystem::is_empty("tmp")) << command;
    }
}

TEST(ClosedStreams, WhatCannotBeReadIsNotTakenForEmpty)
{
    const TempDir dir;
    for (const char* input : {"<&-", "< ."}) {
        const auto list = RunInShell(std::string("detect --batch - ") + input);
        EXPECT_EQ(list.err, "arborist: standard input can't be read\n");
        EXPECT_EQ(list.status, 2);
        const auto events = RunInShell(std::string("log import - --to log.db ") + input);
        EXPECT_EQ(events.err, "arborist: -: can't be read\n");
        EXPECT_EQ(events.status, 4);
    }
    EXPECT_FALSE(dir.Has("log.db"));
}

TEST(ClosedStreams, MessagesThatGoNowhereChangeNothing)
{
    const TempDir dir;
    WriteHotBundle(dir, "b");
    const auto result = RunInShell("detect b nowhere 2>&- <&-");
    EXPECT_THAT(result.out, HasSubstr("1. HOT"));
    EXPECT_EQ(result.status, 4);
}

TEST(CommandLineTest, VersionIsAResult)
{
    for (const char* option : {"--version", "-V"}) {
        const auto result = RunArborist({option});
        EXPECT_THAT(result.out, testing::MatchesRegex("arborist [0-9]+\\.[0-9]+\\.[0-9]+\n")) << option;
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
