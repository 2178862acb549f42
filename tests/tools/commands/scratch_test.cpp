#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

// 2024-05-19 00:00:00 UTC.
constexpr std::int64_t A_DAY_BEFORE = 1716076800;

/// Runs the command with a folder for temporary files that the test can inspect.
class ScratchTest : public testing::Test {
protected:
    ScratchTest() { mDir.MakeDir("tmp"); }

    ProcessResult Run(const std::vector<std::string>& arguments) const
    {
        return RunArborist(arguments, {.environment = {{"TMPDIR", mDir.Path("tmp")}}});
    }

    bool IsScratchGone() const { return fs::is_empty(mDir.Path("tmp")); }

    static EventLogBuilder ThreeDrops()
    {
        return EventLogBuilder().Rows({{A_DAY_BEFORE, 1001, "", ""}, {A_DAY_BEFORE, 1001, "", ""},
            {A_DAY_BEFORE, 1001, "", ""}});
    }

    void Script(const std::string& name, const std::string& body) const
    {
        fs::permissions(mDir.Write(name, "#!/bin/sh\n" + body + "\n"), fs::perms::owner_all);
    }

    TempDir mDir;
};

TEST_F(ScratchTest, RunsLeaveABundleOfAllFamiliesAsItIs)
{
    PrepareLaptop("laptop");
    const auto before = StateOf("laptop");
    const std::vector<std::string> detect = {"detect", "--json", "--log-level", "none", "--code-runner",
        std::string(ARBORIST_SOURCE_DIR) + "/examples/laptop/code-runner.sh", "laptop"};
    const auto first = Run(detect);
    EXPECT_EQ(first.status, 0);
    EXPECT_THAT(first.out, HasSubstr("PIXELS_DEAD")); // from a copy of an external database
    EXPECT_EQ(Run({"query", "laptop", "SPEAKER_TEST"}).status, 0);
    EXPECT_THAT(Run({"repair", "list", "laptop"}).out, HasSubstr("REPAIR_KEYBOARD"));
    EXPECT_EQ(StateOf("laptop"), before);
    EXPECT_EQ(WithoutSeconds(Run(detect).out), WithoutSeconds(first.out));
    EXPECT_TRUE(IsScratchGone());
}

TEST_F(ScratchTest, AMissingLogStaysMissing)
{
    WriteDropsBundle(mDir, "b");
    EXPECT_EQ(Run({"detect", "b"}).status, 0);
    EXPECT_FALSE(mDir.Has("b/programdata"));
}

TEST_F(ScratchTest, AMissingLogThatTablesAreBuiltFromStaysMissing)
{
    PrepareLaptop("laptop");
    fs::remove(mDir.Path("laptop") + LOG_OF_BUNDLE);
    const auto before = StateOf("laptop");
    EXPECT_EQ(Run({"detect", "laptop"}).status, 0);
    EXPECT_EQ(StateOf("laptop"), before);
    EXPECT_TRUE(IsScratchGone());
}

TEST_F(ScratchTest, WhatStandsBesideTheLogIsLeftAlone)
{
    WriteDropsBundle(mDir, "b");
    const std::string log = mDir.Path("b") + LOG_OF_BUNDLE;
    ThreeDrops().WriteTo(log);
    mDir.Write("b/programdata/Comms/Lumbra/workDir/notes", "of the service");
    const auto before = StateOf("b");
    EXPECT_THAT(Run({"detect", "b"}).out, HasSubstr("1. DROPS"));
    EXPECT_EQ(StateOf("b"), before);
    EXPECT_TRUE(IsScratchGone());
}

TEST_F(ScratchTest, ALogInWalModeIsReadWithItsWaitingRows)
{
    WriteDropsBundle(mDir, "b");
    const std::string log = mDir.Path("b") + LOG_OF_BUNDLE;
    EventLogBuilder().WriteTo(log);
    EventLogBuilder::RunIntoWal(log, "INSERT INTO event_version VALUES (1, '');"
        "INSERT INTO event_info VALUES (1, 1001, '', 1), (2, 1001, '', 1), (3, 1001, '', 1);"
        "INSERT INTO event_info_flow VALUES (1, 1, 1716076800), (2, 2, 1716076800), (3, 3, 1716076800)");
    const auto before = StateOf("b");
    const auto result = Run({"detect", "b"});
    EXPECT_THAT(result.out, HasSubstr("1. DROPS"));
    EXPECT_THAT(Run({"log", "show", log}).out, HasSubstr("\"event\": 1001"));
    EXPECT_EQ(StateOf("b"), before);
    EXPECT_TRUE(IsScratchGone());
}

TEST_F(ScratchTest, RepairsCountAndOnlyRecordWritesIntoTheBundle)
{
    WriteDropsBundle(mDir, "b");
    ThreeDrops().WriteTo(mDir.Path("b") + LOG_OF_BUNDLE);
    EXPECT_THAT(Run({"detect", "b"}).out, HasSubstr("1. DROPS"));
    EXPECT_EQ(Run({"repair", "record", "b", "R"}).status, 0);
    const auto before = StateOf("b");
    EXPECT_THAT(Run({"detect", "b"}).out, HasSubstr("no fault"));
    EXPECT_EQ(StateOf("b"), before);
}

