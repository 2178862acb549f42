// Detections that end early, by the clock or by Ctrl-C.
#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace fs = std::filesystem;

// So short that it is over before the rule set is read.
constexpr char NO_TIME[] = "0.000001";

class StopCommandTest : public testing::Test {
protected:
    StopCommandTest()
    {
        mDir.MakeDir("tmp");
        WriteHotBundle(mDir, "b");
        mDir.Write("b/rules/FaultTrees.xml",
            TreeXml("Tag").Version("3").Tree("T", Or({Basic("HOT")})).Tree("U", Or({Basic("HOT")})).Text());
    }

    ProcessResult Run(const std::vector<std::string>& arguments) const
    {
        return RunArborist(arguments, {.environment = {{"TMPDIR", mDir.Path("tmp")}}});
    }

    void Script(const std::string& text) const
    {
        fs::permissions(mDir.Write("runner", "#!/bin/sh\n" + text + "\n"), fs::perms::all);
    }

    TempDir mDir;
};

TEST_F(StopCommandTest, TreesThatAreNotDecidedInTimeAreUndecided)
{
    const auto result = Run({"detect", "--time-limit", NO_TIME, "b"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("warning: the detection was stopped: 2 of 2 trees are not decided"));
    EXPECT_THAT(result.out, AllOf(HasSubstr("T (version 3): no fault, UNDECIDED: 1 of 1 check open (1 not_checked)\n"
        "    open: HOT: not_checked, stopped\n"), HasSubstr("2 trees: 2 undecided")));
    EXPECT_EQ(Run({"detect", "--time-limit", NO_TIME, "--fail-on-undecided", "b"}).status, 6);
    EXPECT_EQ(Run({"detect", "--time-limit", NO_TIME, "--strict", "b"}).status, 4);
}

TEST_F(StopCommandTest, JsonNamesTheReason)
{
    const std::string stopped = R"("verdict": "undecided", "complete": false)";
    const std::string open = R"({"event": "HOT", "rule": "", "check": "not_checked", "reason": "stopped")";
    for (const std::string command : {"detect", "explain"}) {
        EXPECT_THAT(Run({command, "--json", "--time-limit", NO_TIME, "b"}).out,
            AllOf(HasSubstr(R"("ok": true)"), HasSubstr(R"("code": "stopped")"), HasSubstr(stopped), HasSubstr(open)));
    }
    mDir.Write("list", "b\n");
    EXPECT_THAT(Run({"detect", "--batch", "list", "--time-limit", NO_TIME}).out, AllOf(HasSubstr(stopped), HasSubstr(open)));
    EXPECT_THAT(Run({"report", "--time-limit", NO_TIME, "b"}).out, HasSubstr("stopped"));
}

TEST_F(StopCommandTest, ALimitThatIsNotReachedOrZeroChangesNothing)
{
    const std::string plain = WithoutSeconds(Run({"detect", "--json", "b", "--now", "1716200000"}).out);
    EXPECT_THAT(plain, Not(HasSubstr("stopped")));
    for (const std::string limit : {"0", "3600"}) {
        EXPECT_EQ(WithoutSeconds(Run({"detect", "--json", "--now", "1716200000", "--time-limit", limit, "b"}).out), plain);
    }
    EXPECT_EQ(Run({"detect", "--time-limit", "-1", "b"}).status, 2);
}

TEST_F(StopCommandTest, InterruptShowsWhatWasDecidedAndEndsByTheSignal)
{
    WriteCodeBundle(mDir, "c", {"first", "second"}, BundleJson(R"(, "codeAnswers": {"first": true})"));
    Script("kill -INT $PPID; sleep 600");
    for (const std::string command : {"detect", "explain"}) {
        const auto result = Run({command, "--code-timeout", "600", "--code-runner", "./runner", "c", "b"});
        EXPECT_EQ(result.status, 128 + SIGINT);
        EXPECT_THAT(result.out, AllOf(HasSubstr("UNDECIDED"), HasSubstr("open: C2: not_checked, stopped")));
        EXPECT_THAT(result.out, Not(HasSubstr("HOT"))); // the bundle after it
        EXPECT_TRUE(fs::is_empty(mDir.Path("tmp")));
    }
}

TEST_F(StopCommandTest, ASweepEndsWhereItIsStopped)
{
    const auto late = Run({"sweep", "--time-limit", NO_TIME, "b"});
    EXPECT_EQ(late.err, "arborist: b: the sweep was stopped before it had its first answer [timeout]\n");
    EXPECT_EQ(late.status, 5);
    EXPECT_EQ(Run({"sweep", "--time-limit", "3600", "b"}).out, Run({"sweep", "b"}).out);
    WriteCodeBundle(mDir, "c", {"first"});
    Script("kill -INT $PPID; sleep 600");
    const auto interrupted = Run({"sweep", "--code-timeout", "600", "--code-runner", "./runner", "c"});
    EXPECT_EQ(interrupted.status, 128 + SIGINT);
    EXPECT_THAT(interrupted.err, HasSubstr("c: the sweep was stopped before it had its first answer"));
    EXPECT_TRUE(fs::is_empty(mDir.Path("tmp")));
}

TEST_F(StopCommandTest, AComparisonEndsAtTheFirstInterrupt)
{
    WriteCodeBundle(mDir, "c", {"first"});
    mDir.Write("list", "c\nb\n");
    Script("kill -INT $(ps -o ppid= -p $PPID); sleep 600");
    const auto result = Run({"compare", "--rules", "c/rules", "--rules", "c/rules", "--batch", "list", "--jobs", "1",
        "--code-timeout", "600", "--code-runner", "./runner"});
    EXPECT_EQ(result.status, 128 + SIGINT);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(fs::is_empty(mDir.Path("tmp")));
}

TEST_F(StopCommandTest, ASecondInterruptEndsAtOnce)
{
    WriteCodeBundle(mDir, "c", {"first"});
    // In a session of its own the sender outlives the runner, which the first signal kills.
    Script("setsid sh -c \"kill -INT $PPID; kill -INT $PPID\"; sleep 600");
    const auto result = Run({"detect", "--code-timeout", "600", "--code-runner", "./runner", "c"});
    EXPECT_EQ(result.status, 128 + SIGINT);
    EXPECT_TRUE(fs::is_empty(mDir.Path("tmp")));
}

TEST_F(StopCommandTest, OtherSignalsAndDrawingsEndAtOnceAsEver)
{
    WriteCodeBundle(mDir, "c", {"first"});
    for (const int number : {SIGHUP, SIGTERM}) {
        Script("kill -" + std::to_string(number) + " $PPID; sleep 600");
        const auto result = Run({"detect", "--code-timeout", "600", "--code-runner", "./runner", "c"});
        EXPECT_EQ(result.status, 128 + number);
        EXPECT_EQ(result.out, "");
    }
    Script("kill -INT $PPID; sleep 600");
    const auto result = Run({"report", "--code-timeout", "600", "--code-runner", "./runner", "-o", "page.html", "c"});
    EXPECT_EQ(result.status, 128 + SIGINT);
    EXPECT_FALSE(mDir.Has("page.html"));
    EXPECT_TRUE(fs::is_empty(mDir.Path("tmp")));
}

} // namespace
