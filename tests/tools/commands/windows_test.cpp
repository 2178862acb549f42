// What the command does on Windows alone; see docs/windows.md.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// The system's own status.
constexpr int ENDED_BY_CTRL_C = static_cast<int>(0xC000013A);

class WindowsTest : public testing::Test {
protected:
    TempDir mDir;
};

TEST_F(WindowsTest, BundlesOfABatchRunOneAfterTheOther)
{
    WriteHotBundle(mDir, "a");
    WriteHotBundle(mDir, "b");
    const auto result = RunArborist({"detect", "--batch", "-"}, {"a\nb\n"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("\"bundle\": \"a\", \"ok\": true"));
    EXPECT_THAT(result.out, HasSubstr("\"bundle\": \"b\", \"ok\": true"));
}

TEST_F(WindowsTest, WhatNeedsWorkerProcessesIsRefused)
{
    WriteHotBundle(mDir, "a");
    for (const std::string option : {"--jobs", "--timeout"}) {
        const auto result = RunArborist({"detect", "--batch", "-", option, "2"}, {"a\n"});
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, HasSubstr(option + ": must be "));
        EXPECT_THAT(result.out, IsEmpty());
    }
}

TEST_F(WindowsTest, NamesHaveAllLetters)
{
    const std::string name = "gr\xC3\xBC\xC3\x9F\xE6\x97\xA5\xF0\x9F\x98\x80"; // of two, three and four bytes
    WriteHotBundle(mDir, name);
    const auto result = RunArborist({"detect", name});
    EXPECT_THAT(result.out, HasSubstr(name + "\n"));
    EXPECT_THAT(result.out, HasSubstr("1. HOT"));
    EXPECT_EQ(result.status, 0);
}

TEST_F(WindowsTest, ScriptIsNoCodeRunner)
{
    WriteCodeBundle(mDir, "b", {"info"});
    mDir.Write("runner.cmd", "exit 0");
    const auto result = RunArborist({"detect", "--code-runner", "./runner.cmd", "b"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("is no .exe, and Windows starts no scripts"));
}

TEST_F(WindowsTest, ProgramAnswersACodeRule)
{
    WriteCodeBundle(mDir, "b", {"info"});
    const auto result = RunArborist({"detect", "--code-runner", "hostname", "b"}); // of the system, by PATH
    EXPECT_THAT(result.out, HasSubstr("1. C1"));
    EXPECT_EQ(result.status, 0);
}

class NamesOfSystem : public WindowsTest, public testing::WithParamInterface<const char*> {};

TEST_P(NamesOfSystem, InAnArchiveAreRefused)
{
    WriteZip(mDir.Path("z.zip"), {{"bundle.json", BundleJson()}, {GetParam(), "x"}});
    const auto result = RunArborist({"detect", "z.zip"});
    EXPECT_THAT(result.err, HasSubstr("the name of an entry can't be used"));
    EXPECT_EQ(result.status, 4);
}

INSTANTIATE_TEST_SUITE_P(Table, NamesOfSystem,
    testing::Values("c:/x", "c:x", "bundle.json:part", "NUL", "rules/nul.txt", "COM1", "a/lpt9.xml"),
    [](const auto& name) { return "Name" + std::to_string(name.index); });

TEST_F(WindowsTest, PathBeginsWithASlash)
{
    WriteHotBundle(mDir, "b");
    const std::string withoutDrive = mDir.Path("b").substr(2);
    ASSERT_EQ(withoutDrive.front(), '/');
    EXPECT_EQ(RunArborist({"detect", withoutDrive}).status, 0);
}

TEST_F(WindowsTest, NodeOfABundleIsReadFromNoDriveOfThisMachine)
{
    mDir.Write("secret", "80\n");
    const std::string drive = mDir.Path("").substr(0, 2);
    std::string withBackslashes = mDir.Path("secret");
    std::replace(withBackslashes.begin(), withBackslashes.end(), '/', '\\');
    for (const std::string& path : {mDir.Path("secret"), withBackslashes, std::string("..\\secret"), drive + "../secret",
             "./" + mDir.Path("secret"), drive + mDir.Path("secret"), "//?/" + mDir.Path("secret")}) {
        WriteHotBundle(mDir, "b");
        std::string rules = mDir.Read("b/rules/FaultTreeRules.xml");
        mDir.Write("b/rules/FaultTreeRules.xml", rules.replace(rules.find("\"temperature\""), 13, "\"" + path + "\""));
        EXPECT_THAT(RunArborist({"detect", "b"}).out, HasSubstr("no fault")) << path;
    }
}

TEST_F(WindowsTest, NodeOnADriveLiesBelowTheRootOfTheDevice)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("b/device/data/temperature", "80\n");
    const std::string rules = mDir.Read("b/rules/FaultTreeRules.xml");
    for (const char* path : {"C:\\data\\temperature", "D:/data/temperature", "/data/temperature"}) {
        std::string changed = rules;
        changed.replace(changed.find("\"temperature\""), 13, "\"" + std::string(path) + "\"");
        mDir.Write("b/rules/FaultTreeRules.xml", changed);
        EXPECT_THAT(RunArborist({"detect", "b"}).out, HasSubstr("1. HOT")) << path;
    }
}

