#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::HasSubstr;

ProcessResult RunInShell(const std::string& arguments)
{
    return RunScript("exec '" ARBORIST_COMMAND "' " + arguments);
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
    return RunScript("mkfifo nobody; exec 3<>nobody; exec >nobody; exec 3>&-; rm nobody; exec '"
        ARBORIST_COMMAND "' " + command, setup);
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
    for (const auto& [input, reason] : {std::pair("<&-", "Bad file descriptor"), std::pair("< .", "Is a directory")}) {
        const auto list = RunInShell(std::string("detect --batch - ") + input);
        EXPECT_EQ(list.err, "arborist: standard input can't be read\n");
        EXPECT_EQ(list.status, 2);
        const auto events = RunInShell(std::string("log import - --to log.db ") + input);
        EXPECT_EQ(events.err, std::string("arborist: -: can't be read: ") + reason + "\n");
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

} // namespace