TEST_F(ScratchTest, IsGoneAfterAFailure)
{
    WriteHotBundle(mDir, "b");
    fs::remove("b/rules/FaultTrees.xml");
    EXPECT_EQ(Run({"detect", "b"}).status, 3);
    EXPECT_TRUE(IsScratchGone());
}

TEST_F(ScratchTest, IsGoneAfterSignalsThatEndTheProcess)
{
    WriteCodeBundle(mDir, "b", {"info"});
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        Script("runner", "ls \"$TMPDIR\" > " + mDir.Path("seen") + "; kill -" + std::to_string(number) + " $PPID");
        const auto result = Run({"detect", "--code-timeout", "5", "--code-runner", "./runner", "b"});
        EXPECT_EQ(result.status, 128 + number);
        EXPECT_THAT(mDir.Read("seen"), StartsWith("arborist-"));
        EXPECT_TRUE(IsScratchGone());
    }
}

TEST_F(ScratchTest, AProgramThatIsRunningEndsWithTheProcess)
{
    WriteCodeBundle(mDir, "b", {"info"});
    // The reader of the pipe ends when no process of the program's group has its other side open any more.
    Script("runner", "exec 3> ../pipe\nsleep 600 &\nkill -TERM $PPID\nwait");
    const auto reader = RunScript("mkfifo pipe; '" ARBORIST_COMMAND "' detect --code-timeout 600 "
        "--code-runner ./runner b & timeout 60 cat pipe && wait $!");
    EXPECT_EQ(reader.status, 128 + SIGTERM);
}

TEST_F(ScratchTest, DrawingBareRulesLeavesNothingBehind)
{
    WriteHotBundle(mDir, "b");
    EXPECT_THAT(Run({"graph", "b/rules", "--tree-tag", "Tag"}).out, HasSubstr("HOT"));
    EXPECT_TRUE(IsScratchGone());
}

TEST_F(ScratchTest, ALogThatIsBeingMadeIsGoneAfterSignals)
{
    std::string lines;
    for (int i = 0; i < 10000; ++i) {
        lines += "{\"time\": 5, \"event\": 7}\n";
    }
    mDir.Write("lines", lines);
    mDir.Write("made/log.db", "the old log");
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        // The lines are more than a pipe buffers, so that once all are written the command is reading them and its file
        // exists.
        const auto result = RunScript("rm -f pipe; mkfifo pipe; env --default-signal '" ARBORIST_COMMAND
            "' log import - --to made/log.db < pipe & exec 3> pipe; cat lines >&3; ls made; kill -"
            + std::to_string(number) + " $!; wait $!");
        EXPECT_EQ(result.status, 128 + number);
        EXPECT_THAT(result.out, StartsWith("arborist-"));
        EXPECT_EQ(StateOf("made").size(), 1U);
        EXPECT_EQ(mDir.Read("made/log.db"), "the old log");
    }
}

TEST_F(ScratchTest, ACaptureIsGoneAfterSignals)
{
    WriteCodeBundle(mDir, "b", {"info"});
    mDir.MakeDir("made");
    for (const std::string target : {"made/packed", "made/packed.zip"}) {
        Script("runner", "ls ../made > ../seen; kill -TERM $PPID");
        const auto result = Run({"bundle", "pack", "b", "--code-timeout", "600", "--code-runner", "./runner", "-o", target});
        EXPECT_EQ(result.status, 128 + SIGTERM);
        EXPECT_TRUE(fs::is_empty("made"));
        EXPECT_TRUE(IsScratchGone());
    }
}

TEST_F(ScratchTest, LogsNameTheBundlesOwnPaths)
{
    PrepareLaptop("laptop");
    mDir.Write("laptop/programdata/Comms/Lumbra/workDir/0/log.db", "this is no database, and long enough to tell");
    EXPECT_EQ(Run({"detect", "--log-level", "none", "--log-file", "log.txt", "laptop"}).status, 0);
    EXPECT_THAT(mDir.Read("log.txt"), Not(HasSubstr("arborist-")));
    EXPECT_EQ(mDir.Read("log.txt").find(mDir.Path("tmp")), std::string::npos);
}

TEST_F(ScratchTest, ATemporaryFolderThatIsNoneIsTold)
{
    WriteHotBundle(mDir, "b");
    const auto result = RunArborist({"detect", "b"}, {.environment = {{"TMPDIR", mDir.Path("nowhere")}}});
    EXPECT_THAT(result.err, EndsWith("[no_scratch]\n"));
    EXPECT_EQ(result.status, 5);
}

TEST_F(ScratchTest, AnotherRuleSetTakesTheBundlesPlace)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("ours/FaultTrees.xml", TreeXml("Tag").Version("9").Tree("OURS", Or({Basic("X")})).Text());
    mDir.Write("ours/FaultTreeRules.xml", RuleXml("Tag").Text());
    EXPECT_THAT(Run({"detect", "--rules", "ours", "b"}).out, HasSubstr("OURS"));
    const auto missing = Run({"detect", "--rules", "none", "b"});
    EXPECT_THAT(missing.err, HasSubstr(mDir.Path("none/FaultTrees.xml") + ": no such file"));
    EXPECT_EQ(missing.status, 3);
}

} // namespace
