#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"
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
    WrongUseCase{"UnknownOption", {"detect", "b", "--frobnicate"}, "The following argument was not expected: --frobnicate"},
    WrongUseCase{"NoBundle", {"detect"}, "BUNDLE is required"},
    WrongUseCase{"BatchAndBundle", {"detect", "b", "--batch", "list"}, "--batch excludes BUNDLE"},
    WrongUseCase{"JobsWithoutBatch", {"detect", "b", "--jobs", "2"}, "--jobs requires --batch"},
    WrongUseCase{"NoJobs", {"detect", "--batch", "list", "--jobs", "0"}, "--jobs: "},
    WrongUseCase{"BadNow", {"detect", "b", "--now", "noon"},
        "--now: is neither \"YYYY-MM-DD HH:MM:SS\" nor seconds since the epoch: noon"},
    WrongUseCase{"BadZone", {"detect", "b", "--tz", "Mars"}, "--tz: names no time zone that this machine knows: Mars"},
    WrongUseCase{"BadLogLevel", {"detect", "b", "--log-level", "loud"}, "--log-level: is no log level: loud"}),
    CaseName());

TEST(CommandLineTest, HelpIsAResultWithTheExitStatuses)
{
    const auto help = RunArborist({"--help"});
    EXPECT_THAT(help.out, AllOf(HasSubstr("detect"), HasSubstr("query"), HasSubstr("repair"), HasSubstr("log"),
        HasSubstr("3 a rule set could not be used")));
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

TEST(CommandLineTest, VersionIsAResult)
{
    const auto result = RunArborist({"--version"});
    EXPECT_THAT(result.out, testing::MatchesRegex("arborist [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    EXPECT_EQ(result.status, 0);
}

} // namespace