class CtrlCTest : public WindowsTest {
protected:
    // The command on a console on which Ctrl-C is pressed when a code rule asks for "wait".
    ProcessResult Run(std::vector<std::string> arguments, int times, const std::string& input = "") const
    {
        arguments.insert(arguments.begin(), ARBORIST_COMMAND);
        arguments.insert(arguments.end(), {"--code-runner", LaptopCodeRunner()});
        const auto press = [this, times](unsigned long process) {
            for (int moments = 0; moments < 3000 && !mDir.Has("waiting"); ++moments) {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
            EXPECT_EQ(RunProcess({CTRL_C, std::to_string(process), std::to_string(times)}).status, 0);
            std::filesystem::remove("waiting");
        };
        return RunOnConsole(arguments, press,
            {.input = input, .environment = {{"TMPDIR", mDir.MakeDir("tmp")}, {"WAITING", mDir.Path("waiting")}}});
    }
};

TEST_F(CtrlCTest, ShowsWhatWasDecided)
{
    WriteCodeBundle(mDir, "c", {"pixel", "wait"});
    WriteHotBundle(mDir, "b");
    for (const std::string command : {"detect", "explain"}) {
        const auto result = Run({command, "c", "b"}, 1);
        EXPECT_EQ(result.status, ENDED_BY_CTRL_C);
        EXPECT_THAT(result.out, AllOf(HasSubstr("UNDECIDED"), HasSubstr("open: C2: not_checked, stopped")));
        EXPECT_THAT(result.out, Not(HasSubstr("HOT"))); // the bundle after it
        EXPECT_TRUE(std::filesystem::is_empty("tmp"));
    }
}

TEST_F(CtrlCTest, EndsABatchBehindTheBundleThatRuns)
{
    WriteCodeBundle(mDir, "c", {"wait"});
    WriteHotBundle(mDir, "b");
    const auto result = Run({"detect", "--batch", "-", "--code-timeout", "0.5"}, 1, "c\nb\n");
    EXPECT_EQ(result.status, ENDED_BY_CTRL_C);
    EXPECT_THAT(result.out, Not(HasSubstr("\"bundle\": \"b\"")));
    EXPECT_TRUE(std::filesystem::is_empty("tmp"));
}

TEST_F(CtrlCTest, EndsAtOnceTheSecondTime)
{
    WriteCodeBundle(mDir, "c", {"wait"});
    EXPECT_EQ(Run({"detect", "c"}, 2).status, ENDED_BY_CTRL_C);
}

TEST_F(WindowsTest, ZoneOfADatabaseIsNotKnown)
{
    WriteHotBundle(mDir, "b");
    const auto result = RunArborist({"detect", "--tz", "Europe/Berlin", "b"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("names no time zone that this machine knows: Europe/Berlin"));
}

} // namespace
