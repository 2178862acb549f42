#include "tests/support/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace {

using testing::HasSubstr;

TEST(ProcessTest, TellsBothOutputsAndTheExitStatus)
{
    const auto result = RunProcess({"sh", "-c", "cat; echo oops >&2; exit 3"}, {.input = "given\n"});
    EXPECT_EQ(result.out, "given\n");
    EXPECT_EQ(result.err, "oops\n");
    EXPECT_EQ(result.status, 3);
}

TEST(ProcessTest, RunsInADirectoryWithAnEnvironment)
{
    const TempDir dir;
    const auto inner = dir.MakeDir("inner");
    const auto result = RunProcess({"sh", "-c", "pwd; echo $WORD"}, {.environment = {{"WORD", "here"}},
        .directory = inner});
    EXPECT_EQ(result.out, inner + "\nhere\n");
}

TEST(ProcessTest, ASignalCountsFrom128)
{
    EXPECT_EQ(RunProcess({"sh", "-c", "kill -9 $$"}).status, 137);
}

TEST(ProcessTest, AMissingProgramIs127WithItsName)
{
    const auto result = RunProcess({"/no/such/program"});
    EXPECT_EQ(result.status, 127);
    EXPECT_THAT(result.err, HasSubstr("/no/such/program"));
}

TEST(RunOnTerminalTest, StandardOutputIsATerminalAndComesAsItWasWritten)
{
    const auto result = RunOnTerminal({"sh", "-c", "test -t 1 && echo yes; test -t 2 || echo no >&2; exit 3"});
    EXPECT_EQ(result.out, "yes\n");
    EXPECT_EQ(result.err, "no\n");
    EXPECT_EQ(result.status, 3);
}

} // namespace
